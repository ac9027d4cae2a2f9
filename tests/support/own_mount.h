// File systems that only the test sees. Needs root or a user namespace.
#pragma once

#include <QTest>

namespace ql240 {

// Gives this process a private mount namespace, if the machine allows it. Call before the first thread
// starts.
void enterOwnMounts();
bool hasOwnMounts();

template <typename Application, typename Test>
int runOnOwnMounts(int argc, char** argv) {
    enterOwnMounts();
    Application application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

// Fills a folder's file system up to `pages` free pages of 4 KiB, or makes it read-only.
bool fillUp(const QString& folder, int pages);
bool makeReadOnly(const QString& folder);

} // namespace ql240
