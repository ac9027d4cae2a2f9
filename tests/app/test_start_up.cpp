#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSplashScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <cstdlib>

#include <xcb/xcb.h>

#include "app/instance_windows.h"
#include "app/linux_host.h"
#include "platform/host.h"
#include "platform/linux/local_running_windows.h"
#include "settings/config_window.h"

using namespace ql240;

namespace {

const QString kViewer = QStringLiteral("QL240 Viewer");
const QString kSetting = QStringLiteral("QL240 Setting");
constexpr int kBoundMs = 15000;

// What windows ask of the window manager of the X server.
class ActivationRequests {
public:
    ActivationRequests() : m_connection(xcb_connect(nullptr, nullptr)) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        const auto done =
            xcb_change_window_attributes_checked(m_connection, screen->root, XCB_CW_EVENT_MASK, &events);
        std::free(xcb_request_check(m_connection, done));
    }
    ~ActivationRequests() { xcb_disconnect(m_connection); }
    Q_DISABLE_COPY_MOVE(ActivationRequests)

    bool has(WId window, std::uint32_t time) {
        while (xcb_generic_event_t* event = xcb_poll_for_event(m_connection)) {
            const auto* message = reinterpret_cast<const xcb_client_message_event_t*>(event);
            m_found |= (event->response_type & 0x7f) == XCB_CLIENT_MESSAGE && message->window == window &&
                       message->data.data32[1] == time;
            std::free(event);
        }
        return m_found;
    }

private:
    xcb_connection_t* m_connection;
    bool m_found = false;
};

} // namespace

// Real processes of the program, each test with folders of its own.
class TestStartUp : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_home = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(m_home->path()).mkpath(QStringLiteral("QL240")));
        m_windows = std::make_unique<LocalRunningWindows>(m_home->path());
    }

    void cleanup() {
        for (QProcess* process : m_processes) {
            process->kill();
            process->waitForFinished();
            delete process;
        }
        m_processes.clear();
        host() = {};
    }

    void language_data() {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QByteArray>("kept");
        QTest::newRow("Russian system") << "ru_RU.UTF-8" << QByteArray() << QByteArray("language=ru");
        QTest::newRow("German system") << "de_DE.UTF-8" << QByteArray() << QByteArray("language=en");
        QTest::newRow("stored") << "ru_RU.UTF-8" << QByteArray("kr") << QByteArray("language=kr");
        QTest::newRow("stored, unknown") << "ru_RU.UTF-8" << QByteArray("xx") << QByteArray("language=xx");
    }
    void language() {
        QFETCH(QString, locale);
        QFETCH(QByteArray, stored);
        QFETCH(QByteArray, kept);
        if (!stored.isEmpty()) {
            QFile file(m_home->filePath(QStringLiteral("QL240/local.ini")));
            QVERIFY(file.open(QFile::WriteOnly));
            file.write("[global]\nlanguage=" + stored + "\n");
        }
        start({QStringLiteral("setting")}, {{QStringLiteral("LC_ALL"), locale}});
        QTRY_VERIFY_WITH_TIMEOUT(isRunning(kSetting), kBoundMs);
        QVERIFY2(preferences().contains(kept), preferences().constData());
    }

    void secondStart_data() {
        QTest::addColumn<QStringList>("first");
        QTest::addColumn<QStringList>("second");
        QTest::addColumn<bool>("handsOver");
        const QStringList viewer;
        const QStringList settings{QStringLiteral("anything")};
        QTest::newRow("viewer, viewer") << viewer << viewer << true;
        QTest::newRow("settings, settings")
            << settings << QStringList{QStringLiteral("--other"), QStringLiteral("x")} << true;
        QTest::newRow("viewer, settings") << viewer << settings << false;
        QTest::newRow("settings, viewer") << settings << viewer << false;
        QTest::newRow("the toolkit's option is no argument")
            << viewer << QStringList{QStringLiteral("-platform"), QStringLiteral("offscreen")} << true;
    }
    void secondStart() {
        QFETCH(QStringList, first);
        QFETCH(QStringList, second);
        QFETCH(bool, handsOver);
        const auto titleOf = [](const QStringList& arguments) {
            return arguments.isEmpty() || arguments.first() == QLatin1String("-platform") ? kViewer
                                                                                          : kSetting;
        };
        QProcess* running = start(first);
        QTRY_VERIFY_WITH_TIMEOUT(isRunning(titleOf(first)), kBoundMs);
        QProcess* later = start(second);
        if (handsOver) {
            QVERIFY(later->waitForFinished(kBoundMs));
            QCOMPARE(later->exitStatus(), QProcess::NormalExit);
            QCOMPARE(later->exitCode(), 0);
        } else {
            QTRY_VERIFY_WITH_TIMEOUT(isRunning(titleOf(second)), kBoundMs);
            QCOMPARE(later->state(), QProcess::Running);
        }
        QCOMPARE(running->state(), QProcess::Running);
        QVERIFY(isRunning(titleOf(first)));
    }

    // The dialog that a viewer opens has the settings tool's title.
    void settingsStartFocusesTheViewersDialog() {
        InstanceWindows instances(*m_windows, {kViewer, kSetting});
        QWidget viewer;
        viewer.setWindowTitle(kViewer);
        viewer.show();
        ConfigWindow dialog;
        dialog.show();
        viewer.activateWindow();
        QTRY_VERIFY(viewer.isActiveWindow());

        QProcess* tool = start({QStringLiteral("setting")});
        QTRY_VERIFY_WITH_TIMEOUT(tool->state() == QProcess::NotRunning, kBoundMs);
        QCOMPARE(tool->exitCode(), 0);
        QTRY_VERIFY(dialog.isActiveWindow());

        // Minimised counts as open; closed does not.
        dialog.showMinimized();
        QVERIFY(isRunning(kSetting));
        dialog.close();
        QVERIFY(!isRunning(kSetting));
        QVERIFY(isRunning(kViewer));
    }

    // The tool's dialog has taken the title when the viewer's is opened.
    void titleGoesToTheDialogThatStaysOpen() {
        QProcess* tool = start({QStringLiteral("setting")});
        QTRY_VERIFY_WITH_TIMEOUT(isRunning(kSetting), kBoundMs);
        InstanceWindows instances(*m_windows, {kViewer, kSetting});
        ConfigWindow dialog;
        dialog.show();
        tool->kill();
        QVERIFY(tool->waitForFinished(kBoundMs));
        QTRY_VERIFY(isRunning(kSetting));
        dialog.close();
        QVERIFY(!isRunning(kSetting));
    }

    // By its own last input the window would be refused the focus: the user has clicked elsewhere since.
    void windowComesUpAsOfTheClickThatStartedTheTool() {
        if (QGuiApplication::platformName() != QLatin1String("xcb"))
            QSKIP("X11 only");
        constexpr std::uint32_t clickTime = 4711;
        InstanceWindows instances(*m_windows, {kViewer, kSetting});
        ConfigWindow dialog;
        dialog.show();
        ActivationRequests requests;
        start({QStringLiteral("setting")},
              {{QStringLiteral("DESKTOP_STARTUP_ID"), QStringLiteral("launcher-1_TIME%1").arg(clickTime)}});
        QTRY_VERIFY_WITH_TIMEOUT(requests.has(dialog.winId(), clickTime), kBoundMs);
    }

    void hostIsCompleteBeforeTheFirstWindow() {
        LinuxHost platform;
        platform.enterApplication();
        const Host& table = host();
        QVERIFY(table.drives && table.folderDialogs && table.inhibitor);
        QVERIFY(table.sensorLibrary && table.urlOpener && table.waveOut);
        QVERIFY(table.media && table.webPages);
    }

    void noDisplay_data() {
        QTest::addColumn<QString>("platform");
        QTest::addColumn<QString>("display");
        QTest::newRow("none at all") << ""
                                     << "";
        QTest::newRow("one that doesn't answer") << "xcb"
                                                 << ":9240";
    }
    void noDisplay() {
        QFETCH(QString, platform);
        QFETCH(QString, display);
        QProcess* process = start({}, {{QStringLiteral("QT_QPA_PLATFORM"), platform},
                                       {QStringLiteral("DISPLAY"), display},
                                       {QStringLiteral("WAYLAND_DISPLAY"), QString()}});
        QVERIFY(process->waitForFinished(kBoundMs));
        QCOMPARE(process->exitStatus(), QProcess::NormalExit);
        QCOMPARE(process->exitCode(), 1);
        QVERIFY(preferences().isEmpty());
    }

    // The splash screen, which stays up in this mode, must not keep the process.
    void closingTheSettingsWindowEndsTheTool() {
        QSplashScreen splash(QPixmap(40, 40));
        splash.show();
        ConfigWindow window;
        window.show();
        bool closed = false;
        QTimer::singleShot(0, &window, [&] { closed = window.close(); });
        QTimer::singleShot(kBoundMs, qApp, [] { QCoreApplication::exit(-1); });
        QCOMPARE(QCoreApplication::exec(), 0);
        QVERIFY(closed);
    }

    // The settings tool loads neither the media pipeline nor the web engine.
    void settingsToolIsLight() {
        const QProcess* tool = start({QStringLiteral("settings")});
        QTRY_VERIFY_WITH_TIMEOUT(isRunning(kSetting), kBoundMs);
        QFile maps(QStringLiteral("/proc/%1/maps").arg(tool->processId()));
        QVERIFY(maps.open(QIODevice::ReadOnly));
        const QByteArray loaded = maps.readAll();
        QVERIFY(loaded.contains("libQt6Widgets"));
        for (const char* heavy : {"libgst", "libav", "libQt6WebEngine", "libQt6Qml", "libql240-"})
            QVERIFY2(!loaded.contains(heavy), heavy);
    }

private:
    QProcess* start(const QStringList& arguments, const QMap<QString, QString>& extra = {});
    bool isRunning(const QString& title) { return m_windows->findWindow(title) != nullptr; }
    QByteArray preferences() const {
        QFile file(m_home->filePath(QStringLiteral("QL240/local.ini")));
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<LocalRunningWindows> m_windows;
    QList<QProcess*> m_processes;
};

QProcess* TestStartUp::start(const QStringList& arguments, const QMap<QString, QString>& extra) {
    auto* process = new QProcess;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home->path());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_home->path());
    for (auto it = extra.begin(); it != extra.end(); ++it)
        environment.insert(it.key(), it.value());
    process->setProcessEnvironment(environment);
    process->setProgram(QStringLiteral(QL240_VIEWER));
    process->setArguments(arguments);
    process->start();
    m_processes << process;
    return process;
}

QTEST_MAIN(TestStartUp)
#include "test_start_up.moc"
