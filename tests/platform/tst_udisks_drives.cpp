// The drive list against a service of our own on a private bus, and with a bus or service in every state of
// absence.
#include <QElapsedTimer>
#include <QTest>

#include "platform/linux/udisks_drives.h"
#include "support/private_bus.h"

using namespace ql240;

namespace {

// What a caller may be kept waiting, with some room for a busy machine.
constexpr qint64 kAnswerLimitMs = 500;
constexpr qint64 kRoomMs = 200;

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
        QTest::newRow("fixed disk left out") << QStringList{"mount=/m/a,removable=0"} << QStringList();
        QTest::newRow("card in a fixed reader")
            << QStringList{"mount=/m/a,removable=0,media-removable=1"} << QStringList{"/m/a||vfat"};
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
        m_bus.stop();
        QCOMPARE(listed(), QStringList());
        QVERIFY(m_bus.start());
        QVERIFY(m_bus.startDrives(one + one));
        QCOMPARE(listed().size(), 2);
    }

    void gives_up_data() {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<qint64>("limitMs");

        QTest::newRow("no bus") << "no bus" << qint64(0);
        QTest::newRow("no service") << "no service" << qint64(0);
        QTest::newRow("slow service") << "slow" << kAnswerLimitMs;
        QTest::newRow("bus that keeps silent") << "frozen" << kAnswerLimitMs;
        QTest::newRow("answer of another type") << "nonsense" << qint64(0);
    }
    void gives_up() {
        QFETCH(QString, condition);
        QFETCH(qint64, limitMs);
        const QStringList drive{QStringLiteral("--drive"), QStringLiteral("mount=/m/a")};
        if (condition == u"no bus")
            m_bus.stop();
        else if (condition == u"slow")
            QVERIFY(m_bus.startDrives(drive + QStringList{"--answer-after", "20000"}));
        else if (condition == u"nonsense")
            QVERIFY(m_bus.startDrives({"--nonsense"}));
        else if (condition == u"frozen")
            m_bus.freeze(true);

        QElapsedTimer time;
        time.start();
        QCOMPARE(listed(), QStringList());
        const qint64 elapsed = time.elapsed();
        m_bus.freeze(false);
        QVERIFY2(elapsed < limitMs + kRoomMs, qPrintable(QStringLiteral("%1 ms").arg(elapsed)));
    }

private:
    PrivateBus m_bus;
};

QTEST_GUILESS_MAIN(TestUDisksDrives)
#include "tst_udisks_drives.moc"
