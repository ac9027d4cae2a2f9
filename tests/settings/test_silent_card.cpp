// The settings dialog with a card reader that stops answering, or whose card is gone: it opens at once, stays
// usable, and saves nothing to a card that it couldn't read.
#include <sys/mount.h>

#include <QComboBox>
#include <QElapsedTimer>
#include <QSignalSpy>

#include "support/own_mount.h"
#include "support/settings_fixture.h"
#include "support/silent_file_system.h"

using namespace ql240;

namespace {

// Long enough for a busy machine: a wait for a silent reader never ends.
constexpr qint64 kSoonMs = 5000;
constexpr int kGivesUpMs = 10000;
constexpr QPoint kVga(170, 65);

QComboBox* driveList(const ConfigWindow& window) {
    return qobject_cast<QComboBox*>(window.childAt(165, 20));
}

} // namespace

class TestSilentCard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_fixture.emplace();
        m_card.emplace();
        m_reader = std::make_unique<SilentFileSystem>(m_card->drive());
        if (!m_reader->isMounted())
            QSKIP(SilentFileSystem::kNeeds);
        m_fixture->insert(*m_card);
    }

    void cleanup() {
        m_reader.reset();
        m_card.reset();
        m_fixture.reset();
    }

    void opensAtOnce() {
        m_reader->fallSilent();
        QElapsedTimer time;
        time.start();
        ConfigWindow window;
        window.show();
        QVERIFY2(time.elapsed() < kSoonMs, qPrintable(QString::number(time.elapsed())));
        QCOMPARE(driveList(window)->count(), 1);
        QTRY_VERIFY_WITH_TIMEOUT(driveList(window)->toolTip().contains(u"does not answer"), kGivesUpMs);
        QVERIFY(time.elapsed() >= 1900);

        // The card's settings are locked, the viewer's own aren't.
        click(window, kVga);
        QCOMPARE(window.values().resolutionvalue, 3);
        click(window, {320, 675});
        QCOMPARE(window.viewerSpeedUnit(), SpeedUnit::Mph);
        time.restart();
        window.OnSlotsOK();
        QVERIFY(time.elapsed() < kSoonMs);
        QString unit;
        QVERIFY(readSpeedUnit(unit) && unit == u"mph");
    }

    void choosingTheSilentDrive() {
        const MadeCard& camera = m_fixture->camera();
        putByte(camera, "framevalue", 1);
        ConfigWindow window;
        QVERIFY(waitForCard(window));
        m_reader->fallSilent();
        QElapsedTimer time;
        time.start();
        driveList(window)->setCurrentIndex(0);
        QVERIFY(time.elapsed() < kSoonMs);
        QVERIFY(window.settingFolder().isEmpty());
        driveList(window)->setCurrentIndex(1);
        QVERIFY(waitForCard(window));
        click(window, kVga);
        window.OnSlotsOK();
        QCOMPARE(byteOf(camera, "resolutionvalue"), 1);
        QCOMPARE(byteOf(camera, "framevalue"), 1);
    }

    // The card is gone: its folder is now on the system's disk, or another card's.
    void otherFileSystemIsLeftAlone() {
        const QByteArray folder = QFile::encodeName(m_card->drive());
        const auto mountCard = [&] {
            return ::mount("card", folder.constData(), "tmpfs", 0, "size=256k") == 0;
        };
        for (const bool another : {false, true}) {
            QVERIFY(mountCard());
            makeCamera(*m_card);
            ConfigWindow window;
            const bool read = waitForCard(window);
            click(window, kVga);
            QVERIFY2(::umount2(folder.constData(), 0) == 0, "the card can't be unmounted while it is shown");
            QVERIFY(read && window.values().resolutionvalue == 1);
            QVERIFY(!another || mountCard());
            window.OnSlotsOK();
            QVERIFY(QDir(m_card->drive()).isEmpty());
            QCOMPARE(window.result(), int(QDialog::Accepted));
        }
        ::umount2(folder.constData(), 0);
    }

    void savingCanBeLeft() {
        ConfigWindow window;
        QVERIFY(waitForCard(window));
        window.show();
        click(window, kVga);
        m_reader->fallSilent();
        QSignalSpy rejected(&window, &QDialog::rejected);
        bool usable = false;
        QTimer::singleShot(500, &window, [&] {
            // OK is waiting; the window still responds to Cancel.
            usable = window.isVisible();
            click(*window.childAt(430, 700), {5, 5});
        });
        QElapsedTimer time;
        time.start();
        window.OnSlotsOK();
        QVERIFY(usable && time.elapsed() < kGivesUpMs);
        QCOMPARE(rejected.size(), 1);
        QVERIFY(!window.isVisible());
        QString unit;
        QVERIFY(!readSpeedUnit(unit));
    }

private:
    std::optional<SettingsFixture> m_fixture;
    std::optional<MadeCard> m_card;
    std::unique_ptr<SilentFileSystem> m_reader;
};

int main(int argc, char** argv) {
    return runOnOwnMounts<QApplication, TestSilentCard>(argc, argv);
}
#include "test_silent_card.moc"
