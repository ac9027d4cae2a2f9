// Which drive becomes the card, in whatever order the drives answer, and what OK waits for.
#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>
#include <array>
#include <memory>
#include <mutex>

#include "settings/dialog_card.h"
#include "support/fake_drives.h"

using namespace ql240;
using Phase = DialogCard::Phase;

namespace {

constexpr int kBoundMs = 10000;

// Drives that wait for the test. Those named c… have a version file; the frame rate counts the readings.
struct HeldDrives {
    struct Gate {
        QSemaphore answers;
        std::atomic<int> asked = 0;
    };
    FakeDrives list;
    std::shared_ptr<std::array<Gate, 4>> gates = std::make_shared<std::array<Gate, 4>>();

    explicit HeldDrives(const QString& kinds) {
        for (int i = 0; i < kinds.size(); ++i)
            list.drives.append({kinds[i] + QString::number(i), {}, {}});
    }
    void answer(int index) { (*gates)[size_t(index)].answers.release(); }

    CardAccess access() const {
        CardAccess access;
        access.read = [gates = gates](const QString& drive) {
            CardContents contents;
            contents.drive = drive;
            contents.settingFolder = drive + QStringLiteral("/setting");
            Gate& gate = (*gates)[size_t(drive.last(1).toInt())];
            contents.values.framevalue = gate.asked++;
            if (drive.startsWith(u'c'))
                contents.versionText = QStringLiteral("QL240");
            gate.answers.acquire();
            return contents;
        };
        return access;
    }
};

bool lookFor(DialogCard& card, Phase phase) {
    if (card.phase() == Phase::Looking)
        card.look();
    return QTest::qWaitFor([&] { return card.phase() == phase; }, kBoundMs);
}

} // namespace

class TestDialogCard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void picksTheCard() {
        // The drives, the order of their answers, and the drive picked with the last answer, not before.
        const std::tuple<const char*, const char*, int> rows[] = {
            {"sc", "01", 1},
            {"csc", "2", 2},  // the last drive, a card, decides at once
            {"cs", "01", 0},  // a card waits for later drives
            {"scs", "21", 1}, // but not for earlier ones
            {"ss", "10", 0}};
        for (const auto& [drives, order, picked] : rows) {
            HeldDrives held(drives);
            DialogCard card(&held.list, held.access());
            QVERIFY(lookFor(card, Phase::Reading));
            for (const QChar each : QString(order)) {
                QVERIFY(card.phase() == Phase::Reading && !card.isEditable());
                held.answer(each.digitValue());
                QTRY_VERIFY_WITH_TIMEOUT(!card.unanswered().contains(each.digitValue()), kBoundMs);
            }
            QVERIFY2(card.phase() == Phase::Shown && card.isEditable() && card.current() == picked, drives);
            QCOMPARE(card.settingFolder(), held.list.drives[picked].drive + "/setting");
        }
    }

    // The drive that answered is shown, locked; the card replaces it when it answers.
    void lateCard() {
        HeldDrives held(QStringLiteral("sc"));
        DialogCard card(&held.list, held.access());
        const QSignalSpy loaded(&card, &DialogCard::loaded);
        HeldDrives prompt(QStringLiteral("c"));
        DialogCard known(&prompt.list, prompt.access());
        prompt.answer(0);
        QVERIFY(lookFor(known, Phase::Shown));
        held.answer(0);
        QVERIFY(lookFor(card, Phase::NoAnswer));
        QCOMPARE(known.phase(), Phase::Shown); // past its own deadline too
        QCOMPARE(card.current(), 0);
        QVERIFY(card.contents() && card.standsIn() && !card.isEditable());
        QCOMPARE(card.unanswered(), QList<int>{1});
        QVERIFY(card.settle() && card.save({}, std::nullopt) && card.settingFolder().isEmpty());
        held.answer(1);
        QVERIFY(lookFor(card, Phase::Shown));
        QCOMPARE(card.current(), 1);
        QCOMPARE(loaded.size(), 2);
    }

    // The user's choice ends the search and replaces an earlier choice.
    void answersToOlderQuestions() {
        HeldDrives held(QStringLiteral("sc"));
        DialogCard card(&held.list, held.access());
        QVERIFY(lookFor(card, Phase::Reading));
        for (int picks = 1; picks <= 2; ++picks) {
            QTRY_COMPARE_WITH_TIMEOUT((*held.gates)[0].asked.load(), picks, kBoundMs);
            card.pick(0);
            QVERIFY(!card.standsIn());
        }
        QTRY_COMPARE_WITH_TIMEOUT((*held.gates)[0].asked.load(), 3, kBoundMs);
        held.answer(0);
        held.answer(0);
        held.answer(0);
        QVERIFY(lookFor(card, Phase::Shown));
        QCOMPARE(card.contents()->values.framevalue, 2);
        held.answer(1);
        QTRY_VERIFY_WITH_TIMEOUT(card.waitBriefly(), kBoundMs);
        QCOMPARE(card.current(), 0);
        QCOMPARE(card.contents()->values.framevalue, 2);
    }

    void okWaitsForTheDrive() {
        for (const bool left : {false, true}) {
            HeldDrives held(QStringLiteral("cc"));
            DialogCard card(&held.list, held.access());
            QVERIFY(lookFor(card, Phase::Reading));
            bool locked = false;
            QTimer::singleShot(0, &card, [&] {
                card.pick(0);
                locked = card.isAwaited() && !card.isEditable() && card.standsIn() && !card.settle();
                if (left)
                    card.leave();
                held.answer(1);
            });
            QCOMPARE(card.settle(), !left);
            QVERIFY(locked && !card.isAwaited());
            QVERIFY(lookFor(card, Phase::Shown));
            QCOMPARE(card.current(), 1);
        }
    }

    // Cancel closes the last window and so ends all event loops; an answer in the same iteration is no OK.
    void cancelEndsTheProgram() {
        HeldDrives held(QStringLiteral("c"));
        DialogCard card(&held.list, held.access());
        QVERIFY(lookFor(card, Phase::Reading));
        bool settled = true;
        const auto cancel = [&] {
            card.leave();
            QCoreApplication::quit();
            QCoreApplication::sendPostedEvents();
            held.answer(0);
            lookFor(card, Phase::Shown);
        };
        QTimer::singleShot(0, &card, [&] {
            QTimer::singleShot(0, &card, cancel);
            settled = card.settle();
        });
        QCoreApplication::exec();
        QCOMPARE(card.phase(), Phase::Shown);
        QVERIFY(!settled);
    }

    // A save whose dialog was cancelled goes on; another dialog's save or reading waits for its end.
    void savesKeepTheirOrder() {
        HeldDrives held(QStringLiteral("c"));
        for (int reads = 0; reads < 3; ++reads)
            held.answer(0);
        struct Log {
            QSemaphore mayEnd;
            std::mutex mutex;
            QList<int> written;
            std::atomic<int> inside = 0;
            std::atomic<bool> crowded = false;
        };
        const auto log = std::make_shared<Log>();
        CardAccess access = held.access();
        access.save = [log](const CardContents&, const SettingValues& values, const auto&) {
            if (++log->inside > 1)
                log->crowded = true;
            log->mayEnd.acquire();
            --log->inside;
            const std::lock_guard lock(log->mutex);
            log->written.append(values.framevalue);
            return true;
        };
        DialogCard first(&held.list, access);
        DialogCard second(&held.list, access);
        QVERIFY(lookFor(first, Phase::Shown) && lookFor(second, Phase::Shown));
        SettingValues values;
        values.framevalue = 1;
        QTimer::singleShot(0, &first, &DialogCard::leave);
        QVERIFY(!first.save(values, std::nullopt));
        QCOMPARE(first.phase(), Phase::Saving);
        DialogCard third(&held.list, access);
        QVERIFY(lookFor(third, Phase::NoAnswer));
        values.framevalue = 2;
        QTimer::singleShot(0, &second, [&] { log->mayEnd.release(2); });
        QVERIFY(second.save(values, std::nullopt));
        QVERIFY(lookFor(first, Phase::Shown) && lookFor(third, Phase::Shown));
        QVERIFY(!log->crowded);
        QCOMPARE(log->written.last(), 2);
    }

    // Otherwise the save's thread would end with the program, halfway.
    void programWaitsForSaves() {
        HeldDrives held("c");
        held.answer(0);
        const auto mayEnd = std::make_shared<QSemaphore>();
        const auto ended = std::make_shared<std::atomic<bool>>(false);
        CardAccess access = held.access();
        access.save = [mayEnd, ended](const auto&...) {
            mayEnd->acquire();
            *ended = true;
            return true;
        };
        DialogCard card(&held.list, access);
        QVERIFY(lookFor(card, Phase::Shown));
        QTimer::singleShot(0, &card, &DialogCard::leave);
        QVERIFY(!card.save({}, std::nullopt));
        mayEnd->release();
        finishSaves();
        QVERIFY(*ended);
    }
};

QTEST_GUILESS_MAIN(TestDialogCard)
#include "test_dialog_card.moc"
