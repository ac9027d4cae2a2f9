// Finds the camera's card among the removable drives, and reads its version file. Nothing is cached, since
// drives come and go. A drive is identified by its mount point without trailing slash. Names on the card are
// matched case-insensitively, so that a copy on a case-sensitive file system works too. Everything here may
// block on a failing card reader and is meant for BackgroundJobs. Any thread. `drives` is the host's, read
// from the host table on the interface thread; null if the host has none.
#pragma once

#include <QList>
#include <QString>
#include <optional>

#include "platform/drives.h"
#include "settings/card_folder.h"

namespace ql240 {

QList<DriveInfo> listRemovableDrives(Drives* drives);

// The card among drives: the last one with a version file. `haveVersionFile` has an entry for each drive,
// without a value while the drive hasn't answered.
struct CardChoice {
    std::optional<qsizetype> index; // nothing if no drive is known to be the card
    bool isCertain = true;          // no outstanding answer can change the choice
};
CardChoice chooseCard(const QList<std::optional<bool>>& haveVersionFile);

// The camera's card among the removable drives; empty when there is none.
QString findCardDrive(Drives* drives);

// The drive's "setting" and "update" folder as spelled on the drive, or as it would be created if missing.
QString settingFolder(const QString& drive);
QString updateFolder(const QString& drive);

// The settings folder of the first removable drive that has one; empty when none has. The picture adjustment
// comes from there, which needs no version file.
QString firstSettingFolder(Drives* drives);

// The lines of "version.txt" in the update folder, joined by newlines with none after the last. If the file
// does not open, `openVersionText` returns nothing and `readVersionText` an empty text. At most
// limits::kVersionFileBytes of it are read.
[[nodiscard]] std::optional<QString> openVersionText(const QString& updateFolder);
[[nodiscard]] std::optional<QString> openVersionText(CardFolder& updateFolder);
QString readVersionText(const QString& updateFolder);

// The version file of the card among the drives; nothing if there is none.
std::optional<QString> cardVersionText(Drives* drives);

} // namespace ql240
