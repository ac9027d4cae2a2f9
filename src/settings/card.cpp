#include "settings/card.h"

#include <QFile>
#include <QTextStream>

#include "platform/limits.h"

namespace ql240 {
namespace {

CardFolder openDrive(const QString& drive) {
    return CardFolder(systemCardFiles(), QFile::encodeName(drive));
}

QString folderOf(const QString& drive, const QByteArray& name) {
    return QFile::decodeName(openDrive(drive).folder(name).path());
}

} // namespace

QList<DriveInfo> listRemovableDrives(Drives* drives) {
    return drives ? drives->removableDrives() : QList<DriveInfo>();
}

CardChoice chooseCard(const QList<std::optional<bool>>& haveVersionFile) {
    bool isCertain = true;
    for (qsizetype i = haveVersionFile.size() - 1; i >= 0; --i) {
        if (haveVersionFile[i].value_or(false))
            return {i, isCertain};
        isCertain = isCertain && haveVersionFile[i].has_value();
    }
    return {std::nullopt, isCertain};
}

QString findCardDrive(Drives* drives) {
    const QList<DriveInfo> list = listRemovableDrives(drives);
    QList<std::optional<bool>> haveVersionFile;
    for (const DriveInfo& info : list)
        haveVersionFile << openDrive(info.drive).folder("update").openForReading("version.txt").isOpen();
    const CardChoice card = chooseCard(haveVersionFile);
    return card.index ? list[*card.index].drive : QString();
}

QString settingFolder(const QString& drive) {
    return folderOf(drive, "setting");
}

QString updateFolder(const QString& drive) {
    return folderOf(drive, "update");
}

QString firstSettingFolder(Drives* drives) {
    const QList<DriveInfo> list = listRemovableDrives(drives);
    for (const DriveInfo& info : list) {
        if (const CardFolder folder = openDrive(info.drive).folder("setting"); folder.isOpen())
            return QFile::decodeName(folder.path());
    }
    return {};
}

std::optional<QString> openVersionText(const QString& updateFolder) {
    CardFolder folder = cardFolderAt(systemCardFiles(), QFile::encodeName(updateFolder));
    return openVersionText(folder);
}

std::optional<QString> openVersionText(CardFolder& updateFolder) {
    CardFile file = updateFolder.openForReading("version.txt");
    if (!file.isOpen())
        return std::nullopt;
    QTextStream lines(file.readStart(limits::kVersionFileBytes));
    lines.setEncoding(QStringConverter::System);
    QString text;
    while (!lines.atEnd()) {
        text += lines.readLine();
        if (!lines.atEnd())
            text += u'\n';
    }
    return text;
}

std::optional<QString> cardVersionText(Drives* drives) {
    const QString card = findCardDrive(drives);
    return card.isEmpty() ? std::nullopt : openVersionText(updateFolder(card));
}

QString readVersionText(const QString& updateFolder) {
    return openVersionText(updateFolder).value_or(QString());
}

} // namespace ql240
