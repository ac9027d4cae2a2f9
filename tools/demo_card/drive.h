// One drive of the demo card: the car's motion and position over time. Picture, sound and sensor data of a
// clip are all computed from the same Drive, so that they agree. Metres, seconds, radians; right and forward
// are positive.
#pragma once

#include <QDateTime>
#include <QList>
#include <optional>

#include "demo_card/curve.h"

namespace ql240::demo {

struct GeoPosition {
    double latitude = 0; // degrees, north positive
    double longitude = 0;
};

struct TimeSpan {
    double from = 0; // s
    double to = 0;
};

struct DrivePlan {
    QDateTime start;
    double seconds = 20;
    GeoPosition origin;
    double bearingDeg = 0; // of the road at the origin, clockwise from north
    double altitude = 30;
    Curve speedKmh;        // over time
    Curve curvature;       // of the road over the distance driven, 1/m, right bends positive
    Curve lane = 1.6;      // over time: the car's offset to the right of the road's middle
    QList<double> bumps;   // distances of bumps in the road
    double tunnelFrom = 0; // distances; no satellites between them
    double tunnelTo = 0;
    std::optional<double> impactTime;
    std::uint32_t seed = 1;
};

struct DriveState {
    double time = 0;
    double distance = 0;
    double speed = 0;
    double forwardAcc = 0; // as measured by an accelerometer in the car; at rest (0, 0, 9.81)
    double rightAcc = 0;
    double upAcc = 0;
    double heading = 0; // of the car, clockwise from north
    double lane = 0;
    double yaw = 0;   // of the car relative to the road
    double pitch = 0; // of the body, nose up
    double heave = 0; // of the body
    GeoPosition position;
    bool fix = false;
};

class Drive {
public:
    explicit Drive(DrivePlan plan);

    const DrivePlan& plan() const { return m_plan; }
    DriveState at(double seconds) const; // clamped to the drive

private:
    struct Ring {
        double start;
        double amplitude; // m/s²
        double hz;
        double decay; // s
        double at(double time) const;
    };
    struct Point {
        double distance;
        double roadHeading;
        double north; // of the road's middle, from the origin
        double east;
        double pitch;
    };

    void integrate();
    void findBumps();
    bool hasFix(double time, double distance) const;
    double speedAt(double time) const { return m_plan.speedKmh(time) / 3.6; }
    Point pointAt(double time) const;
    void shake(DriveState& state) const;

    DrivePlan m_plan;
    QList<Point> m_points; // every kStep
    QList<Ring> m_bumps;
    double m_fixReturns = 0; // when the satellites are received again
};

} // namespace ql240::demo
