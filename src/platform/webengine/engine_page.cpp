#include "platform/webengine/engine_page.h"

#include <QWebEnginePage>
#include <QWebEngineSettings>
#include <QWebEngineView>

#include "platform/logging.h"

namespace ql240 {

namespace {

// A page that can't navigate: links go to the owner, new windows are refused, console messages are logged.
class FixedPage final : public QWebEnginePage {
public:
    FixedPage(QWebEngineProfile* profile, QObject* parent, std::function<void(const QUrl&)> linkClicked)
        : QWebEnginePage(profile, parent), m_linkClicked(std::move(linkClicked)) {}

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool) override {
        if (type != NavigationTypeLinkClicked)
            return url.scheme() == QLatin1String("data") || url.scheme() == QLatin1String("about");
        if (m_linkClicked)
            m_linkClicked(url);
        return false;
    }
    QWebEnginePage* createWindow(WebWindowType) override { return nullptr; }
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString& text, int line,
                                  const QString& source) override {
        qCDebug(lcMap) << "script:" << text << source << line;
    }

private:
    std::function<void(const QUrl&)> m_linkClicked;
};

// Turns off whatever a map doesn't need.
void restrict(QWebEngineSettings& settings) {
    for (auto attribute :
         {QWebEngineSettings::AutoLoadIconsForPage, QWebEngineSettings::ErrorPageEnabled,
          QWebEngineSettings::FocusOnNavigationEnabled, QWebEngineSettings::FullScreenSupportEnabled,
          QWebEngineSettings::JavascriptCanOpenWindows, QWebEngineSettings::LocalStorageEnabled,
          QWebEngineSettings::NavigateOnDropEnabled, QWebEngineSettings::PdfViewerEnabled,
          QWebEngineSettings::PluginsEnabled, QWebEngineSettings::ScrollAnimatorEnabled,
          QWebEngineSettings::ShowScrollBars, QWebEngineSettings::WebGLEnabled,
          QWebEngineSettings::Accelerated2dCanvasEnabled})
        settings.setAttribute(attribute, false);
}

} // namespace

EnginePage::EnginePage(QWebEngineProfile& profile, QWidget* parent, WebPageEvents events)
    : m_view(new QWebEngineView(parent)) {
    auto* page = new FixedPage(&profile, m_view, std::move(events.linkClicked));
    restrict(*page->settings());
    page->setBackgroundColor(Qt::transparent);
    m_view->setPage(page);
    m_view->setAttribute(Qt::WA_OpaquePaintEvent, false);
    m_view->setContextMenuPolicy(Qt::NoContextMenu);
    m_view->setAcceptDrops(false);
    QObject::connect(page, &QWebEnginePage::loadFinished, m_view,
                     [finished = std::move(events.loadFinished)](bool ok) {
                         qCDebug(lcMap) << (ok ? "page loaded" : "page not loaded");
                         finished(ok);
                     });
    QObject::connect(page, &QWebEnginePage::renderProcessTerminated, m_view,
                     [gone = std::move(events.renderProcessGone)](auto status, int code) {
                         qCWarning(lcMap) << "the page's process has ended:" << status << code;
                         gone();
                     });
}

EnginePage::~EnginePage() {
    delete m_view;
}

QWidget* EnginePage::widget() {
    return m_view;
}

void EnginePage::setHtml(const QString& text) {
    if (m_view)
        m_view->setHtml(text, QUrl());
}

void EnginePage::stop() {
    if (m_view)
        m_view->stop();
}

void EnginePage::runJavaScript(const QString& script, std::function<void(const QVariant&)> result) {
    if (!m_view)
        return;
    if (result)
        m_view->page()->runJavaScript(script, result);
    else
        m_view->page()->runJavaScript(script);
}

} // namespace ql240
