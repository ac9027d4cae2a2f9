// File systems that only the test sees. Needs root or a user namespace.
#pragma once

#include <QString>

namespace ql240 {

// Gives this process a private mount namespace. Call before the first thread starts; false if the machine
// doesn't allow it.
bool enterOwnMounts();

// Fills a folder's file system up to `pages` free pages of 4 KiB, or makes it read-only.
bool fillUp(const QString& folder, int pages);
bool makeReadOnly(const QString& folder);

} // namespace ql240
