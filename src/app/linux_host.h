// Fills the host table with the Linux desktop's implementations for its own lifetime. One per process,
// constructed before the application object. Interface thread only.
#pragma once

#include <memory>

#include "platform/linux/desktop_inhibitor.h"
#include "platform/linux/desktop_url_opener.h"
#include "platform/linux/local_running_windows.h"
#include "platform/linux/system_folder_dialogs.h"
#include "platform/linux/udisks_drives.h"
#include "platform/modules.h"

namespace ql240 {

class LinuxHost {
public:
    LinuxHost();
    ~LinuxHost();
    LinuxHost(const LinuxHost&) = delete;
    LinuxHost& operator=(const LinuxHost&) = delete;

    // False when there is no display to show a window on.
    bool initialise();

    // Adds the entries that need the application object, and removes them before it is destroyed.
    void enterApplication();
    void leaveApplication();

    const LocalRunningWindows& runningWindows() const { return m_runningWindows; }

private:
    UDisksDrives m_drives;
    SystemFolderDialogs m_folderDialogs;
    DesktopInhibitor m_inhibitor;
    LocalRunningWindows m_runningWindows;
    DesktopUrlOpener m_urlOpener;
    std::unique_ptr<MediaModule> m_media;
    std::unique_ptr<MapModule> m_webPages;
};

} // namespace ql240
