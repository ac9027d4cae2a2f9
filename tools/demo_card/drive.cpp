#include "demo_card/drive.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ql240::demo {
namespace {

using std::numbers::pi;

constexpr double kStep = 0.005;
constexpr double kGravity = 9.80665;
constexpr double kReacquireSeconds = 1.2;
constexpr double kPitchPerAcc = 0.0035; // rad for each m/s²
constexpr double kPitchLag = 0.25;      // s

// WGS 84: the length of one degree in metres at a latitude.
GeoPosition metresPerDegree(double latitude) {
    constexpr double radius = 6378137.0;
    constexpr double e2 = 0.00669437999014;
    const double sine = std::sin(latitude * pi / 180);
    const double w = std::sqrt(1 - e2 * sine * sine);
    return {pi / 180 * radius * (1 - e2) / (w * w * w),
            pi / 180 * radius / w * std::cos(latitude * pi / 180)};
}

} // namespace

double Drive::Ring::at(double time) const {
    const double since = time - start;
    return since < 0 ? 0 : amplitude * std::exp(-since / decay) * std::sin(2 * pi * hz * since);
}

Drive::Drive(DrivePlan plan) : m_plan(std::move(plan)) {
    integrate();
    findBumps();
}

void Drive::integrate() {
    Point point{0, m_plan.bearingDeg * pi / 180, 0, 0, 0};
    const int steps = static_cast<int>(std::ceil(m_plan.seconds / kStep)) + 1;
    for (int i = 0; i <= steps; ++i) {
        m_points.append(point);
        const double time = i * kStep;
        const double advance = speedAt(time + kStep / 2) * kStep;
        const double acc = (speedAt(time + kStep) - speedAt(time)) / kStep;
        const double turn = m_plan.curvature(point.distance + advance / 2) * advance;
        point.north += advance * std::cos(point.roadHeading + turn / 2);
        point.east += advance * std::sin(point.roadHeading + turn / 2);
        point.roadHeading += turn;
        point.distance += advance;
        point.pitch += (std::clamp(acc, -12.0, 12.0) * kPitchPerAcc - point.pitch) * kStep / kPitchLag;
        if (point.distance < m_plan.tunnelTo)
            m_fixReturns = time + kReacquireSeconds;
    }
}

void Drive::findBumps() {
    for (double bump : m_plan.bumps) {
        const auto reached = std::find_if(m_points.begin(), m_points.end(),
                                          [&](const Point& point) { return point.distance >= bump; });
        if (reached == m_points.end())
            continue;
        const double time = static_cast<double>(reached - m_points.begin()) * kStep;
        m_bumps.append({time, 0.18 * speedAt(time), 2.4, 0.3});
    }
}

bool Drive::hasFix(double time, double distance) const {
    const bool tunnel = m_plan.tunnelTo > m_plan.tunnelFrom;
    return !tunnel || distance < m_plan.tunnelFrom || (distance >= m_plan.tunnelTo && time >= m_fixReturns);
}

Drive::Point Drive::pointAt(double time) const {
    const double index = time / kStep;
    const auto i = std::min(static_cast<qsizetype>(index), m_points.size() - 2);
    const double part = index - static_cast<double>(i);
    const Point& from = m_points[i];
    const Point& to = m_points[i + 1];
    const auto mix = [part](double a, double b) { return a + (b - a) * part; };
    return {mix(from.distance, to.distance), mix(from.roadHeading, to.roadHeading), mix(from.north, to.north),
            mix(from.east, to.east), mix(from.pitch, to.pitch)};
}

// The road's roughness, bumps and the impact, as felt by the sensor and seen by the camera.
void Drive::shake(DriveState& state) const {
    const double rough = std::min(state.speed, 25.0) / 25 * 0.55 + 0.03;
    state.upAcc += rough * smoothNoise(m_plan.seed, state.time * 9);
    state.rightAcc += rough * 0.5 * smoothNoise(m_plan.seed + 1, state.time * 7);
    state.forwardAcc += rough * 0.4 * smoothNoise(m_plan.seed + 2, state.time * 7);
    state.heave += rough * 0.02 * smoothNoise(m_plan.seed + 3, state.time * 3.5);
    for (const Ring& ring : m_bumps) {
        state.upAcc += ring.at(state.time);
        state.heave -= ring.at(state.time) / std::pow(2 * pi * ring.hz, 2);
    }
    if (!m_plan.impactTime)
        return;
    state.rightAcc += Ring{*m_plan.impactTime, 9, 6, 0.25}.at(state.time);
    state.upAcc += Ring{*m_plan.impactTime, 14, 5, 0.3}.at(state.time);
    state.pitch -= Ring{*m_plan.impactTime, 0.05, 2.2, 0.35}.at(state.time);
    state.yaw += Ring{*m_plan.impactTime, 0.03, 3.1, 0.3}.at(state.time);
    state.heave += Ring{*m_plan.impactTime, 0.06, 4.3, 0.25}.at(state.time);
}

DriveState Drive::at(double seconds) const {
    DriveState state;
    state.time = std::clamp(seconds, 0.0, m_plan.seconds);
    const Point point = pointAt(state.time);
    const auto lane = [&](double offset) { return m_plan.lane(state.time + offset); };
    const double laneSpeed = (lane(0.05) - lane(-0.05)) / 0.1;
    state.distance = point.distance;
    state.speed = speedAt(state.time);
    state.lane = lane(0);
    state.yaw = state.speed > 1 ? std::atan(laneSpeed / state.speed) : 0;
    state.heading = point.roadHeading + state.yaw;
    state.pitch = point.pitch;
    state.forwardAcc = (speedAt(state.time + 0.01) - speedAt(state.time - 0.01)) / 0.02;
    state.rightAcc = state.speed * state.speed * m_plan.curvature(point.distance) +
                     (lane(0.05) - 2 * lane(0) + lane(-0.05)) / 0.0025;
    state.upAcc = kGravity;
    shake(state);
    const GeoPosition scale = metresPerDegree(m_plan.origin.latitude);
    const double north = point.north - state.lane * std::sin(point.roadHeading);
    const double east = point.east + state.lane * std::cos(point.roadHeading);
    state.position = {m_plan.origin.latitude + north / scale.latitude,
                      m_plan.origin.longitude + east / scale.longitude};
    state.fix = hasFix(state.time, state.distance);
    return state;
}

} // namespace ql240::demo
