#include "platform/web_engine_setup.h"

#include <QByteArray>
#include <QFile>
#include <QGuiApplication>
#include <QOpenGLContext>

#include <unistd.h>

QT_BEGIN_NAMESPACE
// Called by Qt WebEngine itself; there is no public function that sets QOpenGLContext::globalShareContext().
Q_GUI_EXPORT void qt_gl_set_global_share_context(QOpenGLContext* context);
QT_END_NAMESPACE

namespace ql240 {

namespace {

constexpr char kGlIntegration[] = "QT_XCB_GL_INTEGRATION";
constexpr char kSwitches[] = "QTWEBENGINE_CHROMIUM_FLAGS";
// Every move of the map is a script of its own, hardly ever the same text twice, so a compilation cache would
// only fill memory. The page may also run the garbage collector, which underestimates the memory held by
// script objects.
constexpr char kScriptSwitches[] = " --js-flags=--no-compilation-cache,--expose-gc";

// A missing kernel setting counts as allowing namespaces.
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
    // Chromium refuses to start its sandbox as root; for all other users the sandbox stays on.
    if (geteuid() == 0)
        switches += " --no-sandbox";
    qputenv(kSwitches, switches.trimmed());
    // Otherwise the engine loads the graphics driver just to query it: 40 MB and 50 ms.
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
