// A file system that doesn't answer, mounted over a folder on request, like a failing card reader. Nothing
// serves it, so every call hangs, and fails when the object ends. Needs runOnOwnMounts().
#pragma once

#include <QString>

namespace ql240 {

class SilentFileSystem {
public:
    // The existing folder answers until `fallSilent`.
    explicit SilentFileSystem(const QString& folder);
    ~SilentFileSystem() { end(); }
    Q_DISABLE_COPY_MOVE(SilentFileSystem)

    static constexpr char kNeeds[] = "needs FUSE, and root or a user namespace";
    bool isMounted() const { return m_mounted; }
    void fallSilent() { mount(); }
    // Makes all waiting calls fail.
    void end();

private:
    void mount();

    QString m_folder;
    int m_device = -1;
    bool m_mounted = false; // since it was tried last
};

} // namespace ql240
