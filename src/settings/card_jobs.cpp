#include "settings/card_jobs.h"

#include <fcntl.h>
#include <linux/msdos_fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <QFile>
#include <algorithm>
#include <cstring>

#include "settings/card.h"
#include "settings/device_settings.h"

namespace ql240 {
namespace {

class DriveFolder {
public:
    explicit DriveFolder(const QString& drive)
        : m_file(::open(QFile::encodeName(drive).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}
    ~DriveFolder() {
        if (m_file >= 0)
            ::close(m_file);
    }
    Q_DISABLE_COPY_MOVE(DriveFolder)

    std::optional<FileSystemId> fileSystem() const {
        struct stat status = {};
        struct statfs system = {};
        if (m_file < 0 || ::fstat(m_file, &status) != 0 || ::fstatfs(m_file, &system) != 0)
            return std::nullopt;
        FileSystemId id;
        id.device = status.st_dev;
        id.folder = status.st_ino;
        static_assert(sizeof system.f_fsid == sizeof id.number);
        std::memcpy(&id.number, &system.f_fsid, sizeof id.number);
        if (::ioctl(m_file, FAT_IOCTL_GET_VOLUME_ID, &id.serial) != 0)
            id.serial = 0;
        id.uuid = fileSystemUuid(status.st_dev);
        return id;
    }

    // Leads into the folder that was opened, whatever is mounted over it or taken away from it meanwhile.
    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(m_file); }

private:
    int m_file;
};

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
    CardContents contents;
    contents.drive = drive;
    contents.fileSystem = DriveFolder(drive).fileSystem();
    contents.settingFolder = settingFolder(drive);
    contents.updateFolder = updateFolder(drive);
    contents.versionText = openVersionText(contents.updateFolder);
    contents.values = DeviceSettings(contents.settingFolder);
    return contents;
}

bool saveCard(const CardContents& read, const SettingValues& values,
              const std::optional<QString>& clockText) {
    const DriveFolder drive(read.drive);
    if (!read.fileSystem || drive.fileSystem() != read.fileSystem)
        return false;
    DeviceSettings settings(drive.path() + read.settingFolder.mid(read.drive.size()));
    static_cast<SettingValues&>(settings) = values;
    settings.reversalvalue = 0;
    settings.sharpnessvalue = 4;
    settings.mutevalue = values.speakervalue == 0 ? 1 : 0;
    settings.setTime(clockText.has_value(), clockText.value_or(QString()));
    settings.save();
    return true;
}

} // namespace ql240
