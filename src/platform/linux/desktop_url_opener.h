// Opens addresses in the desktop's default browser.
#pragma once

#include "platform/url_opener.h"

namespace ql240 {

class DesktopUrlOpener : public UrlOpener {
public:
    bool openUrl(const QString& address) override;
};

} // namespace ql240
