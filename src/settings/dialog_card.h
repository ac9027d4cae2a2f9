// The settings dialog's card, without widgets: looks for the drives, reads them, picks the card among them
// and saves to it. Its phase says what may be touched and what OK does. Interface thread only, which never
// waits here for longer than a blink but in `settle` and `save`, and there in an event loop.
#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>
#include <functional>
#include <map>
#include <optional>

#include "base/background_jobs.h"
#include "settings/card_jobs.h"

class QEventLoop;

namespace ql240 {

// What reads and writes a card, off the interface thread.
struct CardAccess {
    std::function<decltype(readCard)> read = readCard;
    std::function<decltype(saveCard)> save = saveCard;
};

// Returns when every save that was begun has ended, those that nobody waits for included. For the program's
// end, which would break them off in the middle of a card.
void finishSaves();

class DialogCard : public QObject {
    Q_OBJECT
public:
    enum class Phase {
        Looking,  // for the drives, however long that takes: nothing can be changed, OK waits
        NoDrive,  // there is none: the values belong to no card, OK saves them nowhere
        Reading,  // one drive, or all to find the card among them: nothing can be changed, OK waits
        NoAnswer, // still reading, but for longer than is normal: OK saves to no card
        Shown,    // one drive, whose values can be changed: OK saves them to it
        Saving,   // to that drive: nothing can be changed
    };

    explicit DialogCard(Drives* drives, CardAccess access = {});

    Phase phase() const { return m_phase; }
    // Whether somebody waits in `settle` or `save`.
    bool isAwaited() const { return m_loop; }
    bool isEditable() const { return !m_loop && (m_phase == Phase::Shown || m_phase == Phase::NoDrive); }
    // Whether the drive in view only stands in for a card that may still be found.
    bool standsIn() const {
        return m_answers.size() > 1 && m_phase != Phase::Shown && m_phase != Phase::Saving;
    }

    const QList<DriveInfo>& drives() const { return m_list; }
    // The place in the list of the drive in view, and what it holds as far as that is known; −1 and null
    // without one.
    int current() const { return m_current; }
    const CardContents* contents() const;
    // The places of the drives that are still being read.
    QList<int> unanswered() const;
    // The folder that OK writes to; empty while there is none.
    QString settingFolder() const;

    // Asks for the drives and reads them.
    void look();
    // Reads the drive at that place of the list; from now on no other can become the card.
    void pick(int index);
    // Gives answers the time of a blink, so that a card that answers at once is there when the window
    // appears. Whether none is under way any more.
    bool waitBriefly();

    // Waits until there is a drive to save to, or none at all; begins no wait for one that is known not to
    // answer. False if `leave` came first.
    [[nodiscard]] bool settle();
    // Saves to the drive shown, if any; false if `leave` came before the end. Writing goes on all the same:
    // half a save helps nobody.
    [[nodiscard]] bool save(const SettingValues& values, const std::optional<QString>& clockText);
    // Ends `settle` and `save`.
    void leave();

Q_SIGNALS:
    void listed();
    // Another drive is in view, or it has answered; `phaseChanged` follows.
    void loaded();
    // What may be touched is another now.
    void phaseChanged();

private:
    void ask(BackgroundJobs& jobs, std::function<void()> work, std::function<void()> then);
    void enter(Phase next);
    void keepDrives(const QList<DriveInfo>& drives);
    void read(const QList<int>& indices);
    void keepContents(int drive, const CardContents& contents);
    void losePatience();
    // The drive that counts as the card, as far as is known by now; `isCertain` if no answer can change it.
    struct Choice {
        int index;
        bool isCertain;
    };
    Choice card() const;
    bool await();

    Drives* m_drives;
    CardAccess m_access;
    Phase m_phase = Phase::Looking;
    int m_question = 0; // raised with each phase that asks another one
    QList<DriveInfo> m_list;
    int m_current = -1;
    std::map<int, std::optional<CardContents>> m_answers; // of the drives being read, or read last
    QEventLoop* m_loop = nullptr;                         // runs while somebody waits
    QTimer m_patience;
    BackgroundJobs m_reading;
    BackgroundJobs m_writing;
};

} // namespace ql240
