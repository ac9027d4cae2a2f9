// The settings dialog's card, without widgets: lists the drives, reads them, picks the card among them and
// saves to it. Its phase determines what can be changed and what OK does. Interface thread only. Blocks at
// most for a few hundredths of a second, except `settle` and `save`, which run an event loop.
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

// The functions that read and write a card off the interface thread; tests replace them.
struct CardAccess {
    std::function<decltype(readCard)> read = readCard;
    std::function<decltype(saveCard)> save = saveCard;
};

// Returns when every save has ended, including saves whose dialog is gone. Call before the program ends,
// which would kill them half-way.
void finishSaves();

class DialogCard : public QObject {
    Q_OBJECT
public:
    enum class Phase {
        Looking,  // for the drives, however long it takes: nothing can be changed, OK waits
        NoDrive,  // none found: the values belong to no card, OK saves them nowhere
        Reading,  // one drive, or all to find the card: nothing can be changed, OK waits
        NoAnswer, // still reading after the time limit: OK saves to no card
        Shown,    // one drive's values, which can be changed: OK saves them to it
        Saving,   // to that drive: nothing can be changed
    };

    explicit DialogCard(Drives* drives, CardAccess access = {});

    Phase phase() const { return m_phase; }
    // Whether `settle` or `save` is waiting.
    bool isAwaited() const { return m_loop; }
    bool isEditable() const { return !m_loop && (m_phase == Phase::Shown || m_phase == Phase::NoDrive); }
    // Whether the drive in view is provisional: the card may still be found.
    bool standsIn() const {
        return m_answers.size() > 1 && m_phase != Phase::Shown && m_phase != Phase::Saving;
    }

    const QList<DriveInfo>& drives() const { return m_list; }
    // The index of the drive in view, and its contents once known; −1 and null without a drive.
    int current() const { return m_current; }
    const CardContents* contents() const;
    // Indices of the drives still being read.
    QList<int> unanswered() const;
    // The folder that OK writes to; empty while there is none.
    QString settingFolder() const;

    // Lists the drives and reads them.
    void look();
    // Reads the drive at that index; from now on no other drive can become the card.
    void pick(int index);
    // Waits up to 80 ms for answers, so that a fast card is there when the window appears. Returns whether
    // none is outstanding.
    bool waitBriefly();

    // Waits until there is a drive to save to, or none at all. Doesn't wait for a drive already known not to
    // answer. False if `leave` was called first.
    [[nodiscard]] bool settle();
    // Saves to the drive shown, if any; false if `leave` was called before the end. The save continues even
    // then, because half a save would leave the card inconsistent.
    [[nodiscard]] bool save(const SettingValues& values, const std::optional<QString>& clockText);
    // Ends the wait in `settle` or `save`.
    void leave();

Q_SIGNALS:
    void listed();
    // Another drive is in view, or it has answered; `phaseChanged` follows.
    void loaded();
    // What can be changed may be different now.
    void phaseChanged();

private:
    void ask(BackgroundJobs& jobs, std::function<void()> work, std::function<void()> then);
    void enter(Phase next);
    void keepDrives(const QList<DriveInfo>& drives);
    void read(const QList<int>& indices);
    void keepContents(int drive, const CardContents& contents);
    void giveUp();
    // The card as far as is known; `isCertain` if no outstanding answer can change that.
    struct Choice {
        int index;
        bool isCertain;
    };
    Choice card() const;
    bool await();

    Drives* m_drives;
    CardAccess m_access;
    Phase m_phase = Phase::Looking;
    int m_question = 0; // raised whenever earlier questions become obsolete
    QList<DriveInfo> m_list;
    int m_current = -1;
    std::map<int, std::optional<CardContents>> m_answers; // of the drives being read, or read last
    QEventLoop* m_loop = nullptr;                         // runs while `settle` or `save` waits
    QTimer m_timeout;                                     // for the answers
    BackgroundJobs m_reading;
    BackgroundJobs m_writing;
};

} // namespace ql240
