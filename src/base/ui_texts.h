// The languages of the interface, and the texts of the settings windows and of the main window's tooltips in
// them. UTF-8.
#pragma once

#include <QLocale>
#include <algorithm>
#include <array>
#include <functional>
#include <optional>

namespace ql240 {

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

struct UiTextRow {
    UiText id;
    const char* korean;
    const char* english;
    const char* russian;
};

inline constexpr auto kUiTexts = [] {
    using enum UiText;
    return std::to_array<UiTextRow>({
        {Setting, "설정", "SETTING", "Параметр"},
        {VideoAndSound, "영상/음성", "Video & Sound", "Видео и звук"},
        {Time, "시간", "Time", "Время"},
        {Functions, "기능", "Functions", "Функции"},
        {Viewer, "뷰어설정 (하기 설정은 뷰어 디스플레이 전용입니다.)", "Viewer (The below items will only affect the viewer display.)", "Средство просмотра (эл-ты ниже влияют только на дисплей просмотра.)"},
        {Resolution, "해상도", "Resolution", "Разрешение"},
        {VideoQuality, "화질", "Video Quality", "Качество видео"},
        {VideoFrameRate, "초당 프레임 수", "Video Frame Rate", "Частота кадров"},
        {SoundRecording, "음성녹음", "Sound Recording", "Запись звука"},
        {SoundVolume, "스피커볼륨", "Sound Volume", "Громкость звука"},
        {TimeSetting, "시간 설정", "Time Setting", "Время"},
        {DstSetting, "일광절약시간", "DST Setting", "DST"},
        {GmtSetting, "표준 시간대", "GMT Setting", "GMT"},
        {GetCurrentTime, "현재 시간 가져오기", "Get Current Time", "Получить время"},
        {TimeFormat, "시간 형식", "Time Format", "Формат времени"},
        {ShockSensitivity, "충격민감도", "Shock Sensitivity", "Вибростойкость"},
        {MotionSensitivity, "움직임 민감도", "Motion Sensitivity", "движения"},
        {ParkingWatch, "주차감시모드", "Parking Watch", "Монитор парковки"},
        {EventFiles, "이벤트 파일 개수", "Event Files", "Файлы событий"},
        {BatteryPrevention, "배터리차단전압", "Battery Prevention", "Батарея"},
        {SpeedUnit, "속도단위", "Speed Unit", "Ед. изм. скорости"},
        {PhotoFrame, "전자액자", "Photo Frame", "Photo Frame"},
        {Language, "언어", "Language", "Язык"},
        {Ok, "확인", "OK", "OK"},
        {Cancel, "취소", "Cancel", "Cancel"},
        {Apply, "적용", "apply", "apply"},
        {Low, "최저", "Low", "Низкое"},
        {Middle, "보통", "Middle", "Среднее"},
        {High, "최고", "High", "Высокое"},
        {Off, "해지", "Off", "Выкл"},
        {On, "설정", "On", "вкл"},
        {Always, "상시", "Off", "Выкл"},
        {Shock, "충격", "Shock", "Удар"},
        {Motion, "움직임", "Motion", "Движение"},
        {NoFiles, "0개", "0", "0"},
        {TenFiles, "10개", "10", "10"},
        {TwentyFiles, "20개", "20", "20"},
        {FortyFiles, "40개", "40", "40"},
        {Editor, "불러오기", "Editor", "Editor"},
        {Korean, "한글 (Korean)", "Korean (한글)", "Корейский"},
        {English, "영어 (English)", "English (영어)", "Английский"},
        {Russian, "러시아어 (Русский)", "Russian (Русский)", "Русский"},
        {Chinese, "중국어()", "Chinese", "Китайский"},
        {Spanish, "스페인어 (Spanish)", "Spanish", "Испанский"},
        {No, "안함", "Off", "Выкл"},
        {Mute, "무음", "Off", "Выкл"},
        {Drive, "펌웨어버전", "Drive", "Диск"},
        {Model, "마이콤버전", "Model", "Модель"},
        {Play, "재생", "Play", "Play"},
        {Pause, "일시정지", "Pause", "Pause"},
        {Stop, "정지", "Stop", "Stop"},
        {PreviousFile, "이전 파일", "Previous File", "Previous File"},
        {FrameBack, "한 프레임 뒤로", "Rewind 1 Frame", "Rewind 1 Frame"},
        {FrameForward, "한 프레임 앞으로", "Forward 1 Frame", "Forward 1 Frame"},
        {NextFile, "다음 파일", "Next File", "Next File"},
        {ZoomIn, "확대", "Zoom-In", "Zoom-In"},
        {ZoomOut, "축소", "Zoom-Out", "Zoom-Out"},
        {Pan, "이동", "Pan", "Pan"},
        {Rotate, "회전", "Rotate", "Rotate"},
        {Volume, "볼륨", "Volume", "Volume"},
        {Setup, "설정", "Setup", "Setup"},
        {Capture, "스크린샷", "Capture", "Capture"},
        {Printer, "프린터", "Printer", "Printer"},
        {OriginalSize, "× 1.0", "× 1.0", "x 1.0"},
    });
}();
// clang-format on

static_assert(kUiTexts.size() == static_cast<std::size_t>(UiText::OriginalSize) + 1 &&
                  std::ranges::adjacent_find(kUiTexts, std::greater_equal{}, &UiTextRow::id) ==
                      kUiTexts.end(),
              "each UiText has a row, in the same order");

struct InterfaceLanguage {
    const char* code; // as it is stored
    UiText name;
    const char* UiTextRow::*texts;
    QLocale::Language system; // users with this system language start with it
    std::optional<QLocale::Language> alsoFor;
};

// In the order in which they are offered. Kikuyu selecting Russian is intended.
inline constexpr auto kInterfaceLanguages = std::to_array<InterfaceLanguage>({
    {"kr", UiText::Korean, &UiTextRow::korean, QLocale::Korean, {}},
    {"en", UiText::English, &UiTextRow::english, QLocale::English, {}},
    {"ru", UiText::Russian, &UiTextRow::russian, QLocale::Russian, QLocale::Kikuyu},
    {"ch", UiText::Chinese, &UiTextRow::english, QLocale::Chinese, {}},
    {"es", UiText::Spanish, &UiTextRow::english, QLocale::Spanish, {}},
});

} // namespace ql240
