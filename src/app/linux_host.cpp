#include "app/linux_host.h"

#include <QCoreApplication>

#include "clips/formats/sensor_file_library.h"
#include "platform/host.h"
#include "platform/web_engine_setup.h"

namespace ql240 {

LinuxHost::LinuxHost() : m_runningWindows(LocalRunningWindows::userFolder()) {
    Host& table = host();
    table.drives = &m_drives;
    table.folderDialogs = &m_folderDialogs;
    table.inhibitor = &m_inhibitor;
    table.makeSensorLibrary = [] { return std::make_shared<SensorFileLibrary>(); };
    table.urlOpener = &m_urlOpener;
}

LinuxHost::~LinuxHost() {
    leaveApplication();
    host() = {}; // its implementations end with this object
}

bool LinuxHost::initialise() {
    // Without a display Qt would abort the process instead of returning an error.
    for (const char* variable : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"}) {
        if (!qEnvironmentVariableIsEmpty(variable))
            return true;
    }
    return false;
}

void LinuxHost::enterApplication() {
    const QString folder = moduleFolderOf(QCoreApplication::applicationDirPath());
    m_media = std::make_unique<MediaModule>(folder);
    m_webPages = std::make_unique<MapModule>(folder);
    m_webPages->network = webEngineIsSandboxed();
    host().media = m_media.get();
    host().waveOut = m_media.get();
    host().webPages = m_webPages.get();
}

void LinuxHost::leaveApplication() {
    host().media = nullptr;
    host().waveOut = nullptr;
    host().webPages = nullptr;
    m_media.reset();
    m_webPages.reset();
}

} // namespace ql240
