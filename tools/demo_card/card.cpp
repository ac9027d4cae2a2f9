#include "demo_card/card.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QTemporaryDir>
#include <QThreadPool>

#include "settings/setting_values.h"

namespace ql240::demo {
namespace {

constexpr char kMarkerName[] = ".demo-card"; // marks a card that may be replaced

// The owner's settings; everything else has its factory default.
SettingValues demoSettings() {
    SettingValues values;
    values.resolutionvalue = 2;
    values.speakervalue = 3;
    return values;
}

bool writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
}

bool writeByteFile(const QDir& folder, const char* key, int value) {
    const QString name = QStringLiteral("set%1.dat").arg(QLatin1String(key));
    return writeFile(folder.filePath(name), QByteArray(1, static_cast<char>(value)));
}

bool writeSettings(const QDir& folder) {
    const SettingValues values = demoSettings();
    QByteArray text;
    bool ok = writeByteFile(folder, "speedunit", 1);
    for (const SettingKey& key : kSettingKeys) {
        const int value = values.*key.value;
        if (key.files & kInText)
            text += QByteArray(key.name) + ':' + QByteArray::number(value) + '\n';
        ok = writeByteFile(folder, key.name, value) && ok;
    }
    return writeFile(folder.filePath(QStringLiteral("setting.dat")), text) && ok;
}

QString makeClips(const QDir& folder, const QList<ClipPlan>& clips, Progress& progress) {
    QThreadPool pool;
    QMutex mutex;
    QString problem;
    for (const ClipPlan& clip : clips)
        pool.start([&, path = folder.filePath(clip.name)] {
            const QString failure = progress.cancelled ? QString() : makeClip(clip, path, progress);
            if (failure.isEmpty() || progress.cancelled.exchange(true))
                return;
            const QMutexLocker lock(&mutex);
            problem = clip.name + QStringLiteral(": ") + failure;
        });
    pool.waitForDone();
    return progress.cancelled && problem.isEmpty() ? QStringLiteral("interrupted") : problem;
}

// Moves an older card into the temporary folder, which is deleted with it.
QString putInPlace(const QTemporaryDir& workshop, const QString& made, const QString& folder) {
    const QString old = workshop.filePath(QStringLiteral("old"));
    QDir files;
    if (QFileInfo::exists(folder) && !files.rename(folder, old))
        return QStringLiteral("%1 can't be replaced").arg(folder);
    if (files.rename(made, folder))
        return {};
    files.rename(old, folder);
    return QStringLiteral("%1 can't be put in place").arg(folder);
}

} // namespace

CardState cardStateOf(const QString& folder) {
    const QFileInfo info(folder);
    if (!info.exists() && !info.isSymLink())
        return CardState::Missing;
    if (!info.isDir())
        return CardState::SomethingElse;
    const QDir directory(folder);
    if (directory.isEmpty())
        return CardState::EmptyFolder;
    return directory.exists(QLatin1String(kMarkerName)) ? CardState::DemoCard : CardState::SomethingElse;
}

bool writeCardFiles(const QString& folder) {
    const QDir card(folder);
    for (const char* name : {kClipFolderName, "setting", "update", "IMAGE"})
        if (!card.mkpath(QLatin1String(name)))
            return false;
    return writeSettings(QDir(card.filePath(QStringLiteral("setting")))) &&
           writeFile(card.filePath(QStringLiteral("update/version.txt")), "QL240 1.02 1.00 12V") &&
           writeFile(card.filePath(QLatin1String(kMarkerName)),
                     "Made by ql240-demo-card, which may replace this folder.\n");
}

QString makeCard(const QString& folder, const QList<ClipPlan>& clips, Progress& progress) {
    const QString target = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    QDir().mkpath(QFileInfo(target).path());
    QTemporaryDir workshop(target + QStringLiteral(".XXXXXX"));
    const QString made = workshop.filePath(QStringLiteral("card"));
    if (!workshop.isValid() || !QDir().mkpath(made) || !writeCardFiles(made))
        return QStringLiteral("%1 can't be written").arg(QFileInfo(target).path());
    const QString problem =
        makeClips(QDir(made + QLatin1Char('/') + QLatin1String(kClipFolderName)), clips, progress);
    return problem.isEmpty() ? putInPlace(workshop, made, target) : problem;
}

} // namespace ql240::demo
