// Runs a piece of a test in a child process with a small file system of its own mounted on a folder. Needs
// root or a user namespace.
#pragma once

#include <QString>
#include <functional>

namespace ql240 {

struct OwnMountResult {
    bool possible = false; // false: this machine doesn't allow mounts, nothing was run
    QString error;         // what `body` returned; empty when all was well
};

// From now on this process sees its own mounts, and nobody else does. To be called before the first thread is
// started; false where the machine doesn't allow it.
bool enterOwnMounts();

// `kilobytes` is the size of the file system.
OwnMountResult inOwnMount(const QString& folder, int kilobytes, const std::function<QString()>& body);

// Inside `body`: writes the file system full but for `pages` of 4 KiB, or makes it read-only.
bool fillUp(const QString& folder, int pages);
bool makeReadOnly(const QString& folder);

} // namespace ql240
