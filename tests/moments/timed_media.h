// A media pipeline on the run's virtual clock: a running clip advances with time and delivers frames; a
// seek's frame comes later. Interface thread.
#pragma once

#include <QTimer>
#include <algorithm>
#include <optional>

#include "moments/virtual_time.h"
#include "support/fake_media.h"

namespace ql240::moments {

class TimedMedia : public FakeMedia {
public:
    TimedMedia() {
        clip.sizes = {QSize(64, 36), QSize(64, 36)};
        QObject::connect(&m_tick, &QTimer::timeout, &m_tick, [this] { advance(); });
        m_tick.setTimerType(Qt::PreciseTimer);
        m_tick.start(33);
    }
    // The file that was loaded last.
    const QString& path() const { return m_path; }
    bool isOpen() const { return liveObjects > 0; }
    bool isRunning() const { return isOpen() && transport.state == GraphState::Running; }
    // How long the frame takes after a seek.
    void setSeekMs(int ms) { m_seekMs = ms; }

private:
    // Reads the calls since the last tick: another clip, a frame at another position.
    void readLog() {
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
    void advance() {
        readLog();
        const qint64 passedMs = nowMs() - std::exchange(m_lastMs, nowMs());
        if (isRunning()) {
            transport.position =
                std::min<std::int64_t>(transport.position + passedMs * 10000, transport.duration);
            deliverFrame();
        } else if (isOpen() && m_frameDueMs && *m_frameDueMs <= nowMs()) {
            m_frameDueMs.reset();
            deliverFrame();
        }
    }
    void deliverFrame() {
        const QSize size = clip.sizes[0];
        deliver(0,
                std::vector<std::uint8_t>(static_cast<std::size_t>(2 * size.width() * size.height()), 128));
    }

    QTimer m_tick;
    QString m_path;
    qint64 m_lastMs = nowMs();
    int m_seekMs = 0;
    std::optional<qint64> m_frameDueMs;
};

} // namespace ql240::moments
