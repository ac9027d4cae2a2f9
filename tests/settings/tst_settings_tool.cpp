// The program in its settings mode as a process of its own, with a made card behind a drives service.
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include "platform/linux/local_running_windows.h"
#include "support/made_card.h"
#include "support/private_bus.h"

using namespace ql240;

class TestSettingsTool : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void startsWithoutPipelineAndWebEngine();
};

void TestSettingsTool::startsWithoutPipelineAndWebEngine() {
    const MadeCard card;
    card.put(QStringLiteral("update/version.txt"), "QL240 1.02 1.00 12V");
    PrivateBus bus;
    QVERIFY2(bus.start(), "dbus-daemon did not start");
    QVERIFY(
        bus.startDrives({QStringLiteral("--drive"), QStringLiteral("label=CAMERA,mount=") + card.drive()}));
    const QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home.path());
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), bus.address());
    QProcess tool;
    tool.setProcessEnvironment(environment);
    tool.start(QStringLiteral(QL240_VIEWER), {QStringLiteral("settings")});
    LocalRunningWindows windows(home.path());
    QTRY_VERIFY_WITH_TIMEOUT(windows.findWindow(QStringLiteral("QL240 Setting")), 15000);

    QFile maps(QStringLiteral("/proc/%1/maps").arg(tool.processId()));
    QVERIFY(maps.open(QIODevice::ReadOnly));
    const QString loaded = QString::fromUtf8(maps.readAll());
    QVERIFY(loaded.contains(QStringLiteral("libQt6Widgets")));
    static const QRegularExpression unwanted(
        QStringLiteral("/(libgst|libQt6WebEngine|libQt6Qml|libav)[^/\n]*"));
    QCOMPARE(unwanted.match(loaded).captured(), QString());
    tool.kill();
    tool.waitForFinished();
}

QTEST_GUILESS_MAIN(TestSettingsTool)
#include "tst_settings_tool.moc"
