#include "mainwindow/commands.h"

#include <algorithm>

namespace ql240 {
namespace {

Qt::KeyboardModifiers meantModifiers(const QKeyEvent& event) {
    return event.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
}

} // namespace

const Command* commandOf(const QKeyEvent& event) {
    const auto* found = std::ranges::find_if(kCommands, [&event](const Command& command) {
        return event.key() == command.key && meantModifiers(event) == command.modifier;
    });
    return found == kCommands.end() ? nullptr : found;
}

bool passesList(const QKeyEvent& event, bool typing) {
    return std::ranges::any_of(kCommands, [&](const Command& command) {
        return event.key() == command.key && !(typing && command.yields) &&
               (command.modifier == Qt::NoModifier || command.modifier == meantModifiers(event));
    });
}

} // namespace ql240
