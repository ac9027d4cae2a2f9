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
};

struct Command {
    CommandId id;
    Qt::Key key;
    Qt::KeyboardModifier modifier;
    bool repeats; // while the key is held down
    bool yields;  // while a name is being typed in the list, which may contain this character
    std::optional<layout::ButtonId> button; // empty if the command has no button, or not always the same one
};

inline constexpr std::array kCommands = std::to_array<Command>({
    {CommandId::PlayOrPause, Qt::Key_Space, Qt::NoModifier, false, false, std::nullopt},
    {CommandId::FrameBack, Qt::Key_Left, Qt::NoModifier, true, false, layout::ButtonId::FrameBack},
    {CommandId::FrameForward, Qt::Key_Right, Qt::NoModifier, true, false, layout::ButtonId::FrameForward},
    {CommandId::PreviousClip, Qt::Key_PageUp, Qt::NoModifier, true, false, layout::ButtonId::PreviousFile},
    {CommandId::NextClip, Qt::Key_PageDown, Qt::NoModifier, true, false, layout::ButtonId::NextFile},
    {CommandId::ZoomIn, Qt::Key_Plus, Qt::NoModifier, true, true, layout::ButtonId::ZoomIn},
    {CommandId::ZoomIn, Qt::Key_Equal, Qt::NoModifier, true, true, layout::ButtonId::ZoomIn},
    {CommandId::ZoomOut, Qt::Key_Minus, Qt::NoModifier, true, true, layout::ButtonId::ZoomOut},
    {CommandId::OriginalSize, Qt::Key_0, Qt::NoModifier, false, true, layout::ButtonId::OriginalSize},
    {CommandId::Sound, Qt::Key_M, Qt::NoModifier, false, true, layout::ButtonId::Volume},
    {CommandId::Snapshot, Qt::Key_S, Qt::NoModifier, false, true, layout::ButtonId::Snapshot},
    {CommandId::Print, Qt::Key_P, Qt::ControlModifier, false, false, layout::ButtonId::Print},
    {CommandId::OpenFolder, Qt::Key_O, Qt::ControlModifier, false, false, layout::ButtonId::OpenFolder},
    {CommandId::FullScreen, Qt::Key_F, Qt::NoModifier, false, true, std::nullopt},
});

// The command for a key press, or null. Shift and the keypad make no difference.
const Command* commandOf(const QKeyEvent& event);

// Whether the list leaves the key to the window. A key whose command has no modifier is left to it with a
// modifier too.
bool passesList(const QKeyEvent& event, bool typing);

} // namespace ql240
