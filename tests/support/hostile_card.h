// A card that leads whoever reads or writes it astray, and beside it what it leads to: a decoy of the user's
// home, laid out like a card, whose every word is one that no card here has.
#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

#include "support/made_card.h"

namespace ql240 {

// What lies in a file's or a folder's stead. `set` gets the place on the card and the same place in the home;
// it is false where the machine doesn't allow it.
struct Trap {
    const char* name;
    bool (*set)(const QByteArray& place, const QByteArray& atHome);
};
const std::vector<Trap>& traps();

// Which part of the card is trapped; the rest is an ordinary camera's.
enum class Trapped { SettingFolder, UpdateFolder, ImageFolder, Files, FilesAside };

// False where the machine doesn't allow it.
bool setTrap(const Trap& trap, Trapped part, const QString& cardDrive, const QString& homeFolder);

struct HostileCard {
    static constexpr char kSecret = 0x55;

    HostileCard();
    bool set(const Trap& trap, Trapped part) { return setTrap(trap, part, card.drive(), home.drive()); }
    // Every entry of the home: name, kind, size, times, and what it holds.
    QByteArray homeListing() const;

    MadeCard card;
    MadeCard home;
};

} // namespace ql240
