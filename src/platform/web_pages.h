// Web pages shown inside a window, for the map: set as HTML text and controlled by scripts. Interface thread
// only. Pages must be destroyed before the WebPages that created them.
#pragma once

#include <QString>
#include <QUrl>
#include <QVariant>

#include <functional>
#include <memory>

class QWidget;

namespace ql240 {

// Scripts, styles and data under http://<this host>/ come from the program's resources, never from a network.
inline constexpr char kWebFilesHost[] = "map.ql240.invalid";

// What a page reports to its owner.
struct WebPageEvents {
    std::function<void(bool ok)> loadFinished;
    std::function<void()> renderProcessGone;              // the content is lost until the next setHtml
    std::function<void(const QUrl& address)> linkClicked; // the page itself doesn't navigate
};

class WebPage {
public:
    virtual ~WebPage() = default;

    // The page's view: a child of the parent widget, deleted with the page.
    virtual QWidget* widget() = 0;

    // Loads the page's HTML text with an empty base URL; `loadFinished` follows.
    virtual void setHtml(const QString& text) = 0;

    // Cancels a load; `loadFinished(false)` may follow.
    virtual void stop() = 0;

    // Runs a script in the page's main frame. The result arrives later, and is invalid if the script failed.
    virtual void runJavaScript(const QString& script, std::function<void(const QVariant&)> result = {}) = 0;
};

class WebPages {
public:
    virtual ~WebPages() = default;

    // Whether pages created from now on may read from the network: only if a sandbox decodes what arrives.
    bool network = false;

    // Creates a page with a transparent background. The first one starts the engine; null without an engine.
    [[nodiscard]] virtual std::unique_ptr<WebPage> createPage(QWidget* parent, WebPageEvents events) = 0;
};

// Exported by the map module: `extern "C" ql240::WebPages* ql240CreateWebPages()`; the caller owns the
// result.
using CreateWebPages = WebPages* (*)();
inline constexpr char kCreateWebPages[] = "ql240CreateWebPages";

} // namespace ql240
