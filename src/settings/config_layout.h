// Geometry of the settings dialog: its painted rows and texts, and its widgets.
#pragma once

#include <array>

#include "settings/option_rows.h"

namespace ql240::config {

inline constexpr QSize kSize(554, 730);

inline constexpr int kLabelX = 54;
inline constexpr int kLineHeight = 24;

// The vertical positions of a row's texts, marks and hit boxes.
struct Line {
    int y = 0;
    int markY = 0;
    int hitY = 0;
    int hitWidth = 64;
};

constexpr QRect labelBox(int y) {
    return {kLabelX, y, 250, kLineHeight};
}

constexpr Choice choiceIn(const Line& line, int textX, int textWidth, int markX, int hitX, int value,
                          PageText name) {
    return {value,
            name,
            {textX, line.y, textWidth, kLineHeight},
            {markX, line.markY, 14, 14},
            {hitX, line.hitY, line.hitWidth, 17}};
}

// The three columns that most rows use.
constexpr Choice column(const Line& line, int index, int value, const char16_t* name) {
    constexpr std::array kTextX = {159, 256, 352};
    constexpr std::array kMarkX = {219, 315, 411};
    constexpr std::array kHitX = {168, 265, 361};
    const auto at = static_cast<std::size_t>(index);
    return choiceIn(line, kTextX[at], 56, kMarkX[at], kHitX[at], value, fixedText(name));
}

constexpr Choice shown(Choice choice, MarkRule rule) {
    choice.hit = {};
    choice.rule = rule;
    return choice;
}

inline constexpr Line kResolutionLine = {61, 67, 61};
inline constexpr std::array kResolution = {
    column(kResolutionLine, 0, 1, u"VGA"),
    column(kResolutionLine, 1, 2, u"HD"),
    column(kResolutionLine, 2, 3, u"Full-HD"),
};
inline constexpr Line kQualityLine = {88, 94, 88};
inline constexpr std::array kQuality = {
    column(kQualityLine, 0, 1, u"최저"),
    column(kQualityLine, 1, 2, u"보통"),
    column(kQualityLine, 2, 3, u"최고"),
};
inline constexpr Line kEncodingLine = {114, 120};
inline constexpr std::array kEncoding = {
    shown(column(kEncodingLine, 0, 1, u"저화질"), MarkRule::AlwaysDisabled),
    shown(column(kEncodingLine, 1, 2, u"고화질"), MarkRule::AlwaysDisabled),
};
inline constexpr Line kFrameLine = {140, 146, 140};
inline constexpr std::array kFrame = {
    column(kFrameLine, 0, 1, u"15"),
    column(kFrameLine, 1, 2, u"24"),
    column(kFrameLine, 2, 3, u"30"),
};
inline constexpr Line kSoundLine = {167, 173, 167};
inline constexpr std::array kSound = {
    column(kSoundLine, 0, 1, u"사용"),
    column(kSoundLine, 1, 0, u"사용안함"),
};
inline constexpr Line kSpeakerLine = {194, 200, 194};
inline constexpr std::array kSpeaker = {
    choiceIn(kSpeakerLine, 159, 56, 219, 168, 0, fixedText(u"Off")),
    choiceIn(kSpeakerLine, 233, 56, 293, 242, 1, fixedText(u"1")),
    choiceIn(kSpeakerLine, 307, 56, 365, 316, 2, fixedText(u"2")),
    choiceIn(kSpeakerLine, 381, 56, 438, 390, 3, fixedText(u"3")),
    choiceIn(kSpeakerLine, 455, 56, 511, 464, 4, fixedText(u"4")),
};
inline constexpr std::array kClock = {
    Choice{1, languageText(UiText::TimeSetting), {}, {135, 256, 16, 15}, {133, 256, 20, 19}},
};
inline constexpr Line kShockLine = {371, 377, 371};
inline constexpr std::array kShock = {
    column(kShockLine, 0, 1, u"낮음"),
    column(kShockLine, 1, 2, u"보통"),
    column(kShockLine, 2, 3, u"높음"),
};
inline constexpr Line kAutoParkingLine = {398, 404};
inline constexpr std::array kAutoParking = {
    shown(column(kAutoParkingLine, 0, 1, u"사용"), MarkRule::AlwaysChosen),
    shown(column(kAutoParkingLine, 1, 0, u"사용안함"), MarkRule::AlwaysDisabled),
};
inline constexpr Line kParkingLine = {424, 430, 424};
inline constexpr std::array kParking = {
    column(kParkingLine, 0, 1, u"충격"),
    choiceIn(kParkingLine, 218, 95, 315, 265, 2, fixedText(u"충격+움직임")),
};
inline constexpr Line kMotionLine = {451, 456, 450};
inline constexpr std::array kMotion = {
    column(kMotionLine, 0, 1, u"낮음"),
    column(kMotionLine, 1, 2, u"보통"),
    column(kMotionLine, 2, 3, u"높음"),
};
inline constexpr Line kSpeedLine = {501, 507, 501};
inline constexpr std::array kSpeed = {
    column(kSpeedLine, 0, 1, u"KM/H"),
    column(kSpeedLine, 1, 2, u"MPH"),
};
inline constexpr Line kHeatLine = {527, 533};
inline constexpr std::array kHeat = {
    shown(column(kHeatLine, 0, 1, u"사용"), MarkRule::AlwaysChosen),
    shown(column(kHeatLine, 1, 0, u"사용안함"), MarkRule::AlwaysDisabled),
};
inline constexpr Line kPartitionLine = {553, 559, 553, 67};
inline constexpr std::array kPartition = {
    column(kPartitionLine, 0, 1, u"A"),
    column(kPartitionLine, 1, 2, u"B"),
    column(kPartitionLine, 2, 3, u"C"),
};
inline constexpr Line kViewerSpeedLine = {664, 669, 669};
inline constexpr std::array kViewerSpeed = {
    choiceIn(kViewerSpeedLine, 168, 47, 219, 219, 1, fixedText(u"KM/H")),
    choiceIn(kViewerSpeedLine, 265, 47, 315, 315, 2, fixedText(u"MPH")),
};

// In the order in which clicks are tested.
inline constexpr std::array kRows = {
    OptionRow{languageText(UiText::Resolution), labelBox(61), &RowValues::resolutionvalue, kResolution},
    OptionRow{fixedText(u"영상화질"), labelBox(88), &RowValues::qualityvalue, kQuality},
    OptionRow{fixedText(u"녹화화질"), labelBox(114), &RowValues::encodingvalue, kEncoding,
              RowKind::ShownOnly},
    OptionRow{languageText(UiText::VideoFrameRate), labelBox(140), &RowValues::framevalue, kFrame},
    OptionRow{fixedText(u"음성녹음"), labelBox(167), &RowValues::soundvalue, kSound},
    OptionRow{fixedText(u"음성안내 음량"), labelBox(194), &RowValues::speakervalue, kSpeaker},
    OptionRow{languageText(UiText::TimeSetting), labelBox(253), &RowValues::setsClock, kClock,
              RowKind::TickBox},
    OptionRow{languageText(UiText::ShockSensitivity), labelBox(371), &RowValues::sensitivityvalue, kShock},
    OptionRow{fixedText(u"자동주차모드"), labelBox(398), &RowValues::autoparkingvalue, kAutoParking,
              RowKind::ShownOnly},
    OptionRow{languageText(UiText::ParkingWatch), labelBox(424), &RowValues::parkingvalue, kParking},
    OptionRow{languageText(UiText::MotionSensitivity), labelBox(451), &RowValues::motionvalue, kMotion},
    OptionRow{languageText(UiText::SpeedUnit), labelBox(501), &RowValues::speedValue, kSpeed},
    OptionRow{fixedText(u"고온보호설정"), labelBox(527), &RowValues::tempoffvalue, kHeat, RowKind::ShownOnly},
    OptionRow{fixedText(u"메모리파티션타입"), labelBox(553), &RowValues::partitionvalue, kPartition},
    OptionRow{languageText(UiText::SpeedUnit), labelBox(664), &RowValues::viewerSpeedUnit, kViewerSpeed},
};

// The texts beside the rows. A box may extend under the widgets to its right; the room for the text doesn't.
inline constexpr std::array kLabels = {
    PageLabel{languageText(UiText::VideoAndSound), {26, 36, 250, kLineHeight}},
    PageLabel{languageText(UiText::Time), {24, 221, 250, kLineHeight}},
    PageLabel{languageText(UiText::DstSetting), labelBox(286), Qt::AlignLeft, 80},
    PageLabel{fixedText(u"~"), {262, 286, 250, kLineHeight}},
    PageLabel{languageText(UiText::GmtSetting), labelBox(316), Qt::AlignLeft, 94},
    PageLabel{languageText(UiText::Functions), {24, 347, 250, kLineHeight}},
    PageLabel{languageText(UiText::BatteryPrevention), labelBox(476), Qt::AlignLeft, 96},
    PageLabel{fixedText(u"시큐리티LED"), labelBox(579), Qt::AlignLeft, 94},
    PageLabel{languageText(UiText::Viewer), {24, 605, 550, kLineHeight}, Qt::AlignLeft, 516},
    PageLabel{languageText(UiText::Language), labelBox(636), Qt::AlignLeft, 101},
    PageLabel{fixedText(u"QL240 Ver 1.02"), {9, 699, 250, kLineHeight}},
    PageLabel{fixedText(u"드라이브"), {102, 12, 56, kLineHeight}, Qt::AlignRight},
    PageLabel{fixedText(u"펌웨어"), {231, 12, 56, kLineHeight}, Qt::AlignRight},
    PageLabel{fixedText(u"마이콤"), {360, 12, 56, kLineHeight}, Qt::AlignRight},
};

inline constexpr QRect kDstMark(135, 291, 16, 15);

inline constexpr QRect kTitle(54, 9, 250, 24);
inline constexpr int kTitleRoom = 50; // up to the drive list's label
inline constexpr QRect kClose(510, 13, 21, 19);
inline constexpr QRect kDriveList(161, 13, 79, 18);
inline constexpr QRect kFirmwareList(290, 13, 79, 18);
inline constexpr QRect kMicomList(419, 13, 79, 18);
inline constexpr QRect kClockField(156, 256, 221, 18);
inline constexpr QRect kDstStart(156, 289, 103, 18);
inline constexpr QRect kDstEnd(275, 289, 103, 18);
inline constexpr QRect kZoneButton(149, 314, 233, 28);
inline constexpr QRect kGetTime(405, 250, 134, 28);
inline constexpr QRect kScreenSaver(149, 501, 233, 28);
inline constexpr QRect kLanguageList(156, 639, 222, 19);
inline constexpr QRect kOk(477, 688, 61, 28);
inline constexpr QRect kCancel(412, 688, 61, 28);

// The buttons that open pages 0 to 6.
struct PageButton {
    const char16_t* text;
    const char* images;
    QRect place;
};

inline constexpr std::array kPageButtons = {
    PageButton{u"영상\n조절", "video_edit_", {441, 61, 87, 50}},
    PageButton{u"영상\n덮어쓰기", "video_edit_", {441, 118, 87, 50}},
    PageButton{u"상세설정", "shock_", {440, 365, 87, 36}},
    PageButton{u"타이머방전전압차단", "battery_time_", {151, 475, 134, 28}},
    PageButton{u"12V 방전 전압 차단", "battery_time_", {281, 475, 134, 28}},
    PageButton{u"24V 방전 전압 차단", "battery_time_", {411, 475, 134, 28}},
    PageButton{u"LED 설정", "gmt_", {149, 578, 233, 28}},
};

} // namespace ql240::config
