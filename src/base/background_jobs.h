// Runs work off the interface thread that a failing card reader or a slow network may block for minutes. Each
// job has a thread of its own, which is detached and left behind when its result is no longer wanted; results
// arrive on the thread of the object that asked. Each object belongs to one thread.
#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <chrono>
#include <functional>
#include <memory>

namespace ql240 {

// How long waiting for jobs may keep the interface from responding.
inline constexpr std::chrono::milliseconds kLongestStandstill{100};

// Runs the jobs. Without one, each job gets a thread of its own.
class JobRunner {
public:
    virtual ~JobRunner() = default;
    // Calls `job` once, at some later time, on any thread.
    virtual void run(std::function<void()> job) = 0;
    // Returns true once `isDone` holds, false on timeout. Called on the thread that waits for jobs.
    virtual bool wait(QDeadlineTimer until, const std::function<bool()>& isDone) = 0;
};

// Makes `runner` run all jobs from now on; null restores threads. For tests that decide when a job ends.
void setJobRunner(JobRunner* runner);

// Runs functions on threads and their continuations on this object's thread. The destructor doesn't wait for
// them.
class BackgroundJobs : public QObject {
    Q_OBJECT
public:
    explicit BackgroundJobs(QObject* parent = nullptr);
    ~BackgroundJobs() override;

    // Runs `work` on a thread, then `then` on this object's thread, unless `forget` is called first.
    void start(std::function<void()> work, std::function<void()> then);
    // Drops the `then` of all jobs started so far, also of those that have ended.
    void forget();
    bool isIdle() const { return m_running == 0; }
    // Blocks until all jobs have ended and their `then` was called; false on timeout. All waits on a thread
    // between two iterations of its event loop share kLongestStandstill.
    bool wait(std::chrono::milliseconds limit);

private:
    struct Mailbox;

    void deliver();
    bool awaitEnd(QDeadlineTimer until);

    std::shared_ptr<Mailbox> m_mailbox;
    int m_running = 0;
};

} // namespace ql240
