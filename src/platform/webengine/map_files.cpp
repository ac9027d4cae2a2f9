#include "platform/webengine/map_files.h"

#include "platform/web_pages.h"

#include <QFile>
#include <QWebEngineUrlRequestInfo>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlScheme>

#include "platform/logging.h"

namespace ql240 {

namespace {

QByteArray mimeType(const QString& path) {
    if (path.endsWith(QLatin1String(".js")))
        return "text/javascript; charset=utf-8";
    if (path.endsWith(QLatin1String(".css")))
        return "text/css; charset=utf-8";
    if (path.endsWith(QLatin1String(".json")))
        return "application/json";
    return "text/plain; charset=utf-8";
}

} // namespace

QByteArray MapFiles::scheme() {
    return "ql240map";
}

void MapFiles::registerScheme() {
    QWebEngineUrlScheme description(scheme());
    description.setSyntax(QWebEngineUrlScheme::Syntax::Host);
    description.setFlags(QWebEngineUrlScheme::SecureScheme | QWebEngineUrlScheme::CorsEnabled);
    QWebEngineUrlScheme::registerScheme(description);
}

void MapFiles::requestStarted(QWebEngineUrlRequestJob* job) {
    const QString path = QLatin1String(":/map") + job->requestUrl().path();
    auto* file = new QFile(path, job);
    if (path.contains(QLatin1String("..")) || !file->open(QIODevice::ReadOnly)) {
        job->fail(QWebEngineUrlRequestJob::UrlNotFound);
        return;
    }
    job->reply(mimeType(path), file);
}

void MapRequests::interceptRequest(QWebEngineUrlRequestInfo& info) {
    QUrl url = info.requestUrl();
    const bool ours = url.host() == QLatin1String(kWebFilesHost);
    if (ours && url.scheme() != QLatin1String(MapFiles::scheme())) {
        url.setScheme(QString::fromLatin1(MapFiles::scheme()));
        info.redirect(url);
    } else if (!ours && url.scheme() != QLatin1String("data") && !isTile(info)) {
        qCDebug(lcMap) << "blocked" << url;
        info.block(true);
    }
}

bool MapRequests::isTile(const QWebEngineUrlRequestInfo& info) const {
    const QString scheme = info.requestUrl().scheme();
    return m_network && info.resourceType() == QWebEngineUrlRequestInfo::ResourceTypeXhr &&
           info.requestMethod() == "GET" &&
           (scheme == QLatin1String("http") || scheme == QLatin1String("https"));
}

} // namespace ql240
