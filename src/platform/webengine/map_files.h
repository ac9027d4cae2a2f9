// Answers the page's requests for scripts, styles and data from the program's resources. The page uses an
// ordinary http host, which is redirected to a custom scheme: only with this arrangement do script elements,
// style sheets and fetch all work for a page set as text. No port is opened, and no request can hang.
#pragma once

#include <QWebEngineUrlRequestInterceptor>
#include <QWebEngineUrlSchemeHandler>

namespace ql240 {

class MapFiles final : public QWebEngineUrlSchemeHandler {
public:
    static QByteArray scheme();

    // Call once, before the first profile is created.
    static void registerScheme();

    void requestStarted(QWebEngineUrlRequestJob* job) override;
};

// Redirects requests for our host to the scheme above. Otherwise allows only the script's own requests (for
// tiles), not even images, which the engine would decode unchecked.
class MapRequests final : public QWebEngineUrlRequestInterceptor {
public:
    void setNetwork(bool allowed) { m_network = allowed; }
    void interceptRequest(QWebEngineUrlRequestInfo& info) override;

private:
    bool isTile(const QWebEngineUrlRequestInfo& info) const;

    bool m_network = false;
};

} // namespace ql240
