// A hostile card, and beside it the target of its links: a decoy of the user's home folder, laid out like a
// card, with contents that no card here has.
#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

#include "support/made_card.h"

namespace ql240 {

// What takes the place of a file or folder. `set` gets the path on the card and the same path in the home;
// false if the machine doesn't allow it.
struct Trap {
    const char* name;
    bool (*set)(const QByteArray& place, const QByteArray& atHome);
};
const std::vector<Trap>& traps();

// Which part of the card is trapped; the rest is an ordinary camera's card.
enum class Trapped { SettingFolder, UpdateFolder, ImageFolder, Files, FilesAside };

// False if the machine doesn't allow it.
bool setTrap(const Trap& trap, Trapped part, const QString& cardDrive, const QString& homeFolder);

struct HostileCard {
    static constexpr char kSecret = 0x55;

    HostileCard();
    bool set(const Trap& trap, Trapped part) { return setTrap(trap, part, card.drive(), home.drive()); }
    // Every entry in the home: name, kind, size, and when it was last changed.
    QByteArray homeListing() const;

    MadeCard card;
    MadeCard home;
};

} // namespace ql240
