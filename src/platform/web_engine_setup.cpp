#include "platform/web_engine_setup.h"

#include <QByteArray>
#include <QFile>
#include <QGuiApplication>
#include <QOpenGLContext>

#include <unistd.h>

QT_BEGIN_NAMESPACE
// The engine itself calls this; there is no public way to set what QOpenGLContext::globalShareContext()
// gives.
Q_GUI_EXPORT void qt_gl_set_global_share_context(QOpenGLContext* context);
QT_END_NAMESPACE

namespace ql240 {

namespace {

constexpr char kGlIntegration[] = "QT_XCB_GL_INTEGRATION";
constexpr char kSwitches[] = "QTWEBENGINE_CHROMIUM_FLAGS";
// The map moves by a script text a move, hardly ever the same one twice: kept for a second use, they fill the
// memory. And the page may ask for a collection, since the engine sees too little of what hangs on its
// scripts' objects.
constexpr char kScriptSwitches[] = " --js-flags=--no-compilation-cache,--expose-gc";

// A kernel switch that is absent takes the value that lets namespaces be made.
bool kernelSays(const char* path, int value) {
    QFile file(QString::fromLatin1(path));
    return file.open(QIODevice::ReadOnly) && file.readAll().trimmed().toInt() == value;
}

} // namespace

bool webEngineIsSandboxed() {
    return geteuid() != 0 && !qEnvironmentVariableIsSet("QTWEBENGINE_DISABLE_SANDBOX") &&
           !qgetenv(kSwitches).contains("--no-sandbox");
}

void prepareWebEngine() {
    QByteArray switches = qgetenv(kSwitches) + " --disable-gpu --log-level=3" + kScriptSwitches;
    // The engine refuses to start its sandbox as root; for everybody else the sandbox stays on.
    if (geteuid() == 0)
        switches += " --no-sandbox";
    qputenv(kSwitches, switches.trimmed());
    // Else the engine has the graphics driver loaded only to ask it a question: 40 MB and 50 ms.
    if (!qEnvironmentVariableIsSet(kGlIntegration))
        qputenv(kGlIntegration, "none");
}

bool webEngineCanRun() {
    if (geteuid() == 0)
        return true;
    return !kernelSays("/proc/sys/kernel/unprivileged_userns_clone", 0) &&
           !kernelSays("/proc/sys/kernel/apparmor_restrict_unprivileged_userns", 1) &&
           !kernelSays("/proc/sys/user/max_user_namespaces", 0);
}

void provideShareContext() {
    if (!QOpenGLContext::globalShareContext())
        qt_gl_set_global_share_context(new QOpenGLContext(qApp));
}

} // namespace ql240
