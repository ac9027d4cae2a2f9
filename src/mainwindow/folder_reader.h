// Lists a folder for the window off the interface thread. A listing that lasts shows itself, with a way to
// leave it. At most one at a time: a new one takes the place of the last. Interface thread only.
#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "base/background_jobs.h"
#include "library/clip_folder.h"

class QRect;
class QWidget;

namespace ql240 {

class WaitNote;

class FolderReader {
public:
    using Then = std::function<void(const FolderListing&)>;

    // Where the wait shows itself; the note belongs to the window.
    void showWaitIn(QWidget* window, const QRect& place);

    // `then` follows at once where the folder answers at once, else when it does, and never after stop().
    void read(const QString& path, const Then& then);
    void stop();
    bool isReading() const { return m_unwanted != nullptr; }

private:
    QWidget* m_window = nullptr;
    WaitNote* m_note = nullptr;
    BackgroundJobs m_jobs;
    std::shared_ptr<std::atomic<bool>> m_unwanted; // of the listing under way
};

} // namespace ql240
