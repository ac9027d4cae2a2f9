// Pages of web content shown inside a window, as the map needs them: given as text, told things by script.
// Interface thread only. The pages must be gone before the WebPages that made them.
#pragma once

#include <QString>
#include <QUrl>
#include <QVariant>

#include <functional>
#include <memory>

class QWidget;

namespace ql240 {

// Scripts, styles and data named under http://<this host>/ come from the program itself, never from a
// network.
inline constexpr char kWebFilesHost[] = "map.ql240.invalid";

// What a page reports to the one who made it.
struct WebPageEvents {
    std::function<void(bool ok)> loadFinished;
    std::function<void()> renderProcessGone;              // what was shown is lost until the next setHtml
    std::function<void(const QUrl& address)> linkClicked; // the page itself stays where it is
};

class WebPage {
public:
    virtual ~WebPage() = default;

    // The page's view, a child of the widget it was made for and deleted with the page.
    virtual QWidget* widget() = 0;

    // Loads a page given as text with an empty base address; `loadFinished` follows.
    virtual void setHtml(const QString& text) = 0;

    // Gives up a load; `loadFinished(false)` may follow.
    virtual void stop() = 0;

    // Runs a script in the page's main frame. The result, where wanted, arrives later: invalid when the
    // script failed.
    virtual void runJavaScript(const QString& script, std::function<void(const QVariant&)> result = {}) = 0;
};

class WebPages {
public:
    virtual ~WebPages() = default;

    // Whether pages made from now on may read from the network: only where a sandbox holds what decodes it.
    bool network = false;

    // A page whose base colour is transparent. Starts the engine when it is the first; null where there is
    // none.
    [[nodiscard]] virtual std::unique_ptr<WebPage> createPage(QWidget* parent, WebPageEvents events) = 0;
};

// What the map module offers: `extern "C" ql240::WebPages* ql240CreateWebPages()`; the caller owns the
// result.
using CreateWebPages = WebPages* (*)();
inline constexpr char kCreateWebPages[] = "ql240CreateWebPages";

} // namespace ql240
