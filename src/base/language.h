// The interface language, one for the whole process, and the texts in it. Interface thread only. Codes: "kr",
// "en", "ru", "ch", "es". Texts on screen do not follow a change of language by themselves: widgets ask
// again.
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
    QLocale::Language system; // users with this system language start with it
    std::optional<QLocale::Language> alsoFor;
};

// In the order in which they are offered.
std::span<const InterfaceLanguage> interfaceLanguages();
// For users whose language isn't among them.
inline constexpr QLatin1StringView kUsualLanguage("en");

void setCurrentLanguage(const QString& code);

// Empty until start-up has set one.
QString currentLanguage();

// A text in the current language. Chinese and Spanish fall back to English, an unknown code to Korean.
QString uiText(UiText text);

// The interface language for a user whose system language is `language`.
QString languageCodeFor(QLocale::Language language);

} // namespace ql240
