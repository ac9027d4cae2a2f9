#include "base/background_jobs.h"

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QPointer>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace ql240 {
namespace {

JobRunner* g_runner = nullptr;

void runJob(std::function<void()> job) {
    if (g_runner)
        g_runner->run(std::move(job));
    else
        std::thread(std::move(job)).detach();
}

// What is left of the time for which the thread may block before its event loop runs again.
class Standstill : public QObject {
public:
    static Standstill& ofThread() {
        static Standstill left;
        return left;
    }
    QDeadlineTimer until(std::chrono::milliseconds limit) {
        listen();
        m_began.start();
        return QDeadlineTimer(std::min(limit, m_left), Qt::PreciseTimer);
    }
    void end() { m_left -= std::min(m_left, std::chrono::milliseconds(m_began.elapsed())); }

private:
    // The event dispatcher is created and destroyed with the application object.
    void listen() {
        auto* loop = QAbstractEventDispatcher::instance();
        if (!loop || loop == m_loop)
            return;
        m_loop = loop;
        m_left = kLongestStandstill;
        // Not on aboutToBlock(): the loop may block without having handled posted events and due timers
        // first.
        connect(loop, &QAbstractEventDispatcher::awake, this, [this] { m_left = kLongestStandstill; });
    }

    QPointer<QAbstractEventDispatcher> m_loop;
    std::chrono::milliseconds m_left = kLongestStandstill;
    QElapsedTimer m_began;
};

} // namespace

void setJobRunner(JobRunner* runner) {
    g_runner = runner;
}

// Shared with the threads, which may outlive the object that started them.
struct BackgroundJobs::Mailbox {
    std::mutex mutex;
    std::condition_variable arrived;
    std::vector<std::function<void()>> ends;
    BackgroundJobs* owner = nullptr; // null once the owner is gone or has dropped these jobs
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
    runJob([mailbox = m_mailbox, work = std::move(work), then = std::move(then)]() mutable {
        work();
        const std::lock_guard lock(mailbox->mutex);
        mailbox->ends.push_back(std::move(then));
        mailbox->arrived.notify_one();
        if (mailbox->owner)
            QMetaObject::invokeMethod(mailbox->owner, &BackgroundJobs::deliver, Qt::QueuedConnection);
    });
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
    const auto mailbox = m_mailbox;
    std::vector<std::function<void()>> ends;
    {
        const std::lock_guard lock(mailbox->mutex);
        ends.swap(mailbox->ends);
    }
    m_running -= static_cast<int>(ends.size());
    for (const auto& end : ends) {
        if (mailbox->owner) // an earlier one may have called forget() or deleted this object
            end();
    }
}

bool BackgroundJobs::awaitEnd(QDeadlineTimer until) {
    const auto hasEnds = [mailbox = m_mailbox.get()] { return !mailbox->ends.empty(); };
    if (g_runner)
        return g_runner->wait(until, hasEnds);
    std::unique_lock lock(m_mailbox->mutex);
    return m_mailbox->arrived.wait_until(lock, until.deadline<std::chrono::steady_clock>(), hasEnds);
}

bool BackgroundJobs::wait(std::chrono::milliseconds limit) {
    while (m_running > 0) {
        Standstill& standstill = Standstill::ofThread();
        const QDeadlineTimer until = standstill.until(limit);
        const bool ended = awaitEnd(until);
        standstill.end();
        if (!ended)
            return false;
        limit = std::chrono::milliseconds(until.remainingTime());
        deliver();
    }
    return true;
}

} // namespace ql240
