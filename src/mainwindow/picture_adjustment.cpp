#include "mainwindow/picture_adjustment.h"

#include <array>
#include <memory>

#include "platform/host.h"
#include "platform/waits.h"
#include "settings/card.h"
#include "settings/device_settings.h"

namespace ql240 {
namespace {

// Indexed by the values 0 to 7.
using Table = std::array<std::int32_t, 8>;
constexpr Table kBrightness{0, -60, -40, -20, 0, 20, 40, 60};
constexpr Table kContrast{60, 40, 60, 80, 100, 120, 140, 160};
constexpr int kNeutral = 4;

std::int32_t lookUp(const Table& table, int value) {
    const bool known = value >= 0 && value < static_cast<int>(table.size());
    return table[static_cast<std::size_t>(known ? value : kNeutral)];
}

} // namespace

std::optional<CardAdjustment> readCardAdjustment(Drives* drives) {
    const QString folder = firstSettingFolder(drives);
    if (folder.isEmpty())
        return std::nullopt;
    DeviceSettings card(folder);
    CardAdjustment read{{card.brightvalue, card.contrastvalue}, std::nullopt};
    if (card.loadBytes())
        read.ownFiles = {card.brightvalue, card.contrastvalue};
    return read;
}

std::int32_t brightnessOf(int brightvalue) {
    return lookUp(kBrightness, brightvalue);
}

std::int32_t contrastOf(int contrastvalue) {
    return lookUp(kContrast, contrastvalue);
}

void PictureAdjustment::setSettingsChanged() {
    m_settingsChanged = true;
    m_jobs.forget();
}

void PictureAdjustment::loadPictureAdjustment() {
    auto read = std::make_shared<std::optional<CardAdjustment>>();
    m_jobs.forget();
    m_jobs.start([read, drives = host().drives] { *read = readCardAdjustment(drives); },
                 [this, read] {
                     if (*read)
                         apply(**read);
                 });
}

void PictureAdjustment::await() {
    m_jobs.wait(waits::kPictureSettings);
}

void PictureAdjustment::apply(const CardAdjustment& read) {
    if (!m_settingsChanged)
        set(read.settings);
    if (read.ownFiles) {
        m_settingsChanged = false;
        set(*read.ownFiles);
    }
    m_changed();
}

void PictureAdjustment::set(const AdjustmentSetting& setting) {
    m_brightness = brightnessOf(setting.brightvalue);
    m_contrast = contrastOf(setting.contrastvalue);
}

} // namespace ql240
