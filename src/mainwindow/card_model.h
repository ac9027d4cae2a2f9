// What the dashboard asks the camera's card for.
#pragma once

#include <QString>
#include <functional>
#include <optional>

namespace ql240 {

class Drives;

// Looks for the text of a card's version file; the last of the drives that has one decides. The look may
// block; any thread.
std::function<std::optional<QString>()> cardModelLook(Drives* drives);

} // namespace ql240
