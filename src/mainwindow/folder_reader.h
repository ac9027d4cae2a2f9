// Lists a folder for the window off the interface thread. A listing that lasts shows itself, with a way to
// leave it; one that arrives while the user is being asked something waits for the answer. At most one at a
// time: a new one takes the place of the last. Interface thread only.
#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "base/background_jobs.h"
#include "clips/clip_folder.h"

class QRect;
class QWidget;

namespace ql240 {

class Questions;
class WaitNote;

class FolderReader : public QObject {
    Q_OBJECT
public:
    using Then = std::function<void(const FolderListing&)>;

    explicit FolderReader(const Questions& questions);

    // Where the wait shows itself; the note belongs to the window.
    void showWaitIn(QWidget* window, const QRect& place);

    // `then` follows at once where the folder answers at once, else when it does, and never after stop().
    void read(const QString& path, const Then& then);
    void stop();
    // Until the listing has been handed over.
    bool isReading() const { return m_phase != Phase::Idle; }

private:
    // Held: read, but not handed over yet.
    enum class Phase { Idle, Reading, Held };

    void arrive();
    void handOver();
    void showWait(const QString& path);

    const Questions& m_questions;
    QWidget* m_window = nullptr;
    WaitNote* m_note = nullptr;
    Phase m_phase = Phase::Idle;
    int m_number = 0; // of the last reading
    Then m_then;
    std::shared_ptr<FolderListing> m_listing;
    std::shared_ptr<std::atomic<bool>> m_unwanted;
    BackgroundJobs m_jobs;
};

} // namespace ql240
