// The web engine for the map: one profile with its cache on disk; the map's files come from the program's
// resources instead of a server.
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
    std::unique_ptr<QWebEngineProfile> m_profile; // destroyed before the two objects it points to
};

} // namespace ql240
