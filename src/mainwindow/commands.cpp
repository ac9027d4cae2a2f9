#include "mainwindow/commands.h"

#include <algorithm>

namespace ql240 {
namespace {

Qt::KeyboardModifiers meantModifiers(const QKeyEvent& event) {
    return event.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
}

// A sign of a command is found by its place only if the layout has another sign there.
bool isKeyOf(const Command& command, const QKeyEvent& event) {
    if (event.key() == command.key)
        return true;
    const auto isSign = [&event](const Command& other) {
        return other.place != 0 && event.key() == other.key;
    };
    return command.place != 0 && event.nativeScanCode() == command.place &&
           std::ranges::none_of(kCommands, isSign);
}

} // namespace

const Command* commandOf(const QKeyEvent& event, bool incident) {
    const auto* found = std::ranges::find_if(kCommands, [&](const Command& command) {
        return isKeyOf(command, event) && meantModifiers(event) == command.modifier &&
               (incident || !command.needsIncident);
    });
    return found == kCommands.end() ? nullptr : found;
}

bool passesList(const QKeyEvent& event, bool typing, bool incident) {
    return std::ranges::any_of(kCommands, [&](const Command& command) {
        return isKeyOf(command, event) && !(typing && command.yields) &&
               (incident || !command.needsIncident) &&
               (command.modifier == Qt::NoModifier || command.modifier == meantModifiers(event));
    });
}

} // namespace ql240
