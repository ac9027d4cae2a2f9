// Lists a folder for the window off the interface thread. A slow listing shows a note with a Cancel button;
// one that arrives while a dialog is open is held until that closes. A new listing replaces the one in
// progress. Interface thread only.
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

    // Where the busy note appears; `window` owns it.
    void showWaitIn(QWidget* window, const QRect& place);

    // Calls `then` before returning if the folder answers at once, otherwise later; never after stop().
    void read(const QString& path, const Then& then);
    void stop();
    // True until the listing has been handed over.
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
