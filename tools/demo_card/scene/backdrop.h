// What is too far away to move with the car: sky, clouds, sun, hills and skyline, painted once as a wide
// picture that is shifted by the heading.
#pragma once

#include "demo_card/scene/art.h"

namespace ql240::demo {

class Backdrop {
public:
    // headings: the range in which the car turns, in radians.
    Backdrop(const World& world, Art& art, QSize size, float focal, double lowestHeading,
             double highestHeading, bool backwards);

    void paint(Canvas& canvas, double heading, float horizon) const;
    float sunColumn(double heading) const; // may lie outside the picture

private:
    void paintSky(const Palette& palette, bool withSun);
    void paintHorizon(const Palette& palette, Art& art);
    int left(double heading) const;

    float m_focal;
    double m_lowest;
    std::uint32_t m_seed;
    QImage m_picture;
    int m_horizon; // row in the picture
    float m_sun;   // column in the picture
    float m_unit;  // a camera picture's height in pixels
};

} // namespace ql240::demo
