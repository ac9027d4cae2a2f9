// Distances on a sphere with the earth's mean radius (IUGG).
#pragma once

#include <algorithm>
#include <cmath>

namespace ql240 {

// The haversine formula, which is numerically stable at small distances. Angles in radians.
inline double metresOnSphere(double latitudeA, double latitudeB, double longitudeDifference) {
    constexpr double kEarthRadiusM = 6371008.8;
    const double sinLatitude = std::sin((latitudeB - latitudeA) / 2);
    const double sinLongitude = std::sin(longitudeDifference / 2);
    const double h =
        sinLatitude * sinLatitude + std::cos(latitudeA) * std::cos(latitudeB) * sinLongitude * sinLongitude;
    return 2 * kEarthRadiusM * std::asin(std::min(1.0, std::sqrt(h)));
}

} // namespace ql240
