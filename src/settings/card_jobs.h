// Reading and saving a card off the interface thread, since a dying reader may hold either for minutes. The
// card is touched only while one of these runs, so that it can be unmounted at any other time.
#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <optional>

#include "platform/drives.h"
#include "settings/setting_values.h"

namespace ql240 {

// Tells the file system under a folder from any other that may come to lie under it.
struct FileSystemId {
    dev_t device = 0;
    ino_t folder = 0;
    std::uint64_t number = 0;
    // Two cards in one reader differ by nothing else; the first is a FAT volume's, the second udev's.
    std::uint32_t serial = 0;
    QByteArray uuid;

    bool operator==(const FileSystemId&) const = default;
};

// What udev's database says of the file system on a block device; empty where it says nothing.
QByteArray fileSystemUuid(dev_t device, const QString& database = QStringLiteral("/run/udev/data"));

// What the settings dialog shows of one drive.
struct CardContents {
    QString drive;
    QString settingFolder;
    QString updateFolder;
    std::optional<FileSystemId> fileSystem; // nothing if the drive could not be opened
    std::optional<QString> versionText;     // nothing if there is no version file: then this is no card
    SettingValues values;
};

CardContents readCard(const QString& drive);

// Writes `values`, and the camera's clock if there is a text for it, to the card that was read. False, and
// nothing is written, if another file system lies under the drive's folder by now: that of another card, or
// of the machine itself.
[[nodiscard]] bool saveCard(const CardContents& read, const SettingValues& values,
                            const std::optional<QString>& clockText);

// Copies the picture that the user chose to the card, unless that has a screen saver or no folder for it.
void copyScreenSaver(const QString& picture, const QString& card, Drives* drives);

} // namespace ql240
