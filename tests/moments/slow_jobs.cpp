#include "moments/slow_jobs.h"

#include <algorithm>

#include "moments/virtual_time.h"

namespace ql240::moments {

void SlowJobs::run(std::function<void()> job) {
    m_started();
    const int latency = m_latencyMs();
    if (latency >= 0)
        callAt(nowMs() + latency, std::move(job));
}

bool SlowJobs::wait(QDeadlineTimer until, const std::function<bool()>& isDone) {
    const qint64 began = nowMs();
    const bool done = pass(began + until.remainingTime(), isDone);
    m_inTurnMs += nowMs() - began;
    m_longestMs = std::max(m_longestMs, m_inTurnMs);
    return done;
}

} // namespace ql240::moments
