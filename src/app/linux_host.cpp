#include "app/linux_host.h"

#include <QCoreApplication>

#include "platform/host.h"
#include "platform/media_platform.h"
#include "platform/modules.h"

namespace ql240 {

LinuxHost::LinuxHost() : m_runningWindows(LocalRunningWindows::userFolder()) {
    Host& table = host();
    table.drives = &m_drives;
    table.folderDialogs = &m_folderDialogs;
    table.inhibitor = &m_inhibitor;
    table.runningWindows = &m_runningWindows;
    table.sensorLibrary = &m_sensorLibrary;
    table.urlOpener = &m_urlOpener;
    table.waveOut = &m_volume;
}

LinuxHost::~LinuxHost() {
    m_volume.setListener({});
    host() = {};
}

bool LinuxHost::initialise() {
    // The toolkit would end the process by a signal instead of telling.
    for (const char* variable : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"}) {
        if (!qEnvironmentVariableIsEmpty(variable))
            return true;
    }
    return false;
}

void LinuxHost::enterApplication() {
    setModuleFolder(moduleFolderOf(QCoreApplication::applicationDirPath()));
    setMediaLoadedHandler([this](MediaPlatform& media) {
        m_volume.setListener(
            [&media](std::uint16_t left, std::uint16_t right) { media.setOutputVolume(left, right); });
    });
}

} // namespace ql240
