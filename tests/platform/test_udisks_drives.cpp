// The drive list with a test service on a private bus, and without service or bus.
#include <QTest>

#include "platform/linux/udisks_drives.h"
#include "support/private_bus.h"

using namespace ql240;

namespace {

QStringList listed() {
    QStringList texts;
    const QList<DriveInfo> drives = UDisksDrives().removableDrives();
    for (const DriveInfo& info : drives) {
        texts.append(QStringLiteral("%1|%2|%3")
                         .arg(info.drive, QString::fromUtf8(info.label), QString::fromUtf8(info.fileSystem)));
    }
    return texts;
}

} // namespace

class TestUDisksDrives : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_bus.stopDrives();
        m_bus.stop();
        QVERIFY2(m_bus.start(), "dbus-daemon did not start");
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    }

    void lists() {
        const std::pair<QStringList, QStringList> rows[] = {
            {{"device=/dev/sdd1,mount=/m/a", "device=/dev/sdb1,mount=/m/c", "device=/dev/sdc1,mount=/m/b"},
             {"/m/c||vfat", "/m/b||vfat", "/m/a||vfat"}},
            {{"mount=/m/a, b,label=카메라 1,type=exfat"}, {"/m/a, b|카메라 1|exfat"}},
            {{"mount=/m/a,removable=0,media-removable=0"}, {}},
            {{"mount=/m/a,removable=0"}, {"/m/a||vfat"}}, // a card in a fixed reader
            {{"mount=/m/a,media-removable=0"}, {}},       // a USB disk
            // USB sticks, whose media aren't removable
            {{"mount=/m/a,media-removable=0,media=thumb", "mount=/m/b,media-removable=0,fits=flash thumb"},
             {"/m/a||vfat", "/m/b||vfat"}},
            {{"mount=/m/a,media=optical_dvd_r", "mount=/m/b,optical=1",
              "mount=/m/c,fits=optical_cd optical_cd_r", "mount=/m/d,media=flash_sd"},
             {"/m/d||vfat"}},
            {{"label=A", "mount=/m/b"}, {"/m/b||vfat"}}, // not mounted
            {{"mount=/m/a/,mount=/m/b"}, {"/m/a||vfat"}},
            {{"mount=/", "mount=/,mount=/m/b"}, {"/m/b||vfat"}}}; // the running system
        for (const auto& [drives, expected] : rows) {
            QStringList arguments;
            for (const QString& drive : drives)
                arguments << "--drive" << drive;
            QVERIFY(m_bus.startDrives(arguments));
            QCOMPARE(listed(), expected);
            m_bus.stopDrives();
        }
    }

    // Nothing is cached between two calls, not even across a restart of the bus.
    void followsTheService() {
        const QStringList one{"--drive", "mount=/m/a"};
        QVERIFY(m_bus.startDrives(one));
        QCOMPARE(listed().size(), 1);
        m_bus.stopDrives();
        QCOMPARE(listed(), QStringList());
        QVERIFY(m_bus.startDrives({"--nonsense"}));
        QCOMPARE(listed(), QStringList());
        m_bus.stopDrives();
        m_bus.stop();
        QCOMPARE(listed(), QStringList());
        QVERIFY(m_bus.start());
        QVERIFY(m_bus.startDrives(one + one));
        QCOMPARE(listed().size(), 2);
    }

    // Callers are background jobs, so a service that is slow to start is waited for.
    void slowAnswersCount() {
        QVERIFY(m_bus.startDrives({"--drive", "mount=/m/a", "--answer-after", "700"}));
        QCOMPARE(listed(), QStringList("/m/a||vfat"));
    }

private:
    PrivateBus m_bus;
};

QTEST_GUILESS_MAIN(TestUDisksDrives)
#include "test_udisks_drives.moc"
