// Everything that reads or writes a card, on a hostile one: nothing beyond the card is read or changed, and
// neither memory nor the interface thread's time is exhausted.
#include <QAbstractEventDispatcher>
#include <QComboBox>
#include <QElapsedTimer>

#include "mainwindow/picture_adjustment.h"
#include "settings/card.h"
#include "settings/card_files.h"
#include "settings/card_jobs.h"
#include "settings/config_layout.h"
#include "settings/device_settings.h"
#include "support/hostile_card.h"
#include "support/peak_memory.h"
#include "support/settings_fixture.h"

using namespace ql240;

namespace {

// A hang never ends and a giant file takes gigabytes: these leave room for busy machines and sanitizers.
constexpr qint64 kLongestTurnMs = 5000;
constexpr qint64 kMostMiB = 512;
constexpr QPoint kVga(170, 65);

// The longest time between two iterations of the event loop.
class TurnWatch : public QObject {
public:
    TurnWatch() {
        const auto* dispatcher = QAbstractEventDispatcher::instance();
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &TurnWatch::end);
        connect(dispatcher, &QAbstractEventDispatcher::awake, this, [this] { m_turn.restart(); });
        m_turn.start();
    }
    void end() { m_longest = qMax(m_longest, m_turn.restart()); }
    qint64 longestMs() {
        end();
        return m_longest;
    }

private:
    QElapsedTimer m_turn;
    qint64 m_longest = 0;
};

// Saves with the dialog, including the clock. Returns what it showed of the card.
QString useDialog() {
    ReadyWindow window;
    QString shown;
    for (const QComboBox* list : window.findChildren<QComboBox*>())
        shown += list->currentText();
    for (const SettingKey& key : kSettingKeys)
        shown += QLatin1String(window.values().*key.value == HostileCard::kSecret ? "SECRET" : "");
    click(window, kVga);
    click(window, config::kClock[0].hit.center());
    window.OnSlotsOK();
    return window.result() == QDialog::Accepted ? shown : QStringLiteral("not saved");
}

} // namespace

class TestHostileCard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_memory.emplace(); }

    void leadsNowhere_data() {
        QTest::addColumn<int>("trap");
        QTest::addColumn<Trapped>("part");
        constexpr std::pair<Trapped, const char*> kParts[] = {
            {Trapped::SettingFolder, "the settings' folder"}, {Trapped::UpdateFolder, "the version's folder"},
            {Trapped::ImageFolder, "the pictures' folder"},   {Trapped::Files, "the files"},
            {Trapped::FilesAside, "the files aside"},
        };
        for (size_t i = 0; i < traps().size(); ++i) {
            for (const auto& [part, name] : kParts)
                QTest::addRow("%s for %s", traps()[i].name, name) << int(i) << part;
        }
    }
    void leadsNowhere() {
        QFETCH(int, trap);
        QFETCH(Trapped, part);
        SettingsFixture fixture;
        HostileCard made;
        if (!made.set(traps()[size_t(trap)], part))
            QSKIP("this machine makes no such entry");
        fixture.insert(made.card);
        const QByteArray before = made.homeListing();
        const MadeCard other;
        other.put(QStringLiteral("picture.bin"), "a picture");
        QVERIFY(QFile::link(made.card.drive(), other.path(QStringLiteral("card"))));

        TurnWatch turns;
        const QString shown = useDialog();
        QCOMPARE_LT(turns.longestMs(), kLongestTurnMs);
        const auto adjustment = readCardAdjustment(host().drives);
        const auto model = cardVersionText(host().drives);
        for (const QString& drive : {other.path(QStringLiteral("card")), made.card.drive()})
            copyScreenSaver(drive + QStringLiteral("/chosen.bin"), made.card.drive(), host().drives);
        copyScreenSaver(other.path(QStringLiteral("picture.bin")), made.card.drive(), host().drives);

        QCOMPARE(made.homeListing(), before);
        QVERIFY(!shown.contains(u"SECRET") && shown != u"not saved");
        QVERIFY(!adjustment || adjustment->settings.brightvalue != HostileCard::kSecret);
        QVERIFY(!model.value_or(QString()).contains(u"SECRET"));
        QFile copy(made.card.path(QStringLiteral("IMAGE/screensaver.bin")));
        const bool isCopied = QFileInfo(copy).isFile() && copy.open(QIODevice::ReadOnly);
        QVERIFY(!isCopied || copy.peek(6) != "SECRET");
        if (part == Trapped::UpdateFolder)
            QCOMPARE(isCopied ? copy.readAll() : QByteArray(), "QL240 1.02 1.00");
        QCOMPARE_LT(m_memory->grownMiB(), kMostMiB);
        // Everything that isn't trapped is saved.
        const bool isFolder = qstrcmp(traps()[size_t(trap)].name, "folder") == 0;
        if (part != Trapped::SettingFolder && part != Trapped::Files && !isFolder)
            QCOMPARE(byteOf(made.card, QStringLiteral("resolutionvalue")), 1);
    }

    // An old kernel without openat2(): paths are opened step by step.
    void olderKernel() {
        struct OlderKernel : CardFiles {
            int openBeneath(int, const char*, int) override {
                errno = ENOSYS;
                return -1;
            }
        } files;
        for (const Trap& trap : traps()) {
            for (const Trapped part : {Trapped::SettingFolder, Trapped::Files, Trapped::FilesAside}) {
                HostileCard made;
                if (!made.set(trap, part))
                    continue;
                const QByteArray before = made.homeListing();
                DeviceSettings record(made.card.path(QStringLiteral("setting")), files);
                QVERIFY2(record.brightvalue != HostileCard::kSecret, trap.name);
                record.resolutionvalue = 1;
                record.setTime(true, QStringLiteral("2012-07-31-18-05-09"));
                const bool saved = record.save();
                QVERIFY2(made.homeListing() == before, trap.name);
                const bool isOpen = part == Trapped::FilesAside && qstrcmp(trap.name, "folder") != 0;
                QVERIFY2(!isOpen || (saved && byteOf(made.card, QStringLiteral("resolutionvalue")) == 1),
                         trap.name);
            }
        }
    }

private:
    std::optional<PeakMemory> m_memory;
};

QTEST_MAIN(TestHostileCard)
#include "test_hostile_card.moc"
