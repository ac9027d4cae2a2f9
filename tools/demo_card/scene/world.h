// What stands and moves along a drive's road. Positions are given as the distance along the road (m, from the
// drive's start) and the side (m, right of the road's middle). Drawings are named as for Art.
#pragma once

#include <QList>
#include <QString>

#include "demo_card/drive.h"
#include "demo_card/scene/rgb.h"

namespace ql240::demo {

// How the time of day colours a scene.
struct Palette {
    Rgb skyTop, skyMiddle, skyLow; // from the zenith to the horizon
    Rgb sun;                       // its glow in the sky
    float sunHeight;               // above the horizon, in picture heights; below 0 it has set
    Rgb cloud;
    float cloudiness; // 0 … 1
    Rgb ridge;        // the nearest hills; farther ones fade to the low sky
    Rgb haze;
    float hazeDistance; // metres at which two thirds are haze
    Rgb light;          // on everything outdoors
    float lampLight;    // how brightly street lamps, windows and headlights burn: 0
                        // … 1
    float shadows;      // how dark the trees' shadows are: 0 … 1
};

enum class CarLook { SilverSedan, BlackSedan, WhiteSuv, RedHatch, OrangeTaxi, BlueBus, Truck };

inline constexpr Rgb kAsphalt = hex(0x4d5054);

struct Stripe { // infinite along the road; lines are interrupted at junctions
    enum class Kind { Ground, Line, Dashes };
    float left, right;
    Rgb colour;
    Kind kind = Kind::Ground;
};

struct GroundMark { // a patch on the road: stop lines, crossings, arrows,
                    // joints, shadows
    enum class Shape { Box, Ellipse, Tip };
    double from, to;
    float left, right;
    Rgb colour;
    float opacity = 1;
    Shape shape = Shape::Box;
};

struct Standing { // or walking
    QString drawing;
    Curve at;   // over time
    Curve side; // over time
    float height;
    float base = 0; // above the ground
    Rgb coat{};
};

struct Wall { // along the road; its near end is closed by a face to side +
              // depth
    double from, to;
    float side;
    float bottom, top;
    QString cover;
    float depth = 0;
};

struct Signal { // traffic lights over the road
    double at;
    QList<TimeSpan> red, amber; // green in between
};

struct Vehicle {
    CarLook look;
    Curve place; // over time: distance along the road, or metres ahead of the
                 // camera car if `relative`
    bool relative = true;
    Curve side = 0; // over time
    bool oncoming = false;
    QList<TimeSpan> braking;
};

struct Tunnel {
    double from = 0, to = 0;
    float left = 0, right = 0; // its walls
    float height = 5.3f;
};

struct World {
    Palette palette;
    std::uint32_t seed = 1;
    Rgb leftGround, rightGround; // beyond the stripes
    bool waterLeft = false;
    bool headlights = true; // the camera car's own, where lamps burn
    QList<Stripe> stripes;
    QList<GroundMark> marks;
    QList<TimeSpan> junctions; // distances: no lines, asphalt on both sides
    QList<Standing> standing;
    QList<Wall> walls;
    QList<Signal> signalLights;
    QList<Vehicle> vehicles;
    QList<double> lamps; // distances of street lamps, for the light on the road
    Tunnel tunnel;

    bool isNight() const { return palette.lampLight > 0.5f; }
    bool inJunction(double at, double margin = 0) const;
    bool inTunnel(double at) const { return at >= tunnel.from && at < tunnel.to; }
    // The light on things at that distance, from the sky or from lamps.
    Rgb lightAt(double at) const;
    Shade shadeAt(double at, double distance) const;
};

// Roads, each for drives of about 700 m, without traffic.
World avenueWorld(const Palette& palette, const QList<TimeSpan>& junctions, std::uint32_t seed);
World tunnelWorld(const Palette& palette, double from, double to, std::uint32_t seed);
World riverWorld(const Palette& palette, std::uint32_t seed);
World streetWorld(const Palette& palette, std::uint32_t seed);

} // namespace ql240::demo
