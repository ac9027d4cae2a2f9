// Shows an address in the user's browser. Interface thread only.
#pragma once

#include <QString>

namespace ql240 {

class UrlOpener {
public:
    virtual ~UrlOpener() = default;

    // Starts the browser and does not wait for it. False when nothing could be started,
    // and for what is no address in the web.
    virtual bool openUrl(const QString& address) = 0;
};

} // namespace ql240
