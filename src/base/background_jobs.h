// Work off the interface thread, for what a dying card reader or a slow network may hold for minutes. Each
// job has a thread of its own, which is left behind when nobody waits for it any more; answers come on the
// thread of the object that asked. Used by one thread; owned by whoever asks.
#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <chrono>
#include <functional>
#include <memory>

namespace ql240 {

// How long waiting for jobs may keep the interface from answering.
inline constexpr std::chrono::milliseconds kLongestStandstill{100};

// What runs the jobs. Without one they run on threads, a thread each.
class JobRunner {
public:
    virtual ~JobRunner() = default;
    // Calls `job` once, at some later time, on any thread.
    virtual void run(std::function<void()> job) = 0;
    // Returns when `isDone` holds, or false when the time is up. Called on the thread that waits for jobs.
    virtual bool wait(QDeadlineTimer until, const std::function<bool()>& isDone) = 0;
};

// Lets `runner` run all jobs from now on; null for threads again. For tests that decide when a job ends.
void setJobRunner(JobRunner* runner);

// Runs functions on threads and brings their ends back. Destroyed, it waits for none of them.
class BackgroundJobs : public QObject {
    Q_OBJECT
public:
    explicit BackgroundJobs(QObject* parent = nullptr);
    ~BackgroundJobs() override;

    // Runs `work` on a thread; `then` follows on this object's thread, unless `forget` comes first.
    void start(std::function<void()> work, std::function<void()> then);
    // From now on no `then` of the jobs started so far is called.
    void forget();
    bool isIdle() const { return m_running == 0; }
    // Blocks until all jobs have ended and their `then` was called; false if the time ran out before. All
    // waits between two turns of the event loop share kLongestStandstill, whoever waits.
    bool wait(std::chrono::milliseconds limit);

private:
    struct Mailbox;

    void deliver();
    bool awaitEnd(QDeadlineTimer until);

    std::shared_ptr<Mailbox> m_mailbox;
    int m_running = 0;
};

} // namespace ql240
