// The web engine as the map uses it: one profile with its cache on disk, our own files in place of a script
// host.
#pragma once

#include "platform/web_pages.h"
#include "platform/webengine/map_files.h"

#include <memory>

class QWebEngineProfile;

namespace ql240 {

class EnginePages final : public WebPages {
public:
    EnginePages();
    ~EnginePages() override;

    std::unique_ptr<WebPage> createPage(QWidget* parent, WebPageEvents events) override;

private:
    MapFiles m_files;
    MapRequests m_requests;
    std::unique_ptr<QWebEngineProfile> m_profile; // goes before the two that it points to
};

} // namespace ql240
