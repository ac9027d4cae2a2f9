// Keeps the desktop awake. Interface thread only.
#pragma once

#include <QString>
#include <memory>

namespace ql240 {

class Inhibitor {
public:
    virtual ~Inhibitor() = default;

    // Holds off the screen saver and sleep for as long as the result is kept. `reason` is what the desktop
    // may tell its user. Returns at once; a desktop that can't do it is no failure.
    [[nodiscard]] virtual std::shared_ptr<void> keepAwake(const QString& reason) = 0;
};

} // namespace ql240
