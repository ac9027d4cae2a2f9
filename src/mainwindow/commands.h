// The commands that have a key, in one table: the window runs them by it, the list lets their keys through by
// it.
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
    const char* name;
    Qt::Key key;
    Qt::KeyboardModifier modifier;
    bool repeats; // while the key is held
    bool yields;  // to somebody who types a name in the list: the key may stand within one
    std::optional<layout::ButtonId> button; // nothing where none, or not always the same one, stands for it
};

inline constexpr std::array kCommands = std::to_array<Command>({
    {CommandId::PlayOrPause, "Play or pause", Qt::Key_Space, Qt::NoModifier, false, false, std::nullopt},
    {CommandId::FrameBack, "One frame back", Qt::Key_Left, Qt::NoModifier, true, false,
     layout::ButtonId::FrameBack},
    {CommandId::FrameForward, "One frame forward", Qt::Key_Right, Qt::NoModifier, true, false,
     layout::ButtonId::FrameForward},
    {CommandId::PreviousClip, "Previous clip", Qt::Key_PageUp, Qt::NoModifier, true, false,
     layout::ButtonId::PreviousFile},
    {CommandId::NextClip, "Next clip", Qt::Key_PageDown, Qt::NoModifier, true, false,
     layout::ButtonId::NextFile},
    {CommandId::ZoomIn, "Zoom in", Qt::Key_Plus, Qt::NoModifier, true, true, layout::ButtonId::ZoomIn},
    {CommandId::ZoomIn, "Zoom in", Qt::Key_Equal, Qt::NoModifier, true, true, layout::ButtonId::ZoomIn},
    {CommandId::ZoomOut, "Zoom out", Qt::Key_Minus, Qt::NoModifier, true, true, layout::ButtonId::ZoomOut},
    {CommandId::OriginalSize, "Original size", Qt::Key_0, Qt::NoModifier, false, true,
     layout::ButtonId::OriginalSize},
    {CommandId::Sound, "Sound on or off", Qt::Key_M, Qt::NoModifier, false, true, layout::ButtonId::Volume},
    {CommandId::Snapshot, "Save the picture", Qt::Key_S, Qt::NoModifier, false, true,
     layout::ButtonId::Snapshot},
    {CommandId::Print, "Print the picture", Qt::Key_P, Qt::ControlModifier, false, false,
     layout::ButtonId::Print},
    {CommandId::OpenFolder, "Open a folder", Qt::Key_O, Qt::ControlModifier, false, false,
     layout::ButtonId::OpenFolder},
    {CommandId::FullScreen, "Full screen", Qt::Key_F, Qt::NoModifier, false, true, std::nullopt},
});

// The command of a key press, null where it is none. Shift and the number block make no difference.
const Command* commandOf(const QKeyEvent& event);

// Whether the list leaves the key to the window. A command's key without a modifier isn't the list's with
// one either.
bool passesList(const QKeyEvent& event, bool typing);

} // namespace ql240
