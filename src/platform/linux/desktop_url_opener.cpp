#include "platform/linux/desktop_url_opener.h"

#include <QDesktopServices>
#include <QUrl>

namespace ql240 {

bool DesktopUrlOpener::openUrl(const QString& address) {
    return QDesktopServices::openUrl(QUrl(address));
}

} // namespace ql240
