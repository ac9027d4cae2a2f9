// Keeps the desktop awake. Interface thread only.
#pragma once

#include <QString>
#include <memory>

namespace ql240 {

class Inhibitor {
public:
    virtual ~Inhibitor() = default;

    // Inhibits the screen saver and sleep for as long as the result is held. The desktop may show `reason` to
    // its user. Returns at once; a desktop without this service is not an error.
    [[nodiscard]] virtual std::shared_ptr<void> keepAwake(const QString& reason) = 0;
};

} // namespace ql240
