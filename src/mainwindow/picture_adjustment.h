// The picture adjustment set on the camera's card.
#pragma once

#include <QtGlobal>
#include <cstdint>
#include <functional>
#include <optional>

#include "base/background_jobs.h"
#include "settings/card_jobs.h"

namespace ql240 {

// The values on the card: 1 to 7 each, 4 neutral.
struct AdjustmentSetting {
    int brightvalue = 4;
    int contrastvalue = 4;
};

struct CardAdjustment {
    AdjustmentSetting settings;                // from the settings as a whole
    std::optional<AdjustmentSetting> ownFiles; // empty unless both have a file of their own
};

// From the first removable drive with a settings folder; empty when there is none. Blocks on the card: never
// call it on the interface thread.
std::optional<CardAdjustment> readCardAdjustment(Drives* drives);

// The adjustment of the frames for a card's value: brightness is added, contrast is in percent. A value
// outside 0 to 7 counts as neutral.
std::int32_t brightnessOf(int brightvalue);
std::int32_t contrastOf(int contrastvalue);

// The adjustment of the frames, as last read from the card. Interface thread only; `changed` is called there
// too, once the card has answered.
class PictureAdjustment {
public:
    explicit PictureAdjustment(std::function<void()> changed) : m_changed(std::move(changed)) {}

    std::int32_t brightness() const { return m_brightness; }
    std::int32_t contrast() const { return m_contrast; }

    // Call when the settings dialog was accepted: the card's contents may have changed, so an answer still
    // under way is dropped.
    void setSettingsChanged();
    bool settingsChanged() const { return m_settingsChanged; }

    // Asks the card without waiting for it.
    void loadPictureAdjustment();
    // Waits briefly for an answer under way; a slow card's answer is applied when it arrives.
    void await();

private:
    void apply(const CardAdjustment& read);
    void set(const AdjustmentSetting& setting);

    std::function<void()> m_changed;
    std::int32_t m_brightness = 0;
    std::int32_t m_contrast = 100;
    bool m_settingsChanged = false;
    BackgroundJobs m_jobs;
};

} // namespace ql240
