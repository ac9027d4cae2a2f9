#include "demo_card/scene/world.h"

#include <cmath>

namespace ql240 {
namespace {

constexpr double kBehind = -160; // worlds begin there, for the rear view
constexpr double kAhead = 900;

constexpr Rgb kAsphalt = hex(0x4d5054);
constexpr Rgb kTrack = hex(0x484b4f); // where the wheels run
constexpr Rgb kWhite = hex(0xe6e7e4);
constexpr Rgb kYellow = hex(0xe0ac2c);
constexpr Rgb kPavement = hex(0x9a948a);
constexpr Rgb kKerb = hex(0xb9b6ae);
constexpr Rgb kGrass = hex(0x66803f);
constexpr Rgb kSodium{1.0f, 0.72f, 0.42f};

class Dice {
public:
    explicit Dice(std::uint32_t seed) : m_seed(seed) {}
    double operator()(double from, double to) { return from + (to - from) * hashNoise(m_seed, m_next++); }
    int operator()(int count) { return int(hashNoise(m_seed, m_next++) * count); }

private:
    std::uint32_t m_seed;
    std::int64_t m_next = 0;
};

bool inJunction(const World& world, double at, double margin = 0) {
    for (const TimeSpan& junction : world.junctions)
        if (at > junction.from - margin && at < junction.to + margin)
            return true;
    return false;
}

// Asphalt with darker wheel tracks from one edge to the other.
void addCarriageway(World& world, float left, float right, float laneWidth) {
    world.stripes.append({left, right, kAsphalt});
    for (float lane = left; lane + laneWidth <= right + 0.1f; lane += laneWidth)
        for (float wheel : {-0.8f, 0.8f})
            world.stripes.append(
                {lane + laneWidth / 2 + wheel - 0.3f, lane + laneWidth / 2 + wheel + 0.3f, kTrack});
}

void addLaneLines(World& world, float from, float laneWidth, int lanes) {
    for (int i = 1; i < lanes; ++i)
        for (float side : {-1.0f, 1.0f})
            world.lines.append({side * (from + laneWidth * float(i)), 0.14f, kWhite, 10, 4});
}

// Seams and repaired patches: they make the speed visible.
void addWear(World& world, float left, float right, Dice& dice) {
    for (double at = kBehind; at < kAhead; at += dice(9, 17))
        world.marks.append({at, at + 0.12, left, right, kTrack * 0.75f, 0.55f});
    for (double at = kBehind; at < kAhead; at += dice(25, 60)) {
        const float from = float(dice(left, right - 3));
        world.marks.append({at, at + dice(2, 7), from, from + float(dice(1.2, 3)), kTrack * 0.86f, 0.6f});
    }
}

// The shadow of a crown with the sun low on the left, and of its trunk.
void addTreeShadow(World& world, double at, float side, float height) {
    if (world.palette.shadows <= 0)
        return;
    constexpr Rgb dark = hex(0x10141c);
    const float tip = side + height * (side > 0 ? 0.25f : 1.0f) * 1.2f;
    world.marks.append({at - 0.12, at + 0.12, side, tip - 3, dark, world.palette.shadows * 0.8f});
    for (const auto& [shift, size] : {std::pair(-0.7, 1.5), std::pair(0.9, 1.7), std::pair(0.1, 2.3)})
        world.marks.append({at + shift - size * 0.7, at + shift + size * 0.7, tip - 2.6f - float(size),
                            tip - 2.6f + float(size) + float(shift), dark, world.palette.shadows * 0.75f,
                            true});
}

void addLamps(World& world, float side, double every) {
    for (double at = kBehind; at < kAhead; at += every) {
        if (inJunction(world, at, 3) || world.inTunnel(at))
            continue;
        world.lamps.append(at);
        for (float s : {-side, side})
            world.standing.append({Prop::Lamp, at, s, 9.5f});
    }
}

void addCrossing(World& world, double from, double to, float width) {
    for (double edge : {from - 5, to + 1})
        for (float side = -width + 0.4f; side < width - 0.4f; side += 0.95f)
            world.marks.append({edge, edge + 4, side, side + 0.5f, kWhite, 0.92f});
    world.marks.append({from - 7.6, from - 7.1, 0.2f, width, kWhite, 0.95f});
    world.marks.append({to + 7.1, to + 7.6, -width, -0.2f, kWhite, 0.95f});
}

// Houses along both sides of an avenue, with shops on the ground floor.
void addHouses(World& world, float side, Dice& dice, double lowest, double highest) {
    constexpr Cover kinds[] = {Cover::Offices, Cover::Glass, Cover::Brick, Cover::Concrete, Cover::Flats};
    for (float s : {-side, side})
        for (double at = kBehind; at < kAhead;) {
            const double length = dice(16, 38);
            const float set = float(dice(0, 2.5));
            const Cover kind = kinds[dice(5)];
            const float high = float(dice(lowest, highest) * (kind == Cover::Glass ? 1.35 : 1));
            if (!inJunction(world, at, 2) && !inJunction(world, at + length, 2)) {
                const float wall = s > 0 ? s + set : s - set;
                world.walls.append({at, at + length, wall, 4.2f, high, kind, 12});
                world.walls.append({at, at + length, wall, 0, 4.2f, Cover::Shops, 12});
            }
            at += length + (dice(4) == 0 ? dice(3, 7) : 0.0);
        }
}

void addTrees(World& world, float side, double every, Prop kind, Dice& dice, bool shadows) {
    for (float s : {-side, side})
        for (double at = kBehind + dice(0, 4); at < kAhead; at += every * dice(0.85, 1.15)) {
            if (inJunction(world, at, 6) || world.inTunnel(at))
                continue;
            const float high = float(dice(6.2, 8.6));
            world.standing.append({kind, at, s, high});
            if (shadows)
                addTreeShadow(world, at, s, high);
        }
}

float lampPool(const World& world, double at) {
    float pool = 0;
    for (double lamp : world.lamps) {
        const double away = (at - lamp) / 9;
        if (std::abs(away) < 3)
            pool += float(std::exp(-away * away));
    }
    return std::min(pool, 1.0f);
}

} // namespace

Rgb World::lightAt(double at) const {
    Rgb light = palette.light + kSodium * (palette.lampLight * 0.62f * lampPool(*this, at));
    if (!hasTunnel())
        return light;
    // The daylight reaches a few metres in; lamps hang every 8 m.
    const double inside = std::min(at - tunnel.from, tunnel.to - at);
    const float depth = float(std::clamp(inside / 9 + 0.3, 0.0, 1.0));
    const float wave = 0.88f + 0.12f * float(std::cos(at * 2 * 3.14159265 / 8));
    return mix(light, kSodium * (0.78f * wave), depth);
}

Shade World::shadeAt(double at, double distance) const {
    const float reach = inTunnel(at) ? palette.hazeDistance * 4 : palette.hazeDistance;
    return {lightAt(at), palette.haze, float(1 - std::exp(-std::max(0.0, distance) / reach))};
}

World avenueWorld(const Palette& palette, const QList<TimeSpan>& junctions, std::uint32_t seed) {
    World world;
    world.palette = palette;
    world.seed = seed;
    world.junctions = junctions;
    world.leftGround = world.rightGround = kPavement * 0.8f;
    world.board = QStringLiteral("TEHERAN-RO");
    Dice dice(seed);
    constexpr float kerb = 9.8f;
    world.stripes = {{-18, -kerb, kPavement},
                     {kerb, 18, kPavement},
                     {-12, -10.6f, kPavement * 0.88f},
                     {10.6f, 12, kPavement * 0.88f}};
    addCarriageway(world, -9.6f, 9.6f, 3.2f);
    world.stripes += {{-kerb - 0.15f, -9.6f, kKerb}, {9.6f, kerb + 0.15f, kKerb}};
    world.lines = {
        {-0.2f, 0.14f, kYellow}, {0.2f, 0.14f, kYellow}, {-9.35f, 0.12f, kWhite}, {9.35f, 0.12f, kWhite}};
    addLaneLines(world, 0, 3.2f, 3);
    addWear(world, -9.4f, 9.4f, dice);
    for (const TimeSpan& junction : junctions) {
        addCrossing(world, junction.from, junction.to, 9.6f);
        for (float lane : {1.6f, 4.8f, 8.0f})
            for (double before : {16.0, 42.0})
                world.arrows.append({junction.from - before, lane});
    }
    addTrees(world, 11.2f, 9.5, Prop::Ginkgo, dice, true);
    addLamps(world, 10.4f, 34);
    addHouses(world, 15, dice, 16, 62);
    for (double at = 70; at < kAhead; at += 210)
        if (!inJunction(world, at, 10))
            world.standing.append({Prop::Board, at, 7.2f, 7.6f});
    for (double at = 30; at < kAhead; at += 170)
        world.standing.append({Prop::SpeedSign, at, 10.2f, 3.2f});
    return world;
}

World tunnelWorld(const Palette& palette, double from, double to, std::uint32_t seed) {
    World world;
    world.palette = palette;
    world.seed = seed;
    world.leftGround = world.rightGround = kGrass;
    world.board = QStringLiteral("SAJIK TUNNEL");
    world.tunnel = {from, to, -0.45f, 7.6f, 5.3f};
    Dice dice(seed);
    addCarriageway(world, -6.8f, 6.8f, 3.4f);
    world.stripes += {{-8.3f, -6.8f, kKerb * 0.8f}, {6.8f, 8.3f, kKerb * 0.8f}};
    world.lines = {
        {-0.2f, 0.14f, kYellow}, {0.2f, 0.14f, kYellow}, {-6.6f, 0.14f, kWhite}, {6.6f, 0.14f, kWhite}};
    addLaneLines(world, 0, 3.4f, 2);
    addWear(world, -6.7f, 6.7f, dice);
    for (float side : {-8.4f, 8.4f})
        for (const auto& [begin, end] : {std::pair(kBehind, from), std::pair(to, kAhead)})
            world.walls.append({begin, end, side, 0, 3.4f, Cover::Stone});
    for (float side : {world.tunnel.left, world.tunnel.right})
        world.walls.append({from, to, side, 0, world.tunnel.height, Cover::Tiles});
    for (float row : {9.6f, 14.0f, 20.0f})
        addTrees(world, row, 5 + row / 4,
                 row < 10  ? Prop::Maple
                 : dice(2) ? Prop::Pine
                           : Prop::Ginkgo,
                 dice, false);
    for (Standing& tree : world.standing) {
        tree.base = std::abs(tree.side) < 12 ? 2.0f : 3.2f;
        tree.height *= 1.1f;
    }
    for (double at = kBehind; at < kAhead; at += 10)
        if (!world.inTunnel(at))
            addTreeShadow(world, at + dice(-3, 3), -8.4f, float(dice(5, 11)));
    addLamps(world, 7.4f, 38);
    world.standing.append({Prop::Hill, from + 1, 4, 26, 7.5f});
    world.standing.append({Prop::Hill, to - 1, 4, 26, 7.5f});
    world.standing.append({Prop::Board, from - 55, 6.0f, 7.4f});
    world.standing.append({Prop::SpeedSign, from - 90, 7.6f, 3.2f});
    return world;
}

World riverWorld(const Palette& palette, std::uint32_t seed) {
    World world;
    world.palette = palette;
    world.seed = seed;
    world.waterLeft = true;
    world.leftGround = hex(0x6f8496);
    world.rightGround = kGrass * 0.8f;
    world.board = QStringLiteral("HAN RIVER");
    Dice dice(seed);
    addCarriageway(world, -10.5f, 10.5f, 3.5f);
    world.stripes +=
        {{-12.5f, -10.5f, kPavement * 0.7f}, {10.5f, 13.5f, kGrass}, {-0.6f, 0.6f, kKerb * 0.6f}};
    world.lines = {
        {-0.75f, 0.15f, kYellow}, {0.75f, 0.15f, kYellow}, {-10.2f, 0.15f, kWhite}, {10.2f, 0.15f, kWhite}};
    addLaneLines(world, 0, 3.5f, 3);
    addWear(world, -10.3f, 10.3f, dice);
    world.walls = {{kBehind, kAhead, -12.4f, 0, 1.1f, Cover::Railing},
                   {kBehind, kAhead, 0, 0, 0.85f, Cover::GuardRail},
                   {kBehind, kAhead, 13.6f, 0, 4.6f, Cover::Barrier}};
    for (double at = kBehind; at < kAhead; at += dice(48, 64)) {
        const float high = float(dice(38, 52));
        world.walls.append({at, at + 32, 34 + float(dice(0, 14)), 0, high, Cover::Flats, 11});
    }
    addTrees(world, 12.2f, 14, Prop::Maple, dice, false);
    world.standing.removeIf([](const Standing& tree) { return tree.side < 0; });
    addLamps(world, 11.2f, 36);
    for (double at = kBehind; at < kAhead; at += 12)
        world.standing.append({Prop::Post, at, -11.9f, 1.0f});
    for (double at = 150; at < kAhead; at += 260)
        world.standing.append({Prop::Board, at, 8.2f, 8.2f});
    return world;
}

World streetWorld(const Palette& palette, std::uint32_t seed) {
    World world;
    world.palette = palette;
    world.seed = seed;
    world.leftGround = world.rightGround = kPavement * 0.6f;
    Dice dice(seed);
    addCarriageway(world, -6.6f, 6.6f, 3.3f);
    world.stripes +=
        {{-9.5f, -6.6f, kPavement}, {6.6f, 9.5f, kPavement}, {-6.8f, -6.6f, kKerb}, {6.6f, 6.8f, kKerb}};
    world.lines = {{0, 0.14f, kYellow, 6, 3}, {-4.2f, 0.1f, kWhite, 6, 5.2f}, {4.2f, 0.1f, kWhite, 6, 5.2f}};
    addWear(world, -6.4f, 6.4f, dice);
    addHouses(world, 9.6f, dice, 8, 15);
    world.walls.append({13, 23, 9.4f, 0, 3.9f, Cover::CornerShop, 12});
    addTrees(world, 7.9f, 16, Prop::Maple, dice, false);
    addLamps(world, 7.2f, 26);
    for (float stripe = -6.2f; stripe < 6.2f; stripe += 0.95f)
        world.marks.append({9, 12.5, stripe, stripe + 0.5f, kWhite, 0.9f});
    return world;
}

} // namespace ql240
