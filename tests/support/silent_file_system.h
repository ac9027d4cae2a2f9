// A mounted file system that stops answering when told to, as a dying card reader does. A process of its own
// serves it, so that what hangs in it can always be freed: the file system ends with the object, and every
// call that waits for it fails then. Needs a mount namespace of the process's own (enterOwnMounts).
#pragma once

#include <QString>
#include <atomic>

namespace ql240 {

class SilentFileSystem {
public:
    // Mounts on an existing folder. What is mounted is an empty folder.
    explicit SilentFileSystem(const QString& folder);
    ~SilentFileSystem();
    SilentFileSystem(const SilentFileSystem&) = delete;
    SilentFileSystem& operator=(const SilentFileSystem&) = delete;

    bool isMounted() const { return m_mounted; }
    void fallSilent() { m_silent->store(true); }
    // Frees everything that waits.
    void end();

private:
    QString m_folder;
    std::atomic<bool>* m_silent = nullptr;
    int m_server = -1;
    bool m_mounted = false;
};

} // namespace ql240
