// Background jobs that end when the run says: at once, late, or never. Main thread.
#pragma once

#include <algorithm>

#include "base/background_jobs.h"
#include "moments/virtual_time.h"

namespace ql240::moments {

class SlowJobs : public JobRunner {
public:
    // `latencyMs` is called for each job; with a negative result the job never ends.
    explicit SlowJobs(std::function<int()> latencyMs) : m_latencyMs(std::move(latencyMs)) {
        setJobRunner(this);
    }
    ~SlowJobs() override { setJobRunner(nullptr); }
    Q_DISABLE_COPY_MOVE(SlowJobs)

    void run(std::function<void()> job) override {
        m_started();
        if (const int latency = m_latencyMs(); latency >= 0)
            callAt(nowMs() + latency, std::move(job));
    }
    bool wait(QDeadlineTimer until, const std::function<bool()>& isDone) override {
        const qint64 began = nowMs();
        const bool done = pass(began + until.remainingTime(), isDone);
        m_inTurnMs += nowMs() - began;
        m_longestMs = std::max(m_longestMs, m_inTurnMs);
        return done;
    }
    // Called before each job is started.
    void onStart(std::function<void()> hook) { m_started = std::move(hook); }
    // The longest wait for jobs between two iterations of the event loop, since the last call.
    qint64 takeLongestWaitMs() { return std::exchange(m_longestMs, 0); }
    void turnBegins() { m_inTurnMs = 0; }

private:
    std::function<int()> m_latencyMs;
    std::function<void()> m_started = [] {};
    qint64 m_inTurnMs = 0;
    qint64 m_longestMs = 0;
};

} // namespace ql240::moments
