#include "settings/card.h"

#include <fcntl.h>

#include <QFile>
#include <QTextStream>

#include "platform/limits.h"
#include "settings/card_files.h"

namespace ql240 {
namespace {

QString cardFolderPath(const QString& drive, const char* name) {
    const QByteArray path = QFile::encodeName(drive) + '/' + name;
    return QFile::decodeName(existingIgnoringCase(systemCardFiles(), path));
}

CardFile openVersionFile(const QString& updateFolder) {
    CardFiles& files = systemCardFiles();
    CardFolder folder(files, existingIgnoringCase(files, QFile::encodeName(updateFolder)), "version");
    return folder.openForReading("version.txt");
}

QByteArray readStart(CardFile& file, qsizetype limit) {
    QByteArray bytes;
    ssize_t count = 1;
    while (count > 0 && bytes.size() < limit) {
        char piece[4096];
        count = file.read(piece, sizeof piece);
        bytes.append(piece, qMax<qsizetype>(0, count));
    }
    return bytes.left(limit);
}

} // namespace

QList<DriveInfo> listRemovableDrives(Drives* drives) {
    return drives ? drives->removableDrives() : QList<DriveInfo>();
}

QString findCardDrive(Drives* drives) {
    QString card;
    const QList<DriveInfo> list = listRemovableDrives(drives);
    for (const DriveInfo& info : list) {
        if (openVersionFile(updateFolder(info.drive)).isOpen())
            card = info.drive;
    }
    return card;
}

QString settingFolder(const QString& drive) {
    return cardFolderPath(drive, "setting");
}

QString updateFolder(const QString& drive) {
    return cardFolderPath(drive, "update");
}

QString firstSettingFolder(Drives* drives) {
    const QList<DriveInfo> list = listRemovableDrives(drives);
    for (const DriveInfo& info : list) {
        const QString folder = settingFolder(info.drive);
        if (QFile::exists(folder))
            return folder;
    }
    return {};
}

std::optional<QString> openVersionText(const QString& updateFolder) {
    CardFile file = openVersionFile(updateFolder);
    if (!file.isOpen())
        return std::nullopt;
    QTextStream lines(readStart(file, limits::kVersionFileBytes));
    lines.setEncoding(QStringConverter::System);
    QString text;
    while (!lines.atEnd()) {
        text += lines.readLine();
        if (!lines.atEnd())
            text += u'\n';
    }
    return text;
}

QString readVersionText(const QString& updateFolder) {
    return openVersionText(updateFolder).value_or(QString());
}

} // namespace ql240
