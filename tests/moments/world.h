// One run's world: cards in a reader, folders of clips, a desktop that answers at random times, and the
// viewer's real window. All randomness comes from the run's seed. Main thread; owned by the run.
#pragma once

#include <QTemporaryDir>

#include <array>
#include <memory>
#include <set>

#include "mainwindow/main_window.h"
#include "moments/slow_jobs.h"
#include "moments/steps.h"
#include "moments/timed_media.h"
#include "platform/folder_dialogs.h"
#include "playback/video_view.h"
#include "support/fake_drives.h"
#include "support/fake_inhibitor.h"
#include "support/fake_sensor_library.h"
#include "support/fake_wave_out.h"
#include "support/fake_web_pages.h"
#include "support/fake_window_dialogs.h"

namespace ql240 {
class ConfigWindow;
struct SettingKey;
} // namespace ql240

namespace ql240::moments {

// How fast background jobs end.
enum class Reader { Healthy, Slow, Dead };

struct CardSlot {
    QString drive;
    QByteArray label;
    bool isCamera = false; // has a version file
    bool inserted = false;
};

class World : public FolderDialogs {
public:
    explicit World(quint32 seed);
    ~World() override;
    Q_DISABLE_COPY_MOVE(World)

    // Records the first fault; later ones may be its consequences.
    void fail(const QString& what);
    const QString& failure() const { return m_failure; }

    std::optional<QString> browseForFolder(QWidget* owner, const FolderCallback& callback) override;

    QString someFolder() { return luck.oneOf(folders); }
    QString someClip() { return luck.oneOf(clips); }

    // --- What the run changes ---
    void setInserted(CardSlot& card, bool inserted);
    void loseClip();
    void setMediaTrouble(bool on);

    // --- What is there ---
    int indexOfClip(const QString& path) const;
    bool opens(const QString& path) const;
    // A value that only this clip's sensor data has as the speed at this time.
    int speedAt(const QString& path, qint64 ms) const;
    const Player* player() const { return m_mainView->player(); }
    // Whether the map shows its page.
    bool mapIsLoaded() const { return pages.view && pages.view->isVisible(); }
    // When the reading of the last track ends, however late; nothing if it never does.
    std::optional<qint64> trackDueMs() const { return m_trackDueMs; }
    // The longest wait for a job since the last call.
    qint64 longestWaitMs() { return jobs.takeLongestWaitMs(); }
    QRect pictureRect() const { return media.windows[0].rect; }

    QTemporaryDir root;
    Luck luck;
    Reader reader = Reader::Healthy;
    std::vector<QString> folders; // with clips, with one clip, empty, missing
    std::vector<QString> clips;   // paths, by index
    std::set<QString> broken;
    std::array<CardSlot, 3> cards;
    bool mediaTrouble = false;

    SlowJobs jobs;
    FakeDrives drives;
    TimedMedia media;
    FakeSensorLibrary sensors;
    FakeWebPages pages;
    FakeUrlOpener urls;
    FakeInhibitor inhibitor;
    FakeWaveOut volume;
    std::function<void(const QString& text)> onWarn = [](const QString&) {};
    std::unique_ptr<MainWindow> window;

private:
    int latencyMs();
    int drawLatencyMs();
    void makeFolders();
    static void makeCamera(const QString& drive, const QByteArray& version,
                           const std::function<int(const SettingKey&)>& valueOf);
    void makeCards(bool withStrangers);
    void setTraps(const QString& drive);
    QString makeFolder(const QString& name, int clipCount);
    void fillHost();

    QString m_failure;
    bool m_asksForTrack = false; // the next job is that
    std::optional<qint64> m_trackDueMs;
    VideoView* m_mainView = nullptr;
};

} // namespace ql240::moments
