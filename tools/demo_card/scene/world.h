#pragma once

// What stands and moves along a drive's road. Places are given as the distance along the road (m, from the
// drive's start) and the side (m, right of the road's middle).

#include <QtCore/QList>
#include <QtCore/QString>

#include "demo_card/curve.h"
#include "demo_card/scene/palette.h"
#include "demo_card/sound.h"

namespace ql240 {

enum class Prop { Ginkgo, Maple, Pine, Bush, Lamp, Post, SpeedSign, Board, Hill };
enum class Cover {
    Offices,
    Glass,
    Brick,
    Flats,
    Concrete,
    Shops,
    CornerShop,
    Stone,
    Tiles,
    Barrier,
    Railing,
    GuardRail
};
enum class CarLook { SilverSedan, BlackSedan, WhiteSuv, RedHatch, OrangeTaxi, BlueBus, Truck };

struct GroundStripe { // without end along the road
    float left, right;
    Rgb colour;
};

struct LaneLine {
    float middle, width;
    Rgb colour;
    float period = 0; // 0: unbroken
    float on = 0;
};

struct GroundMark { // a patch on the road: stop lines, crossings, joints, shadows
    double from, to;
    float left, right;
    Rgb colour;
    float opacity = 1;
    bool round = false; // fills the ellipse inside
};

struct GroundArrow {
    double at;
    float middle;
};

struct Standing {
    Prop prop;
    double at;
    float side;
    float height;
    float base = 0; // above the ground
};

struct Wall { // along the road; its near end is closed by a face `depth` wide, away from the road
    double from, to;
    float side;
    float bottom, top;
    Cover cover;
    float depth = 0;
};

struct Signal { // traffic lights over the road
    double at;
    float side;
    QList<TimeSpan> red, amber; // green in between
};

struct Vehicle {
    CarLook look;
    Curve place; // over time: distance along the road, or metres ahead of the camera car if `relative`
    bool relative = true;
    Curve side = 0; // over time
    bool oncoming = false;
    QList<TimeSpan> braking;
};

struct Walker {
    Curve place;
    Curve side; // over time
    Rgb coat;
};

struct Tunnel {
    double from = 0, to = 0;
    float left = 0, right = 0; // its walls
    float height = 5.2f;
};

struct World {
    Palette palette;
    Rgb leftGround, rightGround; // beyond the stripes
    bool waterLeft = false;
    bool headlights = true; // the camera car's own, where lamps burn
    QList<GroundStripe> stripes;
    QList<LaneLine> lines;
    QList<GroundMark> marks;
    QList<GroundArrow> arrows;
    QList<TimeSpan> junctions; // distances: no lines, asphalt on both sides
    QList<Standing> standing;
    QList<Wall> walls;
    QList<Signal> signalLights;
    QList<Vehicle> vehicles;
    QList<Walker> walkers;
    QList<double> lamps; // distances of street lamps, for the light on the road
    Tunnel tunnel;
    QString board; // text on the direction boards
    std::uint32_t seed = 1;

    bool hasTunnel() const { return tunnel.to > tunnel.from; }
    bool inTunnel(double at) const { return hasTunnel() && at >= tunnel.from && at < tunnel.to; }
    // The light that falls on things there, from the sky or from lamps.
    Rgb lightAt(double at) const;
    Shade shadeAt(double at, double distance) const;
};

// Roads to drive on, each for about 500 m, before traffic is added.
World avenueWorld(const Palette& palette, const QList<TimeSpan>& junctions, std::uint32_t seed);
World tunnelWorld(const Palette& palette, double from, double to, std::uint32_t seed);
World riverWorld(const Palette& palette, std::uint32_t seed);
World streetWorld(const Palette& palette, std::uint32_t seed);

} // namespace ql240
