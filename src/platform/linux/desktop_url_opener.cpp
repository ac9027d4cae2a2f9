#include "platform/linux/desktop_url_opener.h"

#include <QDesktopServices>
#include <QUrl>

#include "platform/logging.h"

namespace ql240 {

bool DesktopUrlOpener::openUrl(const QString& address) {
    // The desktop would open any other scheme in some other program.
    const QUrl url(address, QUrl::StrictMode);
    const bool isWeb = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    const bool opened = isWeb && !url.host().isEmpty() && QDesktopServices::openUrl(url);
    qCDebug(lcDesktop) << (opened ? "opened" : "didn't open") << address;
    return opened;
}

} // namespace ql240
