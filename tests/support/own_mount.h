// Runs part of a test in a child process with a small file system mounted on a folder. Needs root or a user
// namespace.
#pragma once

#include <QString>
#include <functional>

namespace ql240 {

struct OwnMountResult {
    bool possible = false; // false: this machine doesn't allow mounts, nothing was run
    QString error;         // what `body` returned; empty when all was well
};

// Gives this process a private mount namespace. Call before the first thread starts; false if the machine
// doesn't allow it.
bool enterOwnMounts();

// `kilobytes` is the size of the file system.
OwnMountResult inOwnMount(const QString& folder, int kilobytes, const std::function<QString()>& body);

// Inside `body`: fills the file system up to `pages` free pages of 4 KiB, or makes it read-only.
bool fillUp(const QString& folder, int pages);
bool makeReadOnly(const QString& folder);

} // namespace ql240
