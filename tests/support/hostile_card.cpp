#include "support/hostile_card.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <QProcess>
#include <algorithm>

#include "settings/setting_values.h"

namespace ql240 {
namespace {

bool linkTo(const QByteArray& target, const QByteArray& place) {
    return ::symlink(target.constData(), place.constData()) == 0;
}

bool node(const QByteArray& place, mode_t kind, dev_t device = 0) {
    return ::mknod(place.constData(), kind | 0666, device) == 0;
}

QByteArray folderOf(const QByteArray& path) {
    return path.left(path.lastIndexOf('/'));
}

QByteArray relative(const QByteArray& place, const QByteArray& target) {
    return QFile::encodeName(
        QDir(QFile::decodeName(folderOf(place))).relativeFilePath(QFile::decodeName(target)));
}

QStringList settingFiles(const QString& end) {
    QStringList names{QStringLiteral("setting/settime.") + end};
    for (const SettingKey& key : kSettingKeys)
        names.append(QStringLiteral("setting/set%1.%2").arg(QLatin1String(key.name), end));
    return names;
}

QStringList placesOf(Trapped part) {
    switch (part) {
        case Trapped::SettingFolder:
            return {QStringLiteral("setting")};
        case Trapped::UpdateFolder:
            return {QStringLiteral("update")};
        case Trapped::ImageFolder:
            return {QStringLiteral("IMAGE")};
        case Trapped::Files:
            return settingFiles(QStringLiteral("dat")) +
                   QStringList{QStringLiteral("setting/setting.dat"), QStringLiteral("update/version.txt"),
                               QStringLiteral("IMAGE/screensaver.bin"), QStringLiteral("chosen.bin")};
        case Trapped::FilesAside:
            return settingFiles(QStringLiteral("new")) + QStringList{QStringLiteral("IMAGE/screensaver.new")};
    }
    return {};
}

void fill(const MadeCard& card, char value, const QByteArray& version) {
    for (const QString& name : settingFiles(QStringLiteral("dat")))
        card.put(name, QByteArray(1, value));
    card.put(QStringLiteral("setting/setting.dat"),
             "framevalue:" + QByteArray::number(value) + "\nsecurityvalue:" + QByteArray::number(value));
    card.put(QStringLiteral("update/version.txt"), version);
    card.put(QStringLiteral("chosen.bin"), version);
    card.put(QStringLiteral("IMAGE/other.bin"), version);
}

} // namespace

const std::vector<Trap>& traps() {
    static const std::vector<Trap> all = {
        {"link", [](const QByteArray& place, const QByteArray& atHome) { return linkTo(atHome, place); }},
        {"relative link", [](const QByteArray& place,
                             const QByteArray& atHome) { return linkTo(relative(place, atHome), place); }},
        {"link through the process",
         [](const QByteArray& place, const QByteArray& atHome) {
             return linkTo("/proc/self/root" + atHome, place);
         }},
        {"link to what isn't there yet",
         [](const QByteArray& place, const QByteArray& atHome) { return linkTo(atHome + ".made", place); }},
        {"link in capitals",
         [](const QByteArray& place, const QByteArray& atHome) {
             return linkTo(atHome, folderOf(place) + place.mid(place.lastIndexOf('/')).toUpper());
         }},
        {"link to itself",
         [](const QByteArray& place, const QByteArray&) {
             return linkTo(place.mid(place.lastIndexOf('/') + 1), place);
         }},
        {"link to its folder", [](const QByteArray& place, const QByteArray&) { return linkTo(".", place); }},
        {"pipe", [](const QByteArray& place, const QByteArray&) { return node(place, S_IFIFO); }},
        {"socket", [](const QByteArray& place, const QByteArray&) { return node(place, S_IFSOCK); }},
        {"endless device",
         [](const QByteArray& place, const QByteArray&) { return node(place, S_IFCHR, makedev(1, 5)); }},
        {"folder",
         [](const QByteArray& place, const QByteArray&) { return QDir().mkpath(QFile::decodeName(place)); }},
        {"file of 4 GiB",
         [](const QByteArray& place, const QByteArray&) {
             return node(place, S_IFREG) && ::truncate(place.constData(), off_t(1) << 32) == 0;
         }},
    };
    return all;
}

HostileCard::HostileCard() {
    fill(card, 2, "QL240 1.02 1.00");
    card.put(QStringLiteral("setting/set") + QString(248, u'x') + QStringLiteral(".dat"), "longest name");
    fill(home, kSecret, "SECRET SECRET SECRET");
}

bool setTrap(const Trap& trap, Trapped part, const QString& cardDrive, const QString& homeFolder) {
    const QString card = cardDrive + QLatin1Char('/');
    const QString home = homeFolder + QLatin1Char('/');
    const QStringList places = placesOf(part);
    // For traps at the temporary names, remove the files that those would replace.
    for (const QString& name : part == Trapped::FilesAside ? settingFiles(QStringLiteral("dat")) : places) {
        QFile::remove(card + name);
        QDir(card + name).removeRecursively();
    }
    return std::all_of(places.begin(), places.end(), [&](const QString& name) {
        return trap.set(QFile::encodeName(card + name), QFile::encodeName(home + name));
    });
}

QByteArray HostileCard::homeListing() const {
    QProcess find;
    find.start("find", {home.drive(), "-printf", "%p %y %m %s %T@ %C@ %l\\n"});
    if (!find.waitForFinished(-1) || find.exitCode() != 0)
        qFatal("the home cannot be listed");
    QByteArrayList lines = find.readAllStandardOutput().split('\n');
    std::sort(lines.begin(), lines.end());
    return lines.join('\n');
}

} // namespace ql240
