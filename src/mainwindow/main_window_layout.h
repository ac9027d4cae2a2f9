// Geometry of everything in the main window. Construction, skin, tooltips, accessible names, placement and
// tests read these tables. Window coordinates in pixels.
#pragma once

#include <QMargins>
#include <QRect>
#include <array>
#include <optional>

#include "base/language.h"

namespace ql240::layout {

inline constexpr QSize kWindow(1024, 645);

inline constexpr QRect kMainView(22, 32, 640, 360);
inline constexpr QRect kSubView(681, 32, 320, 180);
inline constexpr QRect kMapView(680, 32, 320, 206);
inline constexpr QRect kFolderLabel(683, 239, 290, 18);
inline constexpr QRect kClipList(680, 259, 320, 370);
inline constexpr QRect kWaitNote(692, 280, 296, 96); // over the list, which is empty then
inline constexpr QRect kProgressPanel(23, 394, 642, 250);
inline constexpr QRect kVolume(600, 445, 52, 9);

// Outside pan mode, only mouse moves within these bounds, ends included, are passed to the view.
inline constexpr int kMoveLeft = 22;
inline constexpr int kMoveRight = 760;
inline constexpr int kMoveTop = 32;
inline constexpr int kMoveBottom = 460;

// In full screen the main view leaves a margin of one pixel.
inline constexpr QMargins kFullScreenMargins(1, 1, 1, 1);

// In order of creation, which is also the stacking order.
enum class ButtonId {
    Play,
    Pause,
    Stop,
    PreviousFile,
    FrameBack,
    FrameForward,
    NextFile,
    ZoomIn,
    ZoomOut,
    OriginalSize,
    Pan,
    Volume,
    Setting,
    Snapshot,
    Print,
    Minimise,
    Exit,
    OpenFile,
    OpenFolder,
    Logo,
};
inline constexpr std::size_t kButtonCount = 20;

struct ButtonRow {
    ButtonId id;
    const char* name;   // accessible name where there is no tooltip
    const char* images; // prefix of the image names; the logo has one image for all states
    QRect place;
    std::optional<UiText> hoverText;
};

inline constexpr std::array<ButtonRow, kButtonCount> kButtons{{
    {ButtonId::Play, "Play", "play_", {137, 433, 36, 36}, UiText::Play},
    {ButtonId::Pause, "Pause", "pause", {137, 433, 36, 36}, UiText::Pause},
    {ButtonId::Stop, "Stop", "stop_", {190, 433, 36, 36}, UiText::Stop},
    {ButtonId::PreviousFile, "Previous File", "pre_file_", {27, 433, 36, 36}, UiText::PreviousFile},
    {ButtonId::FrameBack, "Rewind 1 Frame", "rw_", {80, 433, 36, 36}, UiText::FrameBack},
    {ButtonId::FrameForward, "Forward 1 Frame", "fw_", {247, 433, 36, 36}, UiText::FrameForward},
    {ButtonId::NextFile, "Next File", "next_file_", {302, 433, 36, 36}, UiText::NextFile},
    {ButtonId::ZoomIn, "Zoom-In", "zoom_in_", {352, 433, 36, 36}, UiText::ZoomIn},
    {ButtonId::ZoomOut, "Zoom-Out", "zoom_out_", {396, 433, 36, 36}, UiText::ZoomOut},
    {ButtonId::OriginalSize, "Original Size", "original_screen_", {440, 433, 36, 36}, UiText::OriginalSize},
    {ButtonId::Pan, "Pan", "pan_", {484, 433, 36, 36}, UiText::Pan},
    {ButtonId::Volume, "Volume", "volume", {576, 442, 19, 17}, UiText::Volume},
    {ButtonId::Setting, "Setup", "setting_", {677, 7, 19, 20}, UiText::Setup},
    {ButtonId::Snapshot, "Capture", "snapshot_", {718, 9, 22, 18}, UiText::Capture},
    {ButtonId::Print, "Printer", "print_", {761, 7, 20, 20}, UiText::Printer},
    {ButtonId::Minimise, "Minimize", "close_", {951, 8, 21, 19}, std::nullopt},
    {ButtonId::Exit, "Exit", "exit_", {982, 8, 21, 19}, std::nullopt},
    {ButtonId::OpenFile, "Open File", "file_open_", {945, 433, 21, 16}, std::nullopt},
    {ButtonId::OpenFolder, "Open Folder", "folder_open_", {980, 242, 20, 16}, std::nullopt},
    {ButtonId::Logo, "QL240", "ql240_logo", {21, 7, 196, 22}, std::nullopt},
}};

// The buttons that are enabled with the controls, and those that full screen hides besides the widgets it
// names.
inline constexpr std::array kControls{
    ButtonId::Play,      ButtonId::Pause,        ButtonId::Stop,     ButtonId::PreviousFile,
    ButtonId::FrameBack, ButtonId::FrameForward, ButtonId::NextFile, ButtonId::ZoomIn,
    ButtonId::ZoomOut,   ButtonId::OriginalSize, ButtonId::Pan,      ButtonId::Volume,
};
inline constexpr std::array kPanelButtons{
    ButtonId::Stop,     ButtonId::PreviousFile, ButtonId::FrameBack, ButtonId::FrameForward,
    ButtonId::NextFile, ButtonId::ZoomIn,       ButtonId::ZoomOut,   ButtonId::OriginalSize,
    ButtonId::Pan,      ButtonId::Volume,
};
inline constexpr std::array kFrameButtons{ButtonId::Snapshot, ButtonId::Print};

} // namespace ql240::layout
