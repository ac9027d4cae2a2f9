#include "settings/card_jobs.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "settings/card.h"
#include "settings/device_settings.h"

namespace ql240 {

// Shared with the threads, which may outlive the object that started them.
struct CardJobs::Mailbox {
    std::mutex mutex;
    std::condition_variable arrived;
    std::vector<std::function<void()>> ends;
    CardJobs* owner = nullptr; // null once nobody listens
};

CardContents readCard(const QString& drive) {
    CardContents contents;
    contents.drive = drive;
    contents.settingFolder = settingFolder(drive);
    contents.updateFolder = updateFolder(drive);
    contents.versionText = openVersionText(contents.updateFolder);
    contents.values = DeviceSettings(contents.settingFolder);
    return contents;
}

CardJobs::CardJobs(QObject* parent) : QObject(parent), m_mailbox(std::make_shared<Mailbox>()) {
    m_mailbox->owner = this;
}

CardJobs::~CardJobs() {
    const std::lock_guard lock(m_mailbox->mutex);
    m_mailbox->owner = nullptr;
}

void CardJobs::start(std::function<void()> work, std::function<void()> then) {
    ++m_running;
    std::thread([mailbox = m_mailbox, work = std::move(work), then = std::move(then)]() mutable {
        work();
        const std::lock_guard lock(mailbox->mutex);
        mailbox->ends.push_back(std::move(then));
        mailbox->arrived.notify_one();
        if (mailbox->owner)
            QMetaObject::invokeMethod(mailbox->owner, &CardJobs::deliver, Qt::QueuedConnection);
    }).detach();
}

void CardJobs::forget() {
    {
        const std::lock_guard lock(m_mailbox->mutex);
        m_mailbox->owner = nullptr;
    }
    m_mailbox = std::make_shared<Mailbox>();
    m_mailbox->owner = this;
    m_running = 0;
}

void CardJobs::deliver() {
    std::vector<std::function<void()>> ends;
    {
        const std::lock_guard lock(m_mailbox->mutex);
        ends.swap(m_mailbox->ends);
    }
    m_running -= int(ends.size());
    for (const auto& end : ends)
        end();
}

bool CardJobs::wait(std::chrono::milliseconds limit) {
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
