// The drive list against a service of our own on a private bus, and with a bus or service in every state of
// absence.
#include <QTest>
#include <future>

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

    void lists_data() {
        QTest::addColumn<QStringList>("drives");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("none") << QStringList() << QStringList();
        QTest::newRow("by device name")
            << QStringList{"device=/dev/sdd1,mount=/m/a", "device=/dev/sdb1,mount=/m/c",
                           "device=/dev/sdc1,mount=/m/b"}
            << QStringList{"/m/c||vfat", "/m/b||vfat", "/m/a||vfat"};
        QTest::newRow("label and type") << QStringList{"mount=/m/a, b,label=카메라 1,type=exfat"}
                                        << QStringList{"/m/a, b|카메라 1|exfat"};
        QTest::newRow("fixed disk left out")
            << QStringList{"mount=/m/a,removable=0,media-removable=0"} << QStringList();
        QTest::newRow("card in a fixed reader")
            << QStringList{"mount=/m/a,removable=0"} << QStringList{"/m/a||vfat"};
        QTest::newRow("disk at the USB port") << QStringList{"mount=/m/a,media-removable=0"} << QStringList();
        QTest::newRow("sticks, whose medium stays in")
            << QStringList{"mount=/m/a,media-removable=0,media=thumb",
                           "mount=/m/b,media-removable=0,fits=flash thumb"}
            << QStringList{"/m/a||vfat", "/m/b||vfat"};
        QTest::newRow("discs are no cards")
            << QStringList{"mount=/m/a,media=optical_dvd_r", "mount=/m/b,optical=1",
                           "mount=/m/c,fits=optical_cd optical_cd_r", "mount=/m/d,media=flash_sd"}
            << QStringList{"/m/d||vfat"};
        QTest::newRow("not mounted") << QStringList{"label=A", "mount=/m/b"} << QStringList{"/m/b||vfat"};
        QTest::newRow("first of two mount points")
            << QStringList{"mount=/m/a/,mount=/m/b"} << QStringList{"/m/a||vfat"};
        QTest::newRow("the running system is no card") << QStringList{"mount=/"} << QStringList();
        QTest::newRow("root and a folder") << QStringList{"mount=/,mount=/m/b"} << QStringList{"/m/b||vfat"};
    }
    void lists() {
        QFETCH(QStringList, drives);
        QFETCH(QStringList, expected);
        QStringList arguments;
        for (const QString& drive : std::as_const(drives))
            arguments << QStringLiteral("--drive") << drive;
        QVERIFY(m_bus.startDrives(arguments));
        QCOMPARE(listed(), expected);
    }

    // Nothing is remembered between two questions, not even across a restart of the bus.
    void followsTheService() {
        const QStringList one{QStringLiteral("--drive"), QStringLiteral("mount=/m/a")};
        QVERIFY(m_bus.startDrives(one));
        QCOMPARE(listed().size(), 1);
        m_bus.stopDrives();
        QCOMPARE(listed(), QStringList());
        QVERIFY(m_bus.startDrives({QStringLiteral("--nonsense")}));
        QCOMPARE(listed(), QStringList());
        m_bus.stopDrives();
        m_bus.stop();
        QCOMPARE(listed(), QStringList());
        QVERIFY(m_bus.start());
        QVERIFY(m_bus.startDrives(one + one));
        QCOMPARE(listed().size(), 2);
    }

    // Whoever asks does so where waiting costs nothing: a service that is slow to start is waited for, and so
    // is a bus that hangs for a while.
    void slowAnswersCount_data() {
        QTest::addColumn<bool>("frozenBus");
        QTest::newRow("service") << false;
        QTest::newRow("bus") << true;
    }
    void slowAnswersCount() {
        QFETCH(bool, frozenBus);
        constexpr int kSlowMs = 700;
        const QString wait = QString::number(frozenBus ? 0 : kSlowMs);
        QVERIFY(m_bus.startDrives({"--drive", "mount=/m/a", "--answer-after", wait}));
        // A stopped bus stands until it is continued, unless the kernel does that for the sake of its process
        // group: then once more.
        bool stood = false;
        for (int tries = 0; tries < 5 && !stood; ++tries) {
            m_bus.freeze(frozenBus);
            auto answer = std::async(std::launch::async, listed);
            stood = answer.wait_for(std::chrono::milliseconds(kSlowMs)) == std::future_status::timeout ||
                    !frozenBus;
            m_bus.freeze(false);
            QCOMPARE(answer.get(), QStringList("/m/a||vfat"));
        }
        QVERIFY(stood);
    }

private:
    PrivateBus m_bus;
};

QTEST_GUILESS_MAIN(TestUDisksDrives)
#include "test_udisks_drives.moc"
