#include "settings/card_jobs.h"

#include <linux/msdos_fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/sysmacros.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "platform/limits.h"
#include "platform/logging.h"
#include "settings/card.h"
#include "settings/device_settings.h"

namespace ql240 {
namespace {

std::optional<FileSystemId> fileSystemOf(const CardFolder& drive) {
    struct stat status = {};
    struct statfs system = {};
    if (!drive.isOpen() || ::fstat(drive.handle(), &status) != 0 || ::fstatfs(drive.handle(), &system) != 0)
        return std::nullopt;
    FileSystemId id;
    id.device = status.st_dev;
    id.folder = status.st_ino;
    static_assert(sizeof system.f_fsid == sizeof id.number);
    std::memcpy(&id.number, &system.f_fsid, sizeof id.number);
    if (::ioctl(drive.handle(), FAT_IOCTL_GET_VOLUME_ID, &id.serial) != 0)
        id.serial = 0;
    id.uuid = fileSystemUuid(status.st_dev);
    return id;
}

// Keeps the opened folder, whatever is mounted over it or unmounted in the meantime.
std::shared_ptr<CardFolder> openDrive(const QString& drive) {
    return std::make_shared<CardFolder>(systemCardFiles(), QFile::encodeName(drive));
}

bool isOnDrive(const QString& folder, const QList<DriveInfo>& drives) {
    return std::ranges::any_of(drives, [&](const DriveInfo& info) {
        const QString drive = QFileInfo(info.drive).canonicalFilePath();
        return !drive.isEmpty() && (folder + u'/').startsWith(drive + u'/');
    });
}

// The first parent folder of `path` that is on one of the drives; nothing when none is.
std::optional<QString> folderOnDrive(const QString& path, const QList<DriveInfo>& drives) {
    for (qsizetype end = path.indexOf(u'/', 1); end > 0; end = path.indexOf(u'/', end + 1)) {
        const QString folder = path.left(end);
        if (isOnDrive(QFileInfo(folder).canonicalFilePath(), drives))
            return folder;
    }
    return std::nullopt;
}

// On a drive, a symbolic link might have been placed to copy the user's own files to the card, so none is
// followed. Anywhere else links are the user's own.
CardFile openPicture(const QString& picture, Drives* drives) {
    QString path = QDir::cleanPath(picture);
    const std::optional<QString> onDrive = folderOnDrive(path, listRemovableDrives(drives));
    if (!onDrive)
        path = QFileInfo(path).canonicalFilePath();
    const QString root = onDrive.value_or(QFileInfo(path).path());
    QList<QByteArray> names = QFile::encodeName(path.mid(root.size())).split('/');
    const QByteArray name = names.takeLast();
    CardFolder folder(systemCardFiles(), QFile::encodeName(root));
    names.removeAll(QByteArray());
    for (const QByteArray& each : std::as_const(names))
        folder = folder.folder(each);
    return folder.openForReading(name);
}

bool copy(CardFile& from, CardFile& to) {
    std::vector<char> piece(64 * 1024);
    ssize_t count = 0;
    std::int64_t left = limits::kScreenSaverBytes;
    while ((count = from.read(piece.data(), piece.size())) > 0)
        if ((left -= count) < 0 || !to.write(piece.data(), count))
            return false;
    return count == 0;
}

} // namespace

QByteArray fileSystemUuid(dev_t device, const QString& database) {
    constexpr QByteArrayView kKey("E:ID_FS_UUID=");
    QFile entry(QStringLiteral("%1/b%2:%3").arg(database).arg(major(device)).arg(minor(device)));
    if (!entry.open(QIODevice::ReadOnly))
        return {};
    const QList<QByteArray> lines = entry.readAll().split('\n');
    const auto line = std::find_if(lines.begin(), lines.end(),
                                   [&](const QByteArray& each) { return each.startsWith(kKey); });
    return line == lines.end() ? QByteArray() : line->mid(kKey.size());
}

CardContents readCard(const QString& drive) {
    const auto root = openDrive(drive);
    CardFolder update = root->folder("update");
    CardContents contents;
    contents.drive = drive;
    contents.fileSystem = fileSystemOf(*root);
    contents.settingFolder = QFile::decodeName(root->folder("setting").path());
    contents.updateFolder = QFile::decodeName(update.path());
    contents.versionText = openVersionText(update);
    contents.values = DeviceSettings(root);
    qCDebug(lcCard) << drive << "read, version" << contents.versionText.value_or(QString());
    return contents;
}

bool saveCard(const CardContents& read, const SettingValues& values,
              const std::optional<QString>& clockText) {
    const auto drive = openDrive(read.drive);
    if (!read.fileSystem || fileSystemOf(*drive) != read.fileSystem) {
        qCWarning(lcCard) << "another file system lies at" << read.drive << "by now: nothing is saved";
        return false;
    }
    DeviceSettings settings(drive);
    static_cast<SettingValues&>(settings) = values;
    settings.reversalvalue = 0;
    settings.sharpnessvalue = 4;
    settings.mutevalue = values.speakervalue == 0 ? 1 : 0;
    settings.setTime(clockText.has_value(), clockText.value_or(QString()));
    if (!settings.save() && clockText)
        qCWarning(lcCard) << "the camera's clock isn't set";
    return true;
}

void copyScreenSaver(const QString& picture, const QString& card, Drives* drives) {
    CardFile from = openPicture(picture, drives);
    CardFolder pictures = openDrive(card)->folder("IMAGE");
    if (from.isOpen() && pictures.isListed() && !pictures.find("screensaver.bin"))
        pictures.replace("screensaver.bin", [&](CardFile& to) { return copy(from, to); });
}

} // namespace ql240
