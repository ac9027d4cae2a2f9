// The picture adjustment that the camera's card asks for. Reading it blocks on the card: any thread but the
// interface's.
#pragma once

#include <QtGlobal>
#include <optional>

namespace ql240 {

// What the card holds, 1 to 7 each, 4 neutral.
struct AdjustmentSetting {
    int brightvalue = 4;
    int contrastvalue = 4;
};

struct CardAdjustment {
    AdjustmentSetting settings;                // of the settings as a whole
    std::optional<AdjustmentSetting> ownFiles; // nothing unless both have a file of their own
};

// From the first removable drive with a settings folder; nothing when there is none.
std::optional<CardAdjustment> readCardAdjustment();

// What the frames are adjusted by: brightness is added, contrast is in percent. A value that no card should
// hold leaves the picture as it was recorded.
qint32 brightnessOf(int brightvalue);
qint32 contrastOf(int contrastvalue);

} // namespace ql240
