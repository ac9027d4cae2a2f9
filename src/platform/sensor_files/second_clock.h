// The times of records that come about once a second and carry a calendar clock of whole seconds.
#pragma once

#include <QDateTime>

namespace ql240::sensorfiles {

// A clock that a receiver sets right in the middle of a clip jumps by years, and one without a fix may stand
// at zero: only steps of a few seconds forward are believed, everything else counts as the next second.
class SecondClock {
public:
    qint64 next(const QDateTime& clock) {
        if (m_started) {
            const qint64 step = m_last.isValid() && clock.isValid() ? m_last.secsTo(clock) : 1;
            m_second += step >= 0 && step <= kBelievedStep ? step : 1;
        }
        m_started = true;
        m_last = clock;
        return m_second * 1000;
    }

private:
    static constexpr qint64 kBelievedStep = 10;
    bool m_started = false;
    QDateTime m_last;
    qint64 m_second = 0;
};

inline QDateTime utcClock(int year, int month, int day, int hour, int minute, int second) {
    const QDate date(year < 2000 ? year + 2000 : year, month, day);
    const QTime time(hour, minute, second);
    return date.isValid() && time.isValid() ? QDateTime(date, time, Qt::UTC) : QDateTime();
}

} // namespace ql240::sensorfiles
