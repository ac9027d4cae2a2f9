// Answers the page's requests for scripts, styles and data from the program's resources. The page names them
// under an ordinary http host, which is redirected to a scheme of our own: the one arrangement in which
// script elements, style sheets and fetch all work for a page given as text. Nothing listens on a port and
// nothing can hang.
#pragma once

#include <QWebEngineUrlRequestInterceptor>
#include <QWebEngineUrlSchemeHandler>

namespace ql240 {

class MapFiles final : public QWebEngineUrlSchemeHandler {
public:
    static QByteArray scheme();

    // Once, before the first profile is made.
    static void registerScheme();

    void requestStarted(QWebEngineUrlRequestJob* job) override;
};

// Sends requests for our host to the scheme above; lets the script's own (for tiles) through and nothing
// else: not even a picture, which the engine would decode whatever it is.
class MapRequests final : public QWebEngineUrlRequestInterceptor {
public:
    void setNetwork(bool allowed) { m_network = allowed; }
    void interceptRequest(QWebEngineUrlRequestInfo& info) override;

private:
    bool isTile(const QWebEngineUrlRequestInfo& info) const;

    bool m_network = false;
};

} // namespace ql240
