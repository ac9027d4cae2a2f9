#include "app/start_up.h"

#include <malloc.h>

#include <QApplication>
#include <QIcon>
#include <QLocale>
#include <QScopeGuard>
#include <QSplashScreen>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

#include "app/font_warm_up.h"
#include "app/instance_windows.h"
#include "app/linux_host.h"
#include "app/style.h"
#include "base/language.h"
#include "base/preferences.h"
#include "mainwindow/main_window.h"
#include "platform/host.h"
#include "platform/media_platform.h"
#include "platform/web_engine_setup.h"
#include "settings/config_window.h"
#include "settings/dialog_card.h"
#include "widgets/skin.h"

namespace ql240 {
namespace {

constexpr int kNoPlatform = 1;
constexpr int kHandedOver = 0;

// Every clip starts threads of its own, and glibc gives each a malloc arena that never shrinks. Two arenas
// are enough, also for the web engine's processes, which inherit the variable.
void limitMemoryPools() {
    mallopt(M_ARENA_MAX, 2);
    qputenv("MALLOC_ARENA_MAX", "2");
}

// Without a sound output, GStreamer tries OpenAL last, which would print a complaint for every clip.
void silenceComplaints() {
    constexpr char logLevel[] = "ALSOFT_LOGLEVEL";
    if (!qEnvironmentVariableIsSet(logLevel))
        qputenv(logLevel, "0");
}

QString viewerTitle() {
    return QStringLiteral("QL240 Viewer");
}
QString settingTitle() {
    return QStringLiteral("QL240 Setting");
}

// When Qt cannot connect to the display it calls qFatal(), which would abort the process.
void endOnFatal(QtMsgType type, const QMessageLogContext&, const QString& text) {
    std::fputs(qUtf8Printable(text + QLatin1Char('\n')), stderr);
    if (type == QtFatalMsg)
        std::_Exit(kNoPlatform);
}

void chooseLanguage() {
    QString code;
    if (!readLanguage(code)) {
        code = languageCodeFor(QLocale::system().language());
        writeLanguage(code);
    }
    setCurrentLanguage(code);
}

bool handOver(const LinuxHost& platform, const QString& title) {
    const auto running = platform.runningWindows().findWindow(title);
    if (running)
        running->sendMessage(kFocusMessage);
    return running.has_value();
}

int runViewer(const LinuxHost& platform, QSplashScreen& splash) {
    if (handOver(platform, viewerTitle()))
        return kHandedOver;
    MainWindow window(nullptr, Qt::FramelessWindowHint);
    // Loads the media module after the first paint, so that it delays neither the window nor the first clip.
    QObject::connect(&window, &MainWindow::firstPainted, &window, [] { host().media->warmUp(); });
    window.setWindowTitle(QCoreApplication::translate("ql240::MainWindow", "QL240 Viewer"));
    window.show();
    QCoreApplication::processEvents();
    splash.finish(&window);
    // If the window is closed already, quit() came before there was an event loop to end, and exec() would
    // never return.
    return window.isVisible() ? QCoreApplication::exec() : 0;
}

int runSettings(const LinuxHost& platform) {
    if (handOver(platform, settingTitle()))
        return kHandedOver;
    ConfigWindow window;
    window.show();
    return QCoreApplication::exec();
}

} // namespace

int startUp(int argc, char** argv) {
    limitMemoryPools();
    silenceComplaints();
    LinuxHost platform;
    if (!platform.initialise())
        return kNoPlatform;
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    // Set all environment variables before a second thread reads the environment.
    prepareStyle();
    prepareWebEngine();
    FontWarmUp fonts;

    const QtMessageHandler usual = qInstallMessageHandler(endOnFatal);
    QApplication application(argc, argv);
    qInstallMessageHandler(usual);
    // The desktop finds a window's launcher entry and icon by this name.
    QGuiApplication::setDesktopFileName(QStringLiteral("ql240-viewer"));
    platform.enterApplication();
    applyStyle();
    fonts.continueWithFonts();
    const auto fontsFirst = qScopeGuard([&fonts] { fonts.finish(); });
    // Loading the icon also loads Qt's image plugins; no window needs to wait for that.
    QTimer::singleShot(0, &application, [] {
        QApplication::setWindowIcon(QIcon(skinPixmap(QStringLiteral(":/gfx_r/icon/ico_256.ico"))));
    });
    chooseLanguage();
    QSplashScreen splash(skinPixmap(QStringLiteral(":gfx_r/splash/splash.png")));
    splash.show();

    InstanceWindows instances(platform.runningWindows(), {viewerTitle(), settingTitle()});
    // Qt has already removed its own options from argc.
    const int result = argc == 1 ? runViewer(platform, splash) : runSettings(platform);
    platform.leaveApplication();
    finishSaves();
    return result;
}

} // namespace ql240
