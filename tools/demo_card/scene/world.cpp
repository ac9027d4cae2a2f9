#include "demo_card/scene/world.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ql240::demo {
namespace {

constexpr double kBehind = -160; // start of every world, for the rear view
constexpr double kAhead = 900;

constexpr Rgb kTrack = hex(0x484b4f); // wheel tracks
constexpr Rgb kWhite = hex(0xe6e7e4);
constexpr Rgb kYellow = hex(0xe0ac2c);
constexpr Rgb kPavement = hex(0x9a948a);
constexpr Rgb kKerb = hex(0xb9b6ae);
constexpr Rgb kGrass = hex(0x66803f);
constexpr Rgb kSodium{1.0f, 0.72f, 0.42f};

struct Dice {
    std::uint32_t seed;
    std::int64_t next = 0;
    double operator()(double from, double to) { return from + (to - from) * hashNoise(seed, next++); }
};

// Seams and repaired patches, which make the speed visible.
void addWear(World& world, float half, Dice& dice) {
    for (double at = kBehind; at < kAhead; at += dice(9, 17))
        world.marks.append({at, at + 0.12, -half, half, kTrack * 0.75f, 0.55f});
    for (double at = kBehind; at < kAhead; at += dice(25, 60)) {
        const float from =
            static_cast<float>(dice(-static_cast<double>(half), static_cast<double>(half) - 3));
        world.marks.append(
            {at, at + dice(2, 7), from, from + static_cast<float>(dice(1.2, 3)), kTrack * 0.86f, 0.6f});
    }
}

void addLine(World& world, float middle, Rgb colour, Stripe::Kind kind = Stripe::Kind::Line) {
    world.stripes.append({middle - 0.07f, middle + 0.07f, colour, kind});
}

// Asphalt with darker wheel tracks and lines, `lanes` on each side of the middle.
World road(const Palette& palette, std::uint32_t seed, float lane, int lanes, Rgb ground, Dice& dice) {
    World world;
    world.palette = palette;
    world.seed = seed;
    world.leftGround = world.rightGround = ground;
    const float half = lane * static_cast<float>(lanes);
    world.stripes = {{-half - 0.2f, half + 0.2f, kKerb}, {-half, half, kAsphalt}};
    for (float s : {-1.0f, 1.0f}) {
        addLine(world, s * 0.2f, kYellow);
        addLine(world, s * (half - 0.22f), kWhite);
        for (int i = 0; i < lanes; ++i) {
            const float middle = s * lane * (static_cast<float>(i) + 0.5f);
            for (float wheel : {middle - 0.8f, middle + 0.8f})
                world.stripes.append({wheel - 0.3f, wheel + 0.3f, kTrack});
            if (i > 0)
                addLine(world, s * lane * static_cast<float>(i), kWhite, Stripe::Kind::Dashes);
        }
    }
    addWear(world, half - 0.2f, dice);
    return world;
}

// The shadows of a tree's crown and trunk, with the sun low on the left.
void addTreeShadow(World& world, double at, float side, float height) {
    constexpr Rgb dark = hex(0x10141c);
    const float tip = side + height * (side > 0 ? 0.3f : 1.2f) - 2.6f;
    const float opacity = world.palette.shadows * 0.75f;
    world.marks.append({at - 0.12, at + 0.12, side, tip, dark, opacity});
    for (const auto& [shift, size] : {std::pair(-0.7, 1.5), std::pair(0.9, 1.7), std::pair(0.1, 2.3)})
        world.marks.append({at + shift - size * 0.7, at + shift + size * 0.7, tip - static_cast<float>(size),
                            tip + static_cast<float>(size + shift), dark, opacity,
                            GroundMark::Shape::Ellipse});
}

void addTrees(World& world, float side, double every, const char* kind, Dice& dice, float base = 0) {
    for (float s : {-side, side})
        for (double at = kBehind + dice(0, 4); at < kAhead; at += every * dice(0.85, 1.15)) {
            if (world.inJunction(at, 6) || world.inTunnel(at) || (world.waterLeft && s < 0))
                continue;
            const float high = static_cast<float>(dice(6.2, 8.6));
            world.standing.append({QLatin1String(kind), at, s, high, base});
            if (world.palette.shadows > 0 && side < 12)
                addTreeShadow(world, at, s, high);
        }
}

void addLamps(World& world, float side, double every) {
    for (double at = kBehind; at < kAhead; at += every) {
        if (world.inJunction(at, 3) || world.inTunnel(at))
            continue;
        world.lamps.append(at);
        for (float s : {-side, side})
            world.standing.append({QStringLiteral("lamp"), at, s, 9.5f});
    }
}

void addSigns(World& world, const char* drawing, double first, double every, float side, float height) {
    for (double at = first; at < kAhead; at += every)
        if (!world.inJunction(at, 10))
            world.standing.append({QLatin1String(drawing), at, side, height});
}

void addZebra(World& world, double at, float half) {
    for (float side = 0.4f - half; side < half - 0.4f; side += 0.95f)
        world.marks.append({at, at + 4, side, side + 0.5f, kWhite, 0.92f});
}

// Crossings and stop lines, with arrows before them.
void addJunction(World& world, const TimeSpan& junction, float lane, int lanes) {
    const float half = lane * static_cast<float>(lanes);
    addZebra(world, junction.from - 5, half);
    addZebra(world, junction.to + 1, half);
    world.marks += {{junction.from - 7.6, junction.from - 7.1, 0.2f, half, kWhite, 0.95f},
                    {junction.to + 7.1, junction.to + 7.6, -half, -0.2f, kWhite, 0.95f}};
    for (int i = 0; i < lanes; ++i)
        for (double at : {junction.from - 16, junction.from - 42}) {
            const float middle = lane * (static_cast<float>(i) + 0.5f);
            world.marks +=
                {{at, at + 3, middle - 0.09f, middle + 0.09f, kWhite, 0.9f},
                 {at + 3, at + 5, middle - 0.42f, middle + 0.42f, kWhite, 0.9f, GroundMark::Shape::Tip}};
        }
}

// Houses along both sides, with shops on the ground floor.
void addHouses(World& world, float side, Dice& dice, double lowest, double highest) {
    constexpr const char* kinds[] = {"offices", "glass", "brick", "concrete", "flats"};
    for (float s : {-1.0f, 1.0f})
        for (double at = kBehind; at < kAhead;) {
            const double length = dice(16, 38);
            const float wall = s * (side + static_cast<float>(dice(0, 2.5)));
            const QString kind = QLatin1String(kinds[static_cast<int>(dice(0, 5))]);
            const float high = static_cast<float>(dice(lowest, highest));
            if (!world.inJunction(at, 2) && !world.inJunction(at + length, 2))
                world.walls += {{at, at + length, wall, 4.2f, high, kind, 12 * s},
                                {at, at + length, wall, 0, 4.2f, QStringLiteral("shops"), 12 * s}};
            at += length + (dice(0, 4) < 1 ? dice(3, 7) : 0.0);
        }
}

// The tunnel's face between two distances, with the portal of the other tube beside ours.
void addPortal(World& world, double from, double to) {
    const Tunnel& tunnel = world.tunnel;
    const QString stone = QStringLiteral("stone");
    const float wide = 2 * tunnel.right;
    world.walls += {{from, to, tunnel.left, 0, tunnel.height, QStringLiteral("dark"), -tunnel.right},
                    {from, to, tunnel.right, 0, 8.6f, stone, 40},
                    {from, to, -tunnel.right, 0, 8.6f, stone, -40},
                    {from, to, -tunnel.right, tunnel.height, 8.6f, stone, wide}};
    world.standing.append({QStringLiteral("hill"), (from + to) / 2, 4, 26, 7.5f});
}

} // namespace

bool World::inJunction(double at, double margin) const {
    return std::any_of(junctions.begin(), junctions.end(), [&](const TimeSpan& junction) {
        return at > junction.from - margin && at < junction.to + margin;
    });
}

Rgb World::lightAt(double at) const {
    double pool = 0;
    for (double lamp : lamps)
        if (std::abs(at - lamp) < 27)
            pool += std::exp(-(at - lamp) * (at - lamp) / 81);
    const Rgb light =
        palette.light + kSodium * (palette.lampLight * 0.62f * std::min(static_cast<float>(pool), 1.0f));
    // Daylight reaches a few metres into a tunnel; its lamps are 8 m apart.
    const double inside = std::min(at - tunnel.from, tunnel.to - at);
    const float depth = tunnel.to > 0 ? static_cast<float>(std::clamp(inside / 9 + 0.3, 0.0, 1.0)) : 0;
    const float wave = 0.88f + 0.12f * static_cast<float>(std::cos(at * std::numbers::pi / 4));
    return mix(light, kSodium * (0.78f * wave), depth);
}

Shade World::shadeAt(double at, double distance) const {
    const float reach = inTunnel(at) ? palette.hazeDistance * 4 : palette.hazeDistance;
    return {lightAt(at), palette.haze,
            static_cast<float>(1 - std::exp(-std::max(0.0, distance) / static_cast<double>(reach)))};
}

World avenueWorld(const Palette& palette, const QList<TimeSpan>& junctions, std::uint32_t seed) {
    Dice dice{seed};
    World world = road(palette, seed, 3.2f, 3, kPavement, dice);
    world.junctions = junctions;
    for (const TimeSpan& junction : junctions)
        addJunction(world, junction, 3.2f, 3);
    addTrees(world, 11.2f, 9.5, "ginkgo", dice);
    addLamps(world, 10.4f, 34);
    addHouses(world, 15, dice, 16, 62);
    addSigns(world, "sign-avenue", 70, 210, 7.2f, 7.6f);
    addSigns(world, "sign-60", 30, 170, 10.2f, 3.2f);
    return world;
}

World tunnelWorld(const Palette& palette, double from, double to, std::uint32_t seed) {
    Dice dice{seed};
    World world = road(palette, seed, 3.4f, 2, kKerb * 0.8f, dice);
    world.tunnel = {from, to, -0.45f, 7.6f};
    for (float side : {-8.4f, 8.4f})
        for (const auto& [begin, end] : {std::pair(kBehind, from), std::pair(to, kAhead)})
            world.walls.append({begin, end, side, 0, 3.4f, QStringLiteral("stone")});
    addPortal(world, from, from + 0.2);
    addPortal(world, to - 0.2, to);
    for (float side : {world.tunnel.left, world.tunnel.right})
        world.walls.append({from, to, side, 0, world.tunnel.height, QStringLiteral("tiles")});
    addTrees(world, 9.6f, 7.4, "maple", dice, 2);
    addTrees(world, 14, 8.5, "pine", dice, 3.2f);
    addTrees(world, 20, 10, "ginkgo", dice, 3.2f);
    addLamps(world, 7.4f, 38);
    addSigns(world, "sign-tunnel", from - 55, kAhead, 6, 7.4f);
    addSigns(world, "sign-60", from - 90, kAhead, 7.6f, 3.2f);
    return world;
}

World riverWorld(const Palette& palette, std::uint32_t seed) {
    Dice dice{seed};
    World world = road(palette, seed, 3.5f, 3, kGrass * 0.8f, dice);
    world.leftGround = kPavement * 0.7f;
    world.waterLeft = true;
    world.walls = {{kBehind, kAhead, -12.4f, 0, 1.1f, QStringLiteral("railing")},
                   {kBehind, kAhead, 0, 0, 0.85f, QStringLiteral("guard-rail")},
                   {kBehind, kAhead, 13.6f, 0, 4.6f, QStringLiteral("barrier")}};
    for (double at = kBehind; at < kAhead; at += dice(48, 64))
        world.walls.append({at, at + 32, 34 + static_cast<float>(dice(0, 14)), 0,
                            static_cast<float>(dice(38, 52)), QStringLiteral("flats"), 11});
    addTrees(world, 12.2f, 14, "maple", dice);
    addLamps(world, 11.2f, 36);
    addSigns(world, "post", kBehind, 12, -11.9f, 1);
    addSigns(world, "sign-river", 150, 260, 8.2f, 8.2f);
    return world;
}

World streetWorld(const Palette& palette, std::uint32_t seed) {
    Dice dice{seed};
    World world = road(palette, seed, 3.3f, 2, kPavement * 0.8f, dice);
    addHouses(world, 9.6f, dice, 8, 15);
    world.walls.append({13, 23, 9.4f, 0, 3.9f, QStringLiteral("corner-shop"), 12});
    addTrees(world, 7.9f, 16, "maple", dice);
    addLamps(world, 7.2f, 26);
    addZebra(world, 8.5, 6.6f);
    return world;
}

} // namespace ql240::demo
