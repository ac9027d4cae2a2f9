// Work off the interface thread, for what a dying card reader or a slow network may hold for minutes. Each job
// has a thread of its own, which is left behind when nobody waits for it any more; answers come on the thread
// of the object that asked. Used by one thread; owned by whoever asks.
#pragma once

#include <QObject>
#include <chrono>
#include <functional>
#include <memory>

namespace ql240 {

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
    // Blocks until all jobs have ended and their `then` was called; false if the time ran out before.
    bool wait(std::chrono::milliseconds limit);

private:
    struct Mailbox;

    void deliver();

    std::shared_ptr<Mailbox> m_mailbox;
    int m_running = 0;
};

} // namespace ql240
