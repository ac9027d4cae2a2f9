// A media pipeline on the run's virtual clock: a running clip advances with time and delivers frames; a
// seek's frame comes later. All pixels of a clip have one grey level, derived from the clip's index.
// Interface thread.
#pragma once

#include <QTimer>

#include <optional>

#include "support/fake_media.h"

namespace ql240::moments {

class TimedMedia : public FakeMedia {
public:
    TimedMedia();

    // The file that was loaded last.
    const QString& path() const { return m_path; }
    bool isOpen() const { return liveObjects > 0; }
    bool isRunning() const { return isOpen() && transport.state == GraphState::Running; }
    // How long the frame takes after a seek.
    void setSeekMs(int ms) { m_seekMs = ms; }

private:
    void readLog();
    void goOn();
    void deliverFrame();

    QTimer m_tick;
    QString m_path;
    qint64 m_lastMs = 0;
    int m_seekMs = 0;
    std::optional<qint64> m_frameDueMs;
};

} // namespace ql240::moments
