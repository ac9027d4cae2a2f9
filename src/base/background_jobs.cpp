#include "base/background_jobs.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace ql240 {

// Shared with the threads, which may outlive the object that started them.
struct BackgroundJobs::Mailbox {
    std::mutex mutex;
    std::condition_variable arrived;
    std::vector<std::function<void()>> ends;
    BackgroundJobs* owner = nullptr; // null once nobody listens
};

BackgroundJobs::BackgroundJobs(QObject* parent) : QObject(parent), m_mailbox(std::make_shared<Mailbox>()) {
    m_mailbox->owner = this;
}

BackgroundJobs::~BackgroundJobs() {
    const std::lock_guard lock(m_mailbox->mutex);
    m_mailbox->owner = nullptr;
}

void BackgroundJobs::start(std::function<void()> work, std::function<void()> then) {
    ++m_running;
    std::thread([mailbox = m_mailbox, work = std::move(work), then = std::move(then)]() mutable {
        work();
        const std::lock_guard lock(mailbox->mutex);
        mailbox->ends.push_back(std::move(then));
        mailbox->arrived.notify_one();
        if (mailbox->owner)
            QMetaObject::invokeMethod(mailbox->owner, &BackgroundJobs::deliver, Qt::QueuedConnection);
    }).detach();
}

void BackgroundJobs::forget() {
    {
        const std::lock_guard lock(m_mailbox->mutex);
        m_mailbox->owner = nullptr;
    }
    m_mailbox = std::make_shared<Mailbox>();
    m_mailbox->owner = this;
    m_running = 0;
}

void BackgroundJobs::deliver() {
    std::vector<std::function<void()>> ends;
    {
        const std::lock_guard lock(m_mailbox->mutex);
        ends.swap(m_mailbox->ends);
    }
    m_running -= int(ends.size());
    for (const auto& end : ends)
        end();
}

bool BackgroundJobs::wait(std::chrono::milliseconds limit) {
    const auto until = std::chrono::steady_clock::now() + limit;
    while (m_running > 0) {
        {
            std::unique_lock lock(m_mailbox->mutex);
            if (!m_mailbox->arrived.wait_until(lock, until, [this] { return !m_mailbox->ends.empty(); }))
                return false;
        }
        deliver();
    }
    return true;
}

} // namespace ql240
