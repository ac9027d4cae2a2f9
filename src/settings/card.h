// The camera's card among the removable drives, and its version file. Nothing is cached: drives come and go.
// A drive is named by its mount point without trailing slash. Names on the card are found without regard to
// case, so that a copy on a case-sensitive file system serves as well. Everything here may block on a dying
// card reader; BackgroundJobs runs it on threads of their own. Any thread; `drives` are the host's, taken on
// the interface thread, and null where the host has none to give.
#pragma once

#include <QList>
#include <QString>
#include <optional>

#include "platform/drives.h"
#include "settings/card_folder.h"

namespace ql240 {

QList<DriveInfo> listRemovableDrives(Drives* drives);

// The last removable drive whose version file opens; empty when there is none.
QString findCardDrive(Drives* drives);

// The drive's "setting" and "update" folder, in the spelling found on the drive; where none exists, as it
// would be made.
QString settingFolder(const QString& drive);
QString updateFolder(const QString& drive);

// The settings folder of the first removable drive that has one; empty when none has. Where the picture
// adjustment comes from, which does not ask for a version file.
QString firstSettingFolder(Drives* drives);

// The lines of "version.txt" in the update folder, joined by "\n" with none after the last. `openVersionText`
// is nothing when the file does not open, `readVersionText` is empty then. Past limits::kVersionFileBytes the
// file is not read.
[[nodiscard]] std::optional<QString> openVersionText(const QString& updateFolder);
[[nodiscard]] std::optional<QString> openVersionText(CardFolder& updateFolder);
QString readVersionText(const QString& updateFolder);

// The version file of the card among the drives; nothing where there is none.
std::optional<QString> cardVersionText(Drives* drives);

} // namespace ql240
