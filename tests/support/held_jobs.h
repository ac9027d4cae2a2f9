// Background jobs that end when the test says so, or at once; waiting for them takes no time. Main thread.
#pragma once

#include <QCoreApplication>

#include <utility>
#include <vector>

#include "base/background_jobs.h"

namespace ql240 {

struct HeldJobs : JobRunner {
    std::vector<std::function<void()>> held;

    HeldJobs() { setJobRunner(this); }
    ~HeldJobs() override { setJobRunner(nullptr); }
    Q_DISABLE_COPY_MOVE(HeldJobs)

    void run(std::function<void()> job) override { held.push_back(std::move(job)); }
    bool wait(QDeadlineTimer, const std::function<bool()>& isDone) override { return isDone(); }
    void answer() {
        for (const auto& job : std::exchange(held, {}))
            job();
        QCoreApplication::processEvents();
    }
};

struct PromptJobs : HeldJobs {
    void run(std::function<void()> job) override { job(); }
};

} // namespace ql240
