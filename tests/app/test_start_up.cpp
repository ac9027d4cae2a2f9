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
constexpr int kBoundMs = 60000;

// The activation requests of windows to the X11 window manager.
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

// Real processes of the program; each test has its own folders.
class TestStartUp : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_home = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(m_home->path()).mkpath("QL240"));
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

    // First the system's, then the stored one.
    void language() {
        for (const char* kept : {"language=ru", "language=xx"}) {
            QProcess* tool = start({"setting"}, {{"LC_ALL", "ru_RU.UTF-8"}});
            QTRY_VERIFY_WITH_TIMEOUT(isRunning(kSetting), kBoundMs);
            QVERIFY2(preferences().contains(kept), preferences().constData());
            tool->kill();
            QVERIFY(tool->waitForFinished(kBoundMs));
            QFile file(m_home->filePath("QL240/local.ini"));
            QVERIFY(file.open(QFile::WriteOnly) && file.write("[global]\nlanguage=xx\n") > 0);
        }
    }

    // One viewer and one settings tool; Qt's own options don't count as arguments.
    void laterStartsHandOver() {
        const auto handsOver = [this](const QStringList& arguments) {
            QProcess* later = start(arguments);
            return later->waitForFinished(kBoundMs) && later->exitStatus() == QProcess::NormalExit &&
                   later->exitCode() == 0;
        };
        const QProcess* viewer = start({});
        QTRY_VERIFY_WITH_TIMEOUT(isRunning(kViewer), kBoundMs);
        QVERIFY(handsOver({"-platform", "offscreen"}));
        const QProcess* settings = start({"anything"});
        QTRY_VERIFY_WITH_TIMEOUT(isRunning(kSetting), kBoundMs);
        QVERIFY(handsOver({"--other", "x"}));
        QVERIFY(isRunning(kViewer) && isRunning(kSetting));
        QVERIFY(viewer->state() == QProcess::Running && settings->state() == QProcess::Running);
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

        const QProcess* tool = start({"setting"});
        QTRY_VERIFY_WITH_TIMEOUT(tool->state() == QProcess::NotRunning, kBoundMs);
        QCOMPARE(tool->exitCode(), 0);
        QTRY_VERIFY(dialog.isActiveWindow());

        // A minimised dialog counts as open.
        dialog.showMinimized();
        QVERIFY(isRunning(kSetting));
        dialog.close();
        QVERIFY(!isRunning(kSetting) && isRunning(kViewer));
    }

    // With the time of its own last input, the window would be refused the focus.
    void activationHasTheTimeOfTheStartingClick() {
        if (QGuiApplication::platformName() != QLatin1String("xcb"))
            QSKIP("X11 only");
        constexpr std::uint32_t clickTime = 4711;
        InstanceWindows instances(*m_windows, {kViewer, kSetting});
        ConfigWindow dialog;
        dialog.show();
        ActivationRequests requests;
        start({"setting"}, {{"DESKTOP_STARTUP_ID", QStringLiteral("launcher-1_TIME%1").arg(clickTime)}});
        QTRY_VERIFY_WITH_TIMEOUT(requests.has(dialog.winId(), clickTime), kBoundMs);
    }

    void hostIsCompleteBeforeTheFirstWindow() {
        LinuxHost platform;
        platform.enterApplication();
        const Host& table = host();
        QVERIFY(table.drives && table.folderDialogs && table.inhibitor);
        QVERIFY(table.makeSensorLibrary && table.urlOpener && table.waveOut && table.media && table.webPages);
    }

    // None, and one that doesn't answer.
    void noDisplay() {
        for (const auto& [platform, display] : {std::pair("", ""), {"xcb", ":9240"}}) {
            QProcess* process = start(
                {}, {{"QT_QPA_PLATFORM", platform}, {"DISPLAY", display}, {"WAYLAND_DISPLAY", QString()}});
            QVERIFY(process->waitForFinished(kBoundMs));
            QCOMPARE(process->exitStatus(), QProcess::NormalExit);
            QCOMPARE(process->exitCode(), 1);
            QVERIFY(preferences().isEmpty());
        }
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
        const QProcess* tool = start({"settings"});
        QTRY_VERIFY_WITH_TIMEOUT(isRunning(kSetting), kBoundMs);
        QFile maps(QStringLiteral("/proc/%1/maps").arg(tool->processId()));
        QVERIFY(maps.open(QIODevice::ReadOnly));
        const QByteArray loaded = maps.readAll();
        QVERIFY(loaded.contains("libQt6Widgets"));
        for (const char* heavy : {"libgst", "libav", "libQt6WebEngine", "libQt6Qml", "libql240-"})
            QVERIFY2(!loaded.contains(heavy), heavy);
    }

private:
    QProcess* start(const QStringList& arguments, const QMap<QString, QString>& extra = {}) {
        auto* process = new QProcess;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_CONFIG_HOME", m_home->path());
        environment.insert("XDG_RUNTIME_DIR", m_home->path());
        for (auto it = extra.begin(); it != extra.end(); ++it)
            environment.insert(it.key(), it.value());
        process->setProcessEnvironment(environment);
        process->start(QStringLiteral(QL240_VIEWER), arguments);
        m_processes << process;
        return process;
    }
    bool isRunning(const QString& title) { return m_windows->findWindow(title).has_value(); }
    QByteArray preferences() const {
        QFile file(m_home->filePath("QL240/local.ini"));
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<LocalRunningWindows> m_windows;
    QList<QProcess*> m_processes;
};

QTEST_MAIN(TestStartUp)
#include "test_start_up.moc"
