#pragma once

// What is too far to move with the car: sky, clouds, sun, hills and skyline, painted once as a wide picture
// that shifts with the heading.

#include "demo_card/scene/canvas.h"
#include "demo_card/scene/world.h"

namespace ql240 {

class Backdrop {
public:
    // headings: the range that the car turns through, in radians.
    Backdrop(const World& world, QSize size, float focal, double lowestHeading, double highestHeading,
             bool backwards);

    void paint(Canvas& canvas, double heading, float horizon) const;
    float sunColumn(double heading) const; // may lie outside the picture

private:
    void paintSky(const World& world, bool withSun);
    void paintHills(const World& world);
    void paintSkyline(const World& world);
    int left(double heading) const;

    QSize m_size;
    float m_focal;
    double m_lowest;
    QImage m_picture;
    int m_horizon; // row in the picture
    float m_sun;   // column in the picture
    std::uint32_t m_seed;
};

} // namespace ql240
