// The picture adjustment that the camera's card asks for.
#pragma once

#include <QtGlobal>
#include <cstdint>
#include <functional>
#include <optional>

#include "base/background_jobs.h"
#include "settings/card_jobs.h"

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

// From the first removable drive with a settings folder; nothing when there is none. Blocks on the card: any
// thread but the interface's.
std::optional<CardAdjustment> readCardAdjustment(Drives* drives);

// What the frames are adjusted by: brightness is added, contrast is in percent. A value that no card should
// hold leaves the picture as it was recorded.
std::int32_t brightnessOf(int brightvalue);
std::int32_t contrastOf(int contrastvalue);

// What the frames are adjusted by, kept as last read from the card. Interface thread only, where `changed` is
// called too, once the card has answered.
class PictureAdjustment {
public:
    explicit PictureAdjustment(std::function<void()> changed) : m_changed(std::move(changed)) {}

    std::int32_t brightness() const { return m_brightness; }
    std::int32_t contrast() const { return m_contrast; }

    // The settings dialog was accepted: the card may hold something else now than what was asked for before.
    void setSettingsChanged();
    bool settingsChanged() const { return m_settingsChanged; }

    // Asks the card, without waiting for it.
    void loadPictureAdjustment();
    // Waits for an answer under way, though not for long: that of a slow card comes when it comes.
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
