// Background jobs that end when the run says: at once, late, or never. Main thread.
#pragma once

#include "base/background_jobs.h"

namespace ql240::moments {

class SlowJobs : public JobRunner {
public:
    // `latencyMs` is called for each job; with a negative result the job never ends.
    explicit SlowJobs(std::function<int()> latencyMs) : m_latencyMs(std::move(latencyMs)) {
        setJobRunner(this);
    }
    ~SlowJobs() override { setJobRunner(nullptr); }
    Q_DISABLE_COPY_MOVE(SlowJobs)

    void run(std::function<void()> job) override;
    bool wait(QDeadlineTimer until, const std::function<bool()>& isDone) override;

    // Called before each job is started.
    void onStart(std::function<void()> hook) { m_started = std::move(hook); }
    // The longest that the thread has waited for jobs between two iterations of the event loop, since the
    // last call.
    qint64 takeLongestWaitMs() { return std::exchange(m_longestMs, 0); }
    void turnBegins() { m_inTurnMs = 0; }

private:
    std::function<int()> m_latencyMs;
    std::function<void()> m_started = [] {};
    qint64 m_inTurnMs = 0;
    qint64 m_longestMs = 0;
};

} // namespace ql240::moments
