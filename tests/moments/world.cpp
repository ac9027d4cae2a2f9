#include "moments/world.h"

#include <QDialog>
#include <QDir>
#include <QFile>
#include <algorithm>

#include "clips/clip.h"
#include "moments/virtual_time.h"
#include "platform/host.h"
#include "playback/video_view.h"
#include "settings/setting_values.h"
#include "support/hostile_card.h"

namespace ql240::moments {
namespace {

constexpr int kClipMs = 6000;

void write(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot make %s", qPrintable(path));
}

// A placeholder dialog that the run accepts or rejects.
bool askUser(QWidget* parent, const QString& title) {
    QDialog box(parent);
    box.setWindowTitle(title);
    box.resize(200, 80);
    return box.exec() == QDialog::Accepted;
}

struct Dialogs : WindowDialogs {
    explicit Dialogs(World& owner) : world(owner) {}

    void warn(QWidget* parent, const QString& title, const QString& text) override {
        world.onWarn(text);
        askUser(parent, title);
    }
    QString askOpenFile(QWidget* parent, const QString& caption, const QString&) override {
        const QString chosen = world.someClip();
        return askUser(parent, caption) ? chosen : QString();
    }
    QString askSaveFile(QWidget* parent, const QString& caption, const QString& name,
                        const QString&) override {
        const QString path = world.root.filePath(QStringLiteral("out/") + name);
        if (world.luck.chance(30))
            QFile::link(world.root.filePath(QStringLiteral("home/picture")), path);
        return askUser(parent, caption) ? path : QString();
    }
    bool askPrinter(QWidget* parent, QPrinter&) override {
        askUser(parent, QStringLiteral("print"));
        return false;
    }

    World& world;
};

} // namespace

World::World(quint32 seed) : jobs([this] { return latencyMs(); }) {
    luck.reseed(seed);
    media.clip.durationMs = kClipMs;
    media.setSeekMs(luck.below(3) * 40);
    makeFolders();
    makeCards(meetsStranger(seed));
    fillHost();
    window = std::make_unique<MainWindow>(nullptr, Qt::FramelessWindowHint);
    m_mainView = window->findChildren<VideoView*>().first(); // created before the sub view
    window->setDialogs(std::make_unique<Dialogs>(*this));
    window->move(50, 50);
    window->show();
    window->activateWindow();
}

World::~World() {
    window.reset();
    host() = {};
    forgetCalls();
}

void World::fail(const QString& what) {
    if (m_failure.isEmpty())
        m_failure = what;
}

void World::fillHost() {
    Host& table = host();
    table.drives = &drives;
    table.folderDialogs = this;
    table.inhibitor = &inhibitor;
    table.media = &media;
    table.makeSensorLibrary = [this] {
        m_asksForTrack = true;
        return sensors.lend();
    };
    table.urlOpener = &urls;
    table.waveOut = &volume;
    table.webPages = &pages;
    sensors.answer = [this](std::int64_t ms) {
        FakeSensorLibrary::Answer answer;
        const QString path = QString::fromLocal8Bit(sensors.path);
        answer.speed = speedAt(path, ms);
        answer.latitude = 1000000 * (10 + indexOfClip(path));
        answer.longitude = 1000000 + 1000 * static_cast<std::int32_t>(ms / 100);
        return answer;
    };
    sensors.lastMs = kClipMs;
}

QString World::makeFolder(const QString& name, int clipCount) {
    const QString folder = root.filePath(name);
    QDir().mkpath(folder);
    for (int i = 0; i < clipCount; ++i) {
        const char* kinds[] = {"REC", "EVS", "XYZ"};
        const auto clip = QStringLiteral("%1/%2_2013_04_05_12_%3_00.%4")
                              .arg(folder, QLatin1String(luck.oneOf(kinds)))
                              .arg(30 + i)
                              .arg(luck.chance(70) ? QLatin1String("mp4") : QLatin1String("avi"));
        write(clip, "clip");
        clips.push_back(clip);
        if (luck.chance(20))
            broken.insert(clip);
    }
    return folder;
}

void World::makeFolders() {
    folders = {makeFolder(QStringLiteral("many"), 3 + luck.below(3)), makeFolder(QStringLiteral("one"), 1),
               makeFolder(QStringLiteral("none"), 0), root.filePath(QStringLiteral("gone"))};
    for (const QString& clip : broken)
        media.answers[QStringLiteral("load ") + clip] = kStatusFail;
    QDir().mkpath(root.filePath(QStringLiteral("out")));
    write(root.filePath(QStringLiteral("home/notes.txt")), "nobody writes here");
}

void World::makeCamera(const QString& drive, const QByteArray& version,
                       const std::function<int(const SettingKey&)>& valueOf) {
    write(drive + QStringLiteral("/update/version.txt"), version);
    for (const SettingKey& key : kSettingKeys)
        write(QStringLiteral("%1/setting/set%2.dat").arg(drive, QLatin1String(key.name)),
              QByteArray(1, static_cast<char>(valueOf(key))));
}

// Values differ from every default, so that a default on a card comes from a save. The last card may be
// hostile and link into the home folder.
void World::makeCards(bool withStrangers) {
    makeCamera(root.filePath(QStringLiteral("home")), "SECRET SECRET SECRET",
               [](const SettingKey&) { return HostileCard::kSecret; });
    for (std::size_t i = 0; i < cards.size(); ++i) {
        CardSlot card{root.filePath(QStringLiteral("drive%1").arg(i)), i == 0 ? "STICK" : "CAMERA", i > 0,
                      false};
        QDir().mkpath(card.drive);
        if (card.isCamera)
            makeCamera(card.drive, "QL240 1.02 1.00",
                       [](const SettingKey& key) { return SettingValues().*key.value == 1 ? 2 : 1; });
        if (i + 1 == cards.size() && withStrangers)
            setTraps(card.drive);
        QDir().rename(card.drive, card.drive + QStringLiteral(".away"));
        cards[i] = card;
    }
    for (CardSlot& card : cards)
        setInserted(card, (withStrangers && &card == &cards.back()) || luck.chance(60));
}

// Mostly links into the home folder.
void World::setTraps(const QString& drive) {
    constexpr Trapped kParts[] = {Trapped::SettingFolder, Trapped::UpdateFolder, Trapped::Files,
                                  Trapped::FilesAside};
    constexpr int kLinks = 3;
    const int smallTraps = static_cast<int>(traps().size()) - 1; // the last one is a giant
    const int trap = luck.below(luck.chance(60) ? kLinks : smallTraps);
    setTrap(traps()[static_cast<std::size_t>(trap)], luck.oneOf(kParts), drive,
            root.filePath(QStringLiteral("home")));
}

void World::setInserted(CardSlot& card, bool inserted) {
    if (card.inserted == inserted)
        return;
    card.inserted = inserted;
    const QString away = card.drive + QStringLiteral(".away");
    if (inserted)
        QDir().rename(away, card.drive);
    else
        QDir().rename(card.drive, away);
    drives.drives.clear();
    for (const CardSlot& each : cards) {
        if (each.inserted)
            drives.drives.append({each.drive, each.label, "vfat"});
    }
}

void World::loseClip() {
    QFile::remove(someClip());
}

void World::setMediaTrouble(bool on) {
    mediaTrouble |= on;
    for (const char* call : {"run", "pause", "stop", "seek", "join"}) {
        media.answers.erase(QLatin1String(call));
        if (on && luck.chance(50))
            media.answers[QLatin1String(call)] = kStatusFail;
    }
}

int World::indexOfClip(const QString& path) const {
    const auto found = std::find(clips.begin(), clips.end(), path);
    return found == clips.end() ? -1 : static_cast<int>(found - clips.begin());
}

bool World::opens(const QString& path) const {
    return !broken.contains(path);
}

int World::speedAt(const QString& path, qint64 ms) const {
    constexpr int kStepMs = 300;
    return 1 + 22 * indexOfClip(path) + static_cast<int>(ms / kStepMs);
}

std::optional<QString> World::browseForFolder(QWidget* owner, const FolderCallback& callback) {
    struct Dialog : FolderDialog {
        void setSelection(const QString&) override {}
        void enableOk(bool enabled) override { ok = enabled; }
        bool ok = false;
    } dialog;
    const QString chosen = someFolder();
    callback(dialog, FolderMessage::Initialised, {});
    callback(dialog, FolderMessage::SelectionChanged, chosen);
    const bool accepted = askUser(owner, QStringLiteral("folder"));
    return accepted && dialog.ok ? std::optional(chosen) : std::nullopt;
}

int World::latencyMs() {
    // Some clips' tracks are late however quick the reader is.
    constexpr int kLate[] = {60, 130, 420, 1500, 4000, -1};
    if (!std::exchange(m_asksForTrack, false))
        return drawLatencyMs();
    const int latency = luck.chance(30) ? luck.oneOf(kLate) : drawLatencyMs();
    m_trackDueMs = latency < 0 ? std::nullopt : std::optional(nowMs() + latency);
    return latency;
}

int World::drawLatencyMs() {
    constexpr int kSlow[] = {60, 90, 130, 420, 700, 2500, 9000};
    switch (reader) {
        case Reader::Healthy:
            return luck.below(8);
        case Reader::Slow:
            return luck.oneOf(kSlow);
        case Reader::Dead:
            return luck.chance(70) ? -1 : 30000;
    }
    return 0;
}

} // namespace ql240::moments
