// A hostile card, and the target of its links: a decoy home folder with contents that no card has.
#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

#include "support/made_card.h"

namespace ql240 {

// What replaces a file or folder. `set` gets its path on the card and in the home; false if not allowed.
struct Trap {
    const char* name;
    bool (*set)(const QByteArray& place, const QByteArray& atHome);
};
const std::vector<Trap>& traps();

// Which part of the card is replaced; the rest is an ordinary camera's card.
enum class Trapped { SettingFolder, UpdateFolder, ImageFolder, Files, FilesAside };

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
