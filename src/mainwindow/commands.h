// The commands that have a key, in one table: the window runs commands by it, and the clip list passes their
// keys on by it.
#pragma once

#include <QKeyEvent>
#include <array>
#include <optional>

#include "mainwindow/main_window_layout.h"

namespace ql240 {

enum class CommandId {
    PlayOrPause,
    FrameBack,
    FrameForward,
    PreviousClip,
    NextClip,
    ZoomIn,
    ZoomOut,
    OriginalSize,
    Sound,
    Snapshot,
    Print,
    OpenFolder,
    FullScreen,
    Keys,
    Incident,
    Mark,
    RangeFrom,
    RangeTo,
    PreviousMoment,
    NextMoment,
};

struct Command {
    CommandId id;
    Qt::Key key;
    Qt::KeyboardModifier modifier;
    bool repeats; // while the key is held down
    bool yields;  // while a name is being typed in the list, which may contain this character
    std::optional<layout::ButtonId> button; // empty if the command has no button, or not always the same one
    const char* does;                       // as the list of keys says it
    bool needsIncident = false;             // works only while the Incident window is open
    // The key's place on the keyboard, as its evdev code plus 8, for layouts that lack the sign.
    std::uint32_t place = 0;
};

inline constexpr std::array kCommands = std::to_array<Command>({
    {CommandId::PlayOrPause, Qt::Key_Space, Qt::NoModifier, false, false, std::nullopt, "Play or pause"},
    {CommandId::FrameBack, Qt::Key_Left, Qt::NoModifier, true, false, layout::ButtonId::FrameBack,
     "One step back"},
    {CommandId::FrameForward, Qt::Key_Right, Qt::NoModifier, true, false, layout::ButtonId::FrameForward,
     "One step forward"},
    {CommandId::PreviousClip, Qt::Key_PageUp, Qt::NoModifier, true, false, layout::ButtonId::PreviousFile,
     "Previous clip"},
    {CommandId::NextClip, Qt::Key_PageDown, Qt::NoModifier, true, false, layout::ButtonId::NextFile,
     "Next clip"},
    {CommandId::ZoomIn, Qt::Key_Plus, Qt::NoModifier, true, true, layout::ButtonId::ZoomIn, "Zoom in"},
    {CommandId::ZoomIn, Qt::Key_Equal, Qt::NoModifier, true, true, layout::ButtonId::ZoomIn, "Zoom in"},
    {CommandId::ZoomOut, Qt::Key_Minus, Qt::NoModifier, true, true, layout::ButtonId::ZoomOut, "Zoom out"},
    {CommandId::OriginalSize, Qt::Key_0, Qt::NoModifier, false, true, layout::ButtonId::OriginalSize,
     "The whole picture"},
    {CommandId::Sound, Qt::Key_M, Qt::NoModifier, false, true, layout::ButtonId::Volume, "Sound on or off"},
    {CommandId::Snapshot, Qt::Key_S, Qt::NoModifier, false, true, layout::ButtonId::Snapshot,
     "Save the picture"},
    {CommandId::Print, Qt::Key_P, Qt::ControlModifier, false, false, layout::ButtonId::Print,
     "Print the picture"},
    {CommandId::OpenFolder, Qt::Key_O, Qt::ControlModifier, false, false, layout::ButtonId::OpenFolder,
     "Open a folder"},
    {CommandId::FullScreen, Qt::Key_F, Qt::NoModifier, false, true, std::nullopt,
     "Full screen; any key leaves it"},
    {CommandId::Keys, Qt::Key_F1, Qt::NoModifier, false, false, std::nullopt, "Show or hide these keys"},
    {CommandId::Incident, Qt::Key_I, Qt::ControlModifier, false, false, std::nullopt,
     "Open or close the Incident window"},
    {CommandId::Mark, Qt::Key_M, Qt::ControlModifier, false, false, std::nullopt,
     "Mark the picture, or remove its mark", true},
    {CommandId::RangeFrom, Qt::Key_Comma, Qt::NoModifier, false, true, std::nullopt, "The range begins here",
     true, 59},
    {CommandId::RangeTo, Qt::Key_Period, Qt::NoModifier, false, true, std::nullopt, "The range ends here",
     true, 60},
    {CommandId::PreviousMoment, Qt::Key_BracketLeft, Qt::NoModifier, true, true, std::nullopt,
     "Previous moment", true, 34},
    {CommandId::NextMoment, Qt::Key_BracketRight, Qt::NoModifier, true, true, std::nullopt, "Next moment",
     true, 35},
});

// The command for a key press, or null. Shift and the keypad make no difference. `incident`: whether the
// Incident window is open.
const Command* commandOf(const QKeyEvent& event, bool incident);

// Whether the list leaves the key to the window. A key whose command has no modifier is left to it with a
// modifier too.
bool passesList(const QKeyEvent& event, bool typing, bool incident);

} // namespace ql240
