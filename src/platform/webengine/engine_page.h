// One web page and its view in Qt WebEngine. Interface thread; owned by the caller of createPage().
#pragma once

#include "platform/web_pages.h"

#include <QPointer>

class QWebEngineProfile;
class QWebEngineView;

namespace ql240 {

class EnginePage final : public WebPage {
public:
    EnginePage(QWebEngineProfile& profile, QWidget* parent, WebPageEvents events);
    ~EnginePage() override;

    QWidget* widget() override;
    void setHtml(const QString& text) override;
    void stop() override;
    void runJavaScript(const QString& script, std::function<void(const QVariant&)> result) override;

private:
    QPointer<QWebEngineView> m_view;
};

} // namespace ql240
