// The interface language, one for the whole process, and the text table that follows it. Interface thread
// only. Codes: "kr", "en", "ru", "ch", "es". Texts already shown do not change with the language; who shows
// them asks anew.
#pragma once

#include <QLocale>
#include <QString>
#include <optional>
#include <span>

namespace ql240 {

// In the order of the table.
// clang-format off
enum class UiText {
    Setting, VideoAndSound, Time, Functions, Viewer, Resolution, VideoQuality, VideoFrameRate,
    SoundRecording, SoundVolume, TimeSetting, DstSetting, GmtSetting, GetCurrentTime, TimeFormat,
    ShockSensitivity, MotionSensitivity, ParkingWatch, EventFiles, BatteryPrevention, SpeedUnit,
    PhotoFrame, Language, Ok, Cancel, Apply, Low, Middle, High, Off, On, Always, Shock, Motion, NoFiles,
    TenFiles, TwentyFiles, FortyFiles, Editor, Korean, English, Russian, Chinese, Spanish, No, Mute,
    Drive, Model, Play, Pause, Stop, PreviousFile, FrameBack, FrameForward, NextFile, ZoomIn, ZoomOut,
    Pan, Rotate, Volume, Setup, Capture, Printer, OriginalSize,
};
// clang-format on
inline constexpr int kUiTextCount = static_cast<int>(UiText::OriginalSize) + 1;

struct UiTextRow;

struct InterfaceLanguage {
    const char* code;
    UiText name;
    const char* UiTextRow::*texts;
    QLocale::Language system; // of the users who begin with it
    std::optional<QLocale::Language> alsoFor;
};

// In the order in which they are offered.
std::span<const InterfaceLanguage> interfaceLanguages();
// For users whose own isn't among them.
inline constexpr QLatin1StringView kUsualLanguage("en");

void setCurrentLanguage(const QString& code);

// Empty until start-up has chosen one.
QString currentLanguage();

// A text in the current language; Chinese and Spanish read the English texts, an unknown code the Korean
// ones.
QString uiText(UiText text);

// The interface language for someone whose system speaks `language`.
QString languageCodeFor(QLocale::Language language);

} // namespace ql240
