// What the settings windows' painted texts mean. Many are Korean in every language of the interface; hover
// texts and screen readers give them in English, or in Russian where the interface has the text. Interface
// thread only.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>

#include "settings/option_rows.h"

namespace ql240 {

struct SpokenText {
    std::u16string_view painted;
    const char* english = nullptr; // null: the interface's text below
    UiText entry = {};
};

// clang-format off
inline constexpr auto kSpokenTexts = std::to_array<SpokenText>({
    {u"영상화질", nullptr, UiText::VideoQuality},
    {u"녹화화질", "Recording quality"},
    {u"음성녹음", nullptr, UiText::SoundRecording},
    {u"음성안내 음량", "Volume of the voice guidance"},
    {u"자동주차모드", "Automatic parking mode"},
    {u"고온보호설정", "Protection from heat"},
    {u"메모리파티션타입", "Memory partition type"},
    {u"최저", nullptr, UiText::Low},
    {u"보통", nullptr, UiText::Middle},
    {u"최고", nullptr, UiText::High},
    {u"저화질", "Low quality"},
    {u"고화질", "High quality"},
    {u"사용", nullptr, UiText::On},
    {u"사용안함", nullptr, UiText::Off},
    {u"낮음", nullptr, UiText::Low},
    {u"높음", nullptr, UiText::High},
    {u"충격", nullptr, UiText::Shock},
    {u"충격+움직임", "Shock and motion"},
    {u"밝기조절", "Brightness"},
    {u"대비조절", "Contrast"},
    {u"이벤트 영상 덮어쓰기", "Overwrite old event recordings"},
    {u"수동 녹화 영상 덮어쓰기", "Overwrite old manual recordings"},
    {u"모션 녹화 영상 덮어쓰기", "Overwrite old motion recordings"},
    {u"상시 모드시 충격 민감도", "Shock sensitivity while driving"},
    {u"주차 모드시 충격 민감도", "Shock sensitivity while parked"},
    {u"타이머 방전 전압 차단", "Battery cut-off by timer"},
    {u"12V 방전 전압 차단", "Battery cut-off voltage, 12 V"},
    {u"24V 방전 전압 차단", "Battery cut-off voltage, 24 V"},
    {u"시큐리티 LED", "Security LED"},
    {u"영상\n조절", "Picture adjustment"},
    {u"영상\n덮어쓰기", "Overwriting of recordings"},
    {u"상세설정", "Shock sensitivity in detail"},
    {u"타이머방전전압차단", "Battery cut-off by timer"},
    {u"LED 설정", "Security LED"},
    {u"영상 조절", "Picture adjustment"},
    {u"영상 덮어 쓰기", "Overwriting of recordings"},
    {u"경고", "Warning"},
    {u"드라이브", nullptr, UiText::Drive},
    {u"펌웨어", "Firmware"},
    {u"마이콤", "Microcontroller"},
    {u"메모리 파티션 타입 변경 후 SD 메모리 카드를 블랙박스에 삽입하여\n전원을 연결하면 포맷이 자동 진행 됩니다. ",
     "With the new partition type, the camera formats the SD card as soon as the card is inserted and the power is on."},
    {u"-주  의-\n포맷시 블랙박스에 저장 된 모든 데이터가 삭제 됩니다. ",
     "Caution: formatting deletes everything that the camera has recorded."},
});
// clang-format on

// The meaning of a painted text; the text itself if it needs none, or if the interface is in Korean.
QString spokenText(const QString& painted);

// Shows the meaning of rows and choices when the pointer rests on them. `window` paints `rows`, which outlive
// it.
void addRowHoverTexts(QWidget* window, std::span<const OptionRow> rows);
// The same for one widget with a painted text, and names it for screen readers.
void speak(QWidget* widget, const QString& painted);

} // namespace ql240
