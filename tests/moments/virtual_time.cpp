#include "moments/virtual_time.h"

#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <utility>

namespace {

constexpr std::size_t kSignalBytes = 8; // size of the kernel's signal set
constexpr qint64 kNsPerMs = 1000000;
constexpr qint64 kNsPerSecond = 1000000000;
// Both clocks start at a whole second, because Qt aligns its coarse timers to fractions of one.
constexpr qint64 kFirstUptimeNs = 100000 * kNsPerSecond;
constexpr qint64 kFirstDateNs = 1365165000 * kNsPerSecond; // 5 April 2013, 12:30

struct VirtualTime {
    bool runs = false;
    qint64 passedNs = 0;
    std::multimap<qint64, std::function<void()>> calls; // by due time, ns
    std::function<void()> idle;

    // Runs the next call due by then; false if there is none.
    bool callNext(qint64 untilNs) {
        const auto next = calls.begin();
        if (next == calls.end() || next->first > untilNs)
            return false;
        passedNs = std::max(passedNs, next->first);
        const auto call = std::move(next->second);
        calls.erase(next);
        call();
        return true;
    }
};

VirtualTime& theTime() {
    static VirtualTime time;
    return time;
}

bool isVirtual() {
    return theTime().runs && ::syscall(SYS_gettid) == ::getpid();
}

timespec toTimespec(qint64 ns) {
    return {static_cast<time_t>(ns / kNsPerSecond), static_cast<long>(ns % kNsPerSecond)};
}

} // namespace

namespace ql240::moments {

void startVirtualTime() {
    theTime().runs = true;
}

qint64 nowMs() {
    return theTime().passedNs / kNsPerMs;
}

void callAt(qint64 timeMs, std::function<void()> then) {
    theTime().calls.emplace(timeMs * kNsPerMs, std::move(then));
}

void forgetCalls() {
    theTime().calls.clear();
}

bool pass(qint64 untilMs, const std::function<bool()>& isDone) {
    const qint64 untilNs = untilMs * kNsPerMs;
    while (!isDone()) {
        if (theTime().callNext(untilNs))
            continue;
        theTime().passedNs = std::max(theTime().passedNs, untilNs);
        return false;
    }
    return true;
}

void setIdleHook(std::function<void()> hook) {
    theTime().idle = std::move(hook);
}

} // namespace ql240::moments

// Replacements of C library functions. The sanitizers' interceptors are weak and give way to them too.
extern "C" {

__attribute__((visibility("default"))) int clock_gettime(clockid_t id, timespec* time) noexcept {
    if (!isVirtual() || id == CLOCK_PROCESS_CPUTIME_ID || id == CLOCK_THREAD_CPUTIME_ID)
        return static_cast<int>(::syscall(SYS_clock_gettime, id, time));
    const bool isDate = id == CLOCK_REALTIME || id == CLOCK_REALTIME_COARSE;
    *time = toTimespec(theTime().passedNs + (isDate ? kFirstDateNs : kFirstUptimeNs));
    return 0;
}

__attribute__((visibility("default"))) int gettimeofday(timeval* time, void* zone) noexcept {
    timespec now{};
    if (zone || ::clock_gettime(CLOCK_REALTIME, &now) != 0)
        return static_cast<int>(::syscall(SYS_gettimeofday, time, zone));
    *time = {now.tv_sec, now.tv_nsec / 1000};
    return 0;
}

__attribute__((visibility("default"))) int ppoll(pollfd* files, nfds_t count, const timespec* limit,
                                                 const sigset_t* signals) {
    if (!isVirtual())
        return static_cast<int>(::syscall(SYS_ppoll, files, count, limit, signals, kSignalBytes));
    const timespec atOnce{};
    const auto look = [=] {
        timespec none = atOnce; // the kernel modifies it
        return static_cast<int>(::syscall(SYS_ppoll, files, count, &none, signals, kSignalBytes));
    };
    const bool waits = !limit || limit->tv_sec > 0 || limit->tv_nsec > 0;
    if (const int ready = look(); ready != 0 || !waits)
        return ready;
    VirtualTime& time = theTime();
    if (time.idle)
        time.idle();
    const qint64 until = limit ? time.passedNs + limit->tv_sec * kNsPerSecond + limit->tv_nsec : INT64_MAX;
    if (time.callNext(until))
        return look();
    if (!limit)
        qFatal("The event loop waits for something that never comes.");
    time.passedNs = until;
    return 0;
}
}
