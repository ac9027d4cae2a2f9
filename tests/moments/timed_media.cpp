#include "moments/timed_media.h"

#include <algorithm>

#include "moments/virtual_time.h"

namespace ql240::moments {
namespace {

constexpr int kTickMs = 33;
constexpr std::int64_t kUnitsPerMs = 10000;

} // namespace

TimedMedia::TimedMedia() : m_lastMs(nowMs()) {
    clip.sizes = {QSize(64, 36), QSize(64, 36)};
    QObject::connect(&m_tick, &QTimer::timeout, &m_tick, [this] { goOn(); });
    m_tick.setTimerType(Qt::PreciseTimer);
    m_tick.start(kTickMs);
}

// Reads the calls since the last tick: another clip, a frame at another position.
void TimedMedia::readLog() {
    const QStringList calls = takeLog();
    for (const QString& call : calls) {
        if (call.startsWith(QLatin1String("load ")))
            m_path = call.mid(5);
        if (call == QLatin1String("run")) // time spent waiting before this doesn't count for the clip
            m_lastMs = nowMs();
        if (call.startsWith(QLatin1String("seek ")) || call == QLatin1String("pause"))
            m_frameDueMs = nowMs() + m_seekMs;
    }
}

void TimedMedia::goOn() {
    readLog();
    const qint64 passedMs = nowMs() - std::exchange(m_lastMs, nowMs());
    if (!isOpen())
        return;
    if (isRunning()) {
        transport.position =
            std::min<std::int64_t>(transport.position + passedMs * kUnitsPerMs, transport.duration);
        deliverFrame();
    } else if (m_frameDueMs && *m_frameDueMs <= nowMs()) {
        m_frameDueMs.reset();
        deliverFrame();
    }
}

void TimedMedia::deliverFrame() {
    constexpr std::uint8_t kGrey = 128;
    const QSize size = clip.sizes[0];
    deliver(0, std::vector<std::uint8_t>(static_cast<std::size_t>(2 * size.width() * size.height()), kGrey));
}

} // namespace ql240::moments
