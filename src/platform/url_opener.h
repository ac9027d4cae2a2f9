// Opens an address in the user's browser. Interface thread only.
#pragma once

#include <QString>

namespace ql240 {

class UrlOpener {
public:
    virtual ~UrlOpener() = default;

    // Starts the browser and doesn't wait for it. False when nothing could be started, or when `address` is
    // not a web address.
    virtual bool openUrl(const QString& address) = 0;
};

} // namespace ql240
