#include "settings/dialog_card.h"

#include <QEventLoop>
#include <algorithm>
#include <atomic>
#include <future>
#include <mutex>
#include <numeric>
#include <utility>
#include <vector>

#include "platform/waits.h"
#include "settings/card.h"

namespace ql240 {
namespace {

using Phase = DialogCard::Phase;

bool mayFollow(Phase from, Phase to) {
    switch (to) {
        case Phase::Looking:
            return false;
        case Phase::NoDrive:
            return from == Phase::Looking;
        case Phase::Reading:
            return from != Phase::NoDrive && from != Phase::Saving;
        case Phase::NoAnswer:
            return from == Phase::Reading;
        case Phase::Shown:
            return from == Phase::Reading || from == Phase::NoAnswer || from == Phase::Saving;
        case Phase::Saving:
            return from == Phase::Shown;
    }
    return false;
}

// A save whose dialog is gone runs on. Saves of one drive take turns, and an older one that hasn't begun is
// skipped.
struct Saves {
    std::mutex busy;
    std::atomic<int> newest = 0;
};

std::shared_ptr<Saves> savesOf(const QString& drive) {
    static std::map<QString, std::shared_ptr<Saves>> all;
    std::shared_ptr<Saves>& saves = all[drive];
    if (!saves)
        saves = std::make_shared<Saves>();
    return saves;
}

// One future per save, ready when the save has ended.
std::vector<std::future<void>>& savesBegun() {
    static std::vector<std::future<void>> ends;
    return ends;
}

} // namespace

void finishSaves() {
    for (const std::future<void>& end : savesBegun())
        end.wait();
    savesBegun().clear();
}

DialogCard::DialogCard(Drives* drives, CardAccess access) : m_drives(drives), m_access(std::move(access)) {
    m_timeout.setSingleShot(true);
    connect(&m_timeout, &QTimer::timeout, this, &DialogCard::giveUp);
}

const CardContents* DialogCard::contents() const {
    const auto found = m_answers.find(m_current);
    return found != m_answers.end() && found->second ? &*found->second : nullptr;
}

QList<int> DialogCard::unanswered() const {
    QList<int> indices;
    for (const auto& [index, answer] : m_answers) {
        if (!answer)
            indices.append(index);
    }
    return indices;
}

QString DialogCard::settingFolder() const {
    const bool known = m_phase == Phase::Shown || m_phase == Phase::Saving;
    return known ? contents()->settingFolder : QString();
}

// All answers pass through here; an answer to a question from an earlier phase is dropped.
void DialogCard::ask(BackgroundJobs& jobs, std::function<void()> work, std::function<void()> then) {
    jobs.start(std::move(work), [this, question = m_question, then = std::move(then)] {
        if (question == m_question)
            then();
    });
}

void DialogCard::enter(Phase next) {
    Q_ASSERT(mayFollow(m_phase, next));
    m_phase = next;
    if (next != Phase::NoAnswer)
        ++m_question;
    if (m_loop && (next == Phase::Shown || next == Phase::NoDrive))
        m_loop->quit();
}

void DialogCard::look() {
    const auto drives = std::make_shared<QList<DriveInfo>>();
    ask(
        m_reading, [drives, asked = m_drives] { *drives = listRemovableDrives(asked); },
        [this, drives] { keepDrives(*drives); });
}

void DialogCard::keepDrives(const QList<DriveInfo>& drives) {
    m_list = drives;
    m_current = drives.isEmpty() ? -1 : 0;
    Q_EMIT listed();
    if (drives.isEmpty()) {
        enter(Phase::NoDrive);
        Q_EMIT phaseChanged();
        return;
    }
    QList<int> all(drives.size());
    std::iota(all.begin(), all.end(), 0);
    read(all);
}

// Reads each drive on its own thread, so that one that doesn't answer doesn't delay the others.
void DialogCard::read(const QList<int>& indices) {
    enter(Phase::Reading);
    m_answers.clear();
    m_timeout.start(waits::kSilentDrive);
    for (const int index : indices) {
        m_answers[index] = std::nullopt;
        const auto contents = std::make_shared<CardContents>();
        const QString drive = m_list.at(index).drive;
        ask(
            m_reading,
            [contents, reader = m_access.read, drive, saves = savesOf(drive)] {
                // Wait for a save in progress: until it ends, the card holds half of it.
                { const std::lock_guard turn(saves->busy); }
                *contents = reader(drive);
            },
            [this, contents, index] { keepContents(index, *contents); });
    }
}

void DialogCard::pick(int index) {
    if (m_loop || m_phase == Phase::Looking || !mayFollow(m_phase, Phase::Reading) || index < 0 ||
        index >= m_list.size())
        return;
    m_current = index;
    read({index});
    waitBriefly();
    if (m_phase == Phase::Reading)
        Q_EMIT phaseChanged();
}

bool DialogCard::waitBriefly() {
    return m_reading.wait(waits::kCardAnswer);
}

void DialogCard::keepContents(int drive, const CardContents& contents) {
    m_answers[drive] = contents;
    const auto [index, isCertain] = card();
    if (!isCertain && m_phase != Phase::NoAnswer)
        return;
    m_current = index;
    if (isCertain) {
        m_timeout.stop();
        enter(Phase::Shown);
    }
    Q_EMIT loaded();
    Q_EMIT phaseChanged();
}

void DialogCard::giveUp() {
    m_current = card().index;
    enter(Phase::NoAnswer);
    Q_EMIT loaded();
    Q_EMIT phaseChanged();
}

// If no drive has a version file, the first one takes the card's place.
DialogCard::Choice DialogCard::card() const {
    QList<int> drives;
    QList<std::optional<bool>> haveVersionFile;
    for (const auto& [drive, answer] : m_answers) {
        drives << drive;
        haveVersionFile << (answer ? std::optional(answer->versionText.has_value()) : std::nullopt);
    }
    const CardChoice card = chooseCard(haveVersionFile);
    return {drives[card.index.value_or(0)], card.isCertain};
}

bool DialogCard::settle() {
    return (m_phase != Phase::Looking && m_phase != Phase::Reading) || await();
}

bool DialogCard::save(const SettingValues& values, const std::optional<QString>& clockText) {
    if (m_phase != Phase::Shown)
        return m_phase != Phase::Saving;
    enter(Phase::Saving);
    const auto saves = savesOf(contents()->drive);
    const auto end = std::make_shared<std::promise<void>>();
    savesBegun().push_back(end->get_future());
    ask(
        m_writing,
        [saves, end, number = ++saves->newest, saver = m_access.save, read = *contents(), values, clockText] {
            const std::lock_guard turn(saves->busy);
            if (saves->newest == number)
                saver(read, values, clockText);
            end->set_value();
        },
        [this] {
            enter(Phase::Shown);
            Q_EMIT phaseChanged();
        });
    m_writing.wait(waits::kCardAnswer);
    return m_phase == Phase::Shown || await();
}

bool DialogCard::await() {
    if (m_loop)
        return false;
    QEventLoop loop;
    m_loop = &loop;
    Q_EMIT phaseChanged();
    loop.exec();
    // Don't use the loop's result: exec() also returns when the program quits.
    const bool left = !std::exchange(m_loop, nullptr);
    Q_EMIT phaseChanged();
    return !left && (m_phase == Phase::Shown || m_phase == Phase::NoDrive);
}

void DialogCard::leave() {
    if (QEventLoop* loop = std::exchange(m_loop, nullptr))
        loop->quit();
}

} // namespace ql240
