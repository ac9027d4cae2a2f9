// A mounted file system that stops answering on request, like a failing card reader. A process of its own
// serves it, so that hanging calls can always be freed: the file system ends with the object, and all calls
// waiting for it fail. Needs a private mount namespace (enterOwnMounts).
#pragma once

#include <QString>
#include <atomic>

namespace ql240 {

class SilentFileSystem {
public:
    // Mounts an empty folder over an existing one.
    explicit SilentFileSystem(const QString& folder);
    ~SilentFileSystem();
    SilentFileSystem(const SilentFileSystem&) = delete;
    SilentFileSystem& operator=(const SilentFileSystem&) = delete;

    bool isMounted() const { return m_mounted; }
    void fallSilent() { m_silent->store(true); }
    // Makes all waiting calls fail.
    void end();

private:
    QString m_folder;
    std::atomic<bool>* m_silent = nullptr;
    int m_server = -1;
    bool m_mounted = false;
};

} // namespace ql240
