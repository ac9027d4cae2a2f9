#include "platform/gstreamer/transport.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/logging.h"
#include "platform/waits.h"

namespace ql240::gstreamer {

namespace {

using Answer = Streams::Answer;

double inMs(std::int64_t units) {
    return static_cast<double>(units) / 10'000;
}

bool isOlder(std::uint32_t number, std::uint32_t than) {
    return static_cast<std::int32_t>(number - than) < 0;
}

} // namespace

Transport::Transport(Streams& streams) : m_streams(streams), m_duration(streams.duration()) {
    m_timeout.setSingleShot(true);
    QObject::connect(&m_timeout, &QTimer::timeout, &m_timeout, [this] { giveUp(); });
}

std::int64_t Transport::clamped(std::int64_t target) const {
    return std::clamp(target, std::int64_t{0}, std::max(std::int64_t{0}, m_duration - 1));
}

bool Transport::start(const std::function<void()>& release) {
    // Seek to a target set before the first run while the streams are still blocked.
    std::optional<Streams::Sent> sought;
    m_current = std::exchange(m_waiting, std::nullopt);
    if (m_current && (*m_current > 0 || m_rate != 1.0))
        sought = m_streams.seek(*m_current, m_rate);
    if (sought && sought->answer == Answer::Refused)
        m_current.reset();
    m_phase = Phase::Settled;
    m_state = GraphState::Paused;
    const bool accepted = applyState();
    if (accepted && sought && m_current)
        await(Phase::Seeking, *m_current, sought->number);
    release();
    return accepted;
}

bool Transport::applyState() {
    switch (m_streams.setRunning(m_state == GraphState::Running, !isInFlight())) {
        case Answer::Awaited:
            if (isAtRest()) {
                m_phase = Phase::Changing;
                m_sent.start();
            }
            if (isInFlight())
                m_timeout.start(waits::kSeek);
            return true;
        case Answer::Refused:
            end();
            return false;
        default:
            return true;
    }
}

bool Transport::setState(GraphState state) {
    if (m_state == state && state != GraphState::Stopped)
        return true;
    const std::int64_t here = position();
    const bool wasRunning = m_state == GraphState::Running;
    if (wasRunning && !isInFlight()) { // the clip has played on since the last seek
        m_last = here;
        m_current.reset();
    }
    m_state = state;
    if (state == GraphState::Stopped) {
        m_waiting = 0;
        if (m_phase == Phase::Ended)
            m_phase = Phase::Settled;
    } else if (state == GraphState::Running && isElsewhere()) {
        m_waiting = here;
        sendWaiting();
    }
    const bool accepted = applyState();
    if (accepted && wasRunning && m_phase != Phase::Ended)
        holdPosition();
    return accepted;
}

// The clip may have played on since a seek whose answer hasn't arrived yet.
void Transport::holdPosition() {
    const std::int64_t stopped = std::min(m_streams.stoppedAt(), m_duration);
    if (m_current && stopped <= *m_current)
        return;
    m_last = std::max(stopped, m_current.value_or(m_last));
    m_current.reset();
}

// Whether the streams are not at the position, so that a seek is needed: to resume from the visible picture,
// or, where decoding is slower than real time, to show the picture at the paused position.
bool Transport::isElsewhere() const {
    switch (m_phase) {
        case Phase::Stuck:
        case Phase::Fetching:
        case Phase::Moving:
            return true;
        case Phase::Settled:
            return m_current && !m_streams.areInStepAt(*m_current);
        case Phase::Changing:
            return m_state != GraphState::Running && !m_waiting && !m_current && m_streams.areOff(position());
        default:
            return false;
    }
}

bool Transport::seek(std::int64_t target) {
    const bool wasOver = m_phase == Phase::Ended;
    if (wasOver)
        m_phase = Phase::Settled;
    m_waiting = clamped(target);
    const bool accepted = sendWaiting();
    if (wasOver && !accepted)
        m_phase = Phase::Ended;
    return accepted;
}

bool Transport::sendWaiting() {
    if (!isAtRest() || !m_waiting)
        return true;
    const std::int64_t target = *std::exchange(m_waiting, std::nullopt);
    const bool isThere = m_phase == Phase::Settled && m_state != GraphState::Running && m_current;
    if (isThere && (m_current == target || move(target)))
        return true;
    return sendSeek(target);
}

bool Transport::sendSeek(std::int64_t target) {
    const std::int64_t here = position();
    const auto [answer, number] = m_streams.seek(target, m_rate);
    if (answer == Answer::Refused) {
        m_last = here;
        qCWarning(lcMedia) << "seek to" << inMs(target) << "ms refused";
    } else {
        await(Phase::Seeking, target, number);
    }
    return answer != Answer::Refused;
}

bool Transport::move(std::int64_t target) {
    const auto [answer, number] = m_streams.move(target);
    if (answer == Answer::Awaited)
        await(Phase::Moving, target, number);
    else if (answer == Answer::Done)
        m_current = target;
    return answer != Answer::Refused;
}

void Transport::await(Phase phase, std::int64_t target, std::uint32_t number) {
    m_phase = phase;
    m_current = target;
    m_number = number;
    m_sent.start();
    m_timeout.start(phase == Phase::Moving ? waits::kMove : waits::kSeek);
}

void Transport::arrived(std::uint32_t number) {
    if (!isInFlight() || isOlder(number, m_number))
        return;
    report("took");
    if (m_phase == Phase::Seeking && !m_waiting && fetchLastPictures())
        return;
    if (m_phase == Phase::Changing && isElsewhere())
        m_waiting = position();
    settle();
}

// Logs each state change, seek and move with its outcome.
void Transport::report(const char* outcome) const {
    Q_ASSERT(isInFlight());
    constexpr std::array kNames{"state change at", "seek to", "seek for the last pictures at", "move to"};
    const auto kind = static_cast<std::size_t>(m_phase) - static_cast<std::size_t>(Phase::Changing);
    qCDebug(lcMedia) << kNames[kind] << inMs(m_current.value_or(m_last)) << "ms" << outcome
                     << m_sent.elapsed() << "ms";
}

// A video stream that ends before the clip keeps showing its last frame. Fetching that frame needs a seek to
// it; the position remains the target.
bool Transport::fetchLastPictures() {
    if (m_state == GraphState::Running || !m_current)
        return false;
    const auto [answer, number] = m_streams.fetchLastPictures(*m_current, m_rate);
    if (answer == Answer::Awaited)
        await(Phase::Fetching, *m_current, number);
    return answer == Answer::Awaited;
}

void Transport::settle(Phase phase) {
    m_timeout.stop();
    m_phase = phase;
    sendWaiting();
}

// Repeats a move that hangs as a seek.
void Transport::giveUp() {
    report("given up after");
    if (m_phase == Phase::Moving && !m_waiting)
        m_waiting = m_current;
    if (m_waiting)
        m_current.reset();
    settle(m_phase == Phase::Seeking ? Phase::Stuck : Phase::Settled);
}

bool Transport::setRate(double rate) {
    if (rate <= 0)
        return false;
    if (rate == m_rate)
        return true;
    const std::int64_t here = position();
    const double before = std::exchange(m_rate, rate);
    const auto target = std::exchange(m_current, std::nullopt);
    const bool accepted = seek(here);
    if (!accepted) {
        m_rate = before;
        m_current = target;
    }
    return accepted;
}

std::int64_t Transport::position() const {
    if (m_phase == Phase::Ended)
        return m_duration;
    if (m_waiting)
        return *m_waiting;
    if (!isStarted())
        return 0;
    if (m_current && (m_state != GraphState::Running || isUnderWay()))
        return *m_current;
    const bool isPlaying = m_state == GraphState::Running && !isInFlight();
    if (const auto reported = isPlaying ? m_streams.position() : std::nullopt)
        m_last = std::clamp(*reported, m_current.value_or(0), m_duration);
    else if (m_current)
        m_last = *m_current;
    return m_last;
}

void Transport::ended(std::uint32_t number) {
    if (!isOlder(number, m_number))
        end();
}

// At the end of the streams, or at an error after opening succeeded, the clip is over.
void Transport::end() {
    qCDebug(lcMedia) << "the clip is over";
    m_timeout.stop();
    m_current.reset();
    m_last = m_duration;
    m_phase = m_waiting ? Phase::Settled : Phase::Ended;
    sendWaiting();
}

} // namespace ql240::gstreamer
