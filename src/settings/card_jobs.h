// Reads and saves a card off the interface thread, because a failing card reader may block for minutes.
// Nothing on the card stays open between calls, so that it can be unmounted at any other time.
#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <optional>

#include "platform/drives.h"
#include "settings/setting_values.h"

namespace ql240 {

// Distinguishes a folder's file system from any other that may be mounted there later.
struct FileSystemId {
    dev_t device = 0;
    ino_t folder = 0;
    std::uint64_t number = 0;
    // These tell apart two cards in the same reader: the FAT volume's serial number, and the UUID in udev's
    // database.
    std::uint32_t serial = 0;
    QByteArray uuid;

    bool operator==(const FileSystemId&) const = default;
};

// The file system UUID of a block device from udev's database; empty if it has none.
QByteArray fileSystemUuid(dev_t device, const QString& database = QStringLiteral("/run/udev/data"));

// What the settings dialog shows of one drive.
struct CardContents {
    QString drive;
    QString settingFolder;
    QString updateFolder;
    std::optional<FileSystemId> fileSystem; // empty if the drive could not be opened
    std::optional<QString> versionText;     // empty without a version file: then this isn't the card
    SettingValues values;
};

CardContents readCard(const QString& drive);

// Writes `values` to the card that was read, and the camera's clock if `clockText` is set. Returns false
// without writing if another file system is mounted there by now: another card, or the machine's own disk.
[[nodiscard]] bool saveCard(const CardContents& read, const SettingValues& values,
                            const std::optional<QString>& clockText);

// Copies the picture that the user chose to the card, unless the card has a screen saver already or no folder
// for it.
void copyScreenSaver(const QString& picture, const QString& card, Drives* drives);

} // namespace ql240
