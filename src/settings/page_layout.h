// Geometry of the settings dialog's small pages. Seven of them differ in nothing else.
#pragma once

#include <array>

#include "settings/option_rows.h"

namespace ql240::pages {

// Everything in which the pages differ.
struct PageLayout {
    const char16_t* title;
    const char* background;
    QSize size;
    QRect ok, cancel, close, titleBox;
    std::span<const OptionRow> rows = {};
    std::span<const PageLabel> labels = {};
    bool enterCancels = false; // for a page that would do harm if confirmed by habit
};

inline constexpr int kLineHeight = 24;

// Marks of 14 × 14 centred on points at the same height, with hit boxes around them.
struct Scale {
    int markY;
    QRect hit; // relative to the mark's centre; y is relative to the window if `hitAtWindowY`
    bool hitAtWindowY = false;
};

constexpr QRect markAround(int x, int y) {
    return {x - 7, y - 7, 14, 14};
}

constexpr Choice onScale(const Scale& scale, int x, int value, const char16_t* name) {
    const int hitY = scale.hitAtWindowY ? scale.hit.y() : scale.markY + scale.hit.y();
    return {value,
            fixedText(name),
            {},
            markAround(x, scale.markY),
            {x + scale.hit.x(), hitY, scale.hit.width(), scale.hit.height()}};
}

template <std::size_t count>
constexpr std::array<Choice, count> choicesOn(const Scale& scale, const std::array<int, count>& xs,
                                              const std::array<int, count>& values,
                                              const std::array<const char16_t*, count>& names) {
    std::array<Choice, count> choices = {};
    for (std::size_t i = 0; i < count; ++i)
        choices[i] = onScale(scale, xs[i], values[i], names[i]);
    return choices;
}

inline constexpr QRect kHitAround(-10, -10, 20, 20);
inline constexpr QRect kHitBattery(-10, 65, 20, 40);
inline constexpr std::array kOneToTen = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
inline constexpr std::array kOneToTenNames = {u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"8", u"9", u"10"};

template <std::size_t count>
constexpr std::array<Choice, count> numbered(const Scale& scale, const std::array<int, count>& xs) {
    std::array<Choice, count> choices = {};
    for (std::size_t i = 0; i < count; ++i)
        choices[i] = onScale(scale, xs[i], kOneToTen[i], kOneToTenNames[i]);
    return choices;
}

// Page 0: brightness and contrast.
inline constexpr std::array kPictureX = {169, 219, 269, 319, 369, 419, 469};
inline constexpr auto kBright = numbered(Scale{118, kHitAround}, kPictureX);
inline constexpr auto kContrast = numbered(Scale{201, kHitAround}, kPictureX);
inline constexpr std::array kPictureRows = {
    OptionRow{fixedText(u"밝기조절"),
              {49, 108, 100, kLineHeight},
              &RowValues::brightvalue,
              kBright,
              RowKind::Choices,
              kBright.back().mark},
    OptionRow{fixedText(u"대비조절"),
              {49, 190, 100, kLineHeight},
              &RowValues::contrastvalue,
              kContrast,
              RowKind::Choices,
              kContrast.back().mark},
};

// Page 1: which old recordings are overwritten by new ones.
constexpr std::array<Choice, 2> overwriteChoices(int textY, int markY) {
    return {Choice{1,
                   fixedText(u"사용"),
                   {141, textY, 150, kLineHeight},
                   {294, markY, 14, 14},
                   {284, markY - 5, 30, 30}},
            Choice{0,
                   fixedText(u"사용안함"),
                   {238, textY, 150, kLineHeight},
                   {390, markY, 14, 14},
                   {380, markY - 5, 30, 30}}};
}
inline constexpr auto kEventOverwrite = overwriteChoices(77, 81);
inline constexpr auto kManualOverwrite = overwriteChoices(125, 130);
inline constexpr auto kMotionOverwrite = overwriteChoices(174, 179);
inline constexpr std::array kOverwriteRows = {
    OptionRow{fixedText(u"이벤트 영상 덮어쓰기"),
              {49, 77, 150, kLineHeight},
              &RowValues::evtoverwritevalue,
              kEventOverwrite,
              RowKind::Choices,
              kEventOverwrite.back().mark},
    OptionRow{fixedText(u"수동 녹화 영상 덮어쓰기"),
              {49, 125, 150, kLineHeight},
              &RowValues::manuoverwritevalue,
              kManualOverwrite,
              RowKind::Choices,
              kManualOverwrite.back().mark},
    OptionRow{fixedText(u"모션 녹화 영상 덮어쓰기"),
              {49, 174, 150, kLineHeight},
              &RowValues::motoverwritevalue,
              kMotionOverwrite,
              RowKind::Choices,
              kMotionOverwrite.back().mark},
};

// Page 2: shock sensitivity while driving and while parked.
inline constexpr std::array kShockX = {64, 112, 161, 209, 257, 305, 353, 401, 449, 497};
inline constexpr auto kDriving = numbered(Scale{117, kHitAround}, kShockX);
inline constexpr auto kParked = numbered(Scale{198, kHitAround}, kShockX);
inline constexpr std::array kShockRows = {
    OptionRow{fixedText(u"상시 모드시 충격 민감도"),
              {52, 65, 200, kLineHeight},
              &RowValues::sensitivityvalue1,
              kDriving,
              RowKind::Choices,
              kDriving.back().mark},
    OptionRow{fixedText(u"주차 모드시 충격 민감도"),
              {52, 146, 200, kLineHeight},
              &RowValues::sensitivityvalue2,
              kParked,
              RowKind::Choices,
              kParked.back().mark},
};
inline constexpr std::array kShockLabels = {
    PageLabel{fixedText(u"둔감"), {4, 106, 50, kLineHeight}, Qt::AlignRight},
    PageLabel{fixedText(u"민감"), {509, 106, 50, kLineHeight}},
    PageLabel{fixedText(u"둔감"), {4, 186, 50, kLineHeight}, Qt::AlignRight},
    PageLabel{fixedText(u"민감"), {509, 186, 50, kLineHeight}},
};

// Pages 3 to 5: battery cut-off by timer and by voltage. The background shows the numbers; the row's name
// isn't painted.
inline constexpr std::array kTimerX = {108, 160, 212, 264, 316, 368, 420, 472};
inline constexpr auto kTimer = numbered(Scale{90, kHitBattery, true}, kTimerX);
inline constexpr std::array kTimerRows = {
    OptionRow{fixedText(u"타이머 방전 전압 차단"),
              {},
              &RowValues::timeoffvalue,
              kTimer,
              RowKind::Choices,
              kTimer.front().mark},
};
inline constexpr std::array kVoltageX = {58, 113, 168, 223, 278, 333, 388, 443, 498};
inline constexpr auto kVolts12 = choicesOn<9>(
    Scale{91, kHitBattery, true}, kVoltageX, {0, 116, 117, 118, 119, 120, 121, 122, 123},
    {u"Off", u"11.6 V", u"11.7 V", u"11.8 V", u"11.9 V", u"12.0 V", u"12.1 V", u"12.2 V", u"12.3 V"});
inline constexpr std::array kVolts12Rows = {
    OptionRow{fixedText(u"12V 방전 전압 차단"),
              {},
              &RowValues::batteryvalue1,
              kVolts12,
              RowKind::Choices,
              kVolts12.front().mark},
};
inline constexpr auto kVolts24 = choicesOn<9>(
    Scale{91, kHitBattery, true}, kVoltageX, {0, 232, 234, 236, 238, 240, 242, 244, 246},
    {u"Off", u"23.2 V", u"23.4 V", u"23.6 V", u"23.8 V", u"24.0 V", u"24.2 V", u"24.4 V", u"24.6 V"});
inline constexpr std::array kVolts24Rows = {
    OptionRow{fixedText(u"24V 방전 전압 차단"),
              {},
              &RowValues::batteryvalue2,
              kVolts24,
              RowKind::Choices,
              kVolts24.front().mark},
};

// Page 6: the security LED.
constexpr Choice ledChoice(int value, const char16_t* name, int textY, int markY) {
    return {value,
            fixedText(name),
            {49, textY, 100, kLineHeight},
            {145, markY, 14, 14},
            {120, markY - 10, 40, 20}};
}
inline constexpr std::array kLed = {
    ledChoice(0, u"Off", 88, 93),
    ledChoice(1, u"Mode1", 115, 121),
    ledChoice(2, u"Mode2", 143, 149),
    ledChoice(3, u"Mode3", 171, 177),
};
inline constexpr std::array kLedRows = {
    OptionRow{fixedText(u"시큐리티 LED"),
              {},
              &RowValues::securityvalue,
              kLed,
              RowKind::Choices,
              {145, 68, 14, 14},
              Qt::AlignLeft},
};

constexpr PageLayout tall(const char16_t* title, const char* background, std::span<const OptionRow> rows) {
    return {title,
            background,
            {554, 260},
            {473, 221, 61, 28},
            {408, 221, 61, 28},
            {510, 13, 21, 19},
            {55, 10, 250, 24},
            rows};
}
constexpr PageLayout flat(const char16_t* title, const char* background, std::span<const OptionRow> rows) {
    return {title,
            background,
            {554, 147},
            {473, 108, 61, 28},
            {408, 108, 61, 28},
            {510, 13, 21, 19},
            {55, 10, 250, 24},
            rows};
}
constexpr PageLayout withLabels(PageLayout layout, std::span<const PageLabel> labels) {
    layout.labels = labels;
    return layout;
}
constexpr PageLayout warning() {
    PageLayout layout = tall(u"경고", "memory_warning_bg", {});
    layout.close = {509, 13, 21, 19};
    layout.titleBox = {55, 10, 100, 24};
    layout.enterCancels = true;
    return layout;
}

inline constexpr std::array<PageLayout, 8> kPages = {
    tall(u"영상 조절", "video_edit_bg", kPictureRows),
    tall(u"영상 덮어 쓰기", "video_over_bg", kOverwriteRows),
    withLabels(tall(u"상세설정", "shock_bg", kShockRows), kShockLabels),
    flat(u"타이머 방전 전압 차단", "batt_timer_bg", kTimerRows),
    flat(u"12V 방전 전압 차단", "batt_12v_bg", kVolts12Rows),
    flat(u"24V 방전 전압 차단", "batt_24v_bg", kVolts24Rows),
    PageLayout{u"시큐리티 LED",
               "LED_bg",
               {241, 260},
               {160, 221, 61, 28},
               {95, 221, 61, 28},
               {197, 13, 21, 19},
               {55, 10, 100, 24},
               kLedRows},
    warning(),
};

inline constexpr QRect kNotice(36, 84, 481, 39);
inline constexpr QRect kCaution(21, 155, 481, 39);

} // namespace ql240::pages
