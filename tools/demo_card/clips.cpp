#include "demo_card/clips.h"

#include <QTimeZone>
#include <array>

namespace ql240::demo {
namespace {

using Shape = Curve::Shape;

using Colours = std::array<unsigned, 7>; // sky (3), sun, cloud, ridge, haze
constexpr Palette palette(const Colours& c, float sunHeight, float cloudiness, float hazeDistance, Rgb light,
                          float lampLight, float shadows) {
    return {hex(c[0]), hex(c[1]), hex(c[2]),    hex(c[3]), sunHeight, hex(c[4]), cloudiness,
            hex(c[5]), hex(c[6]), hazeDistance, light,     lampLight, shadows};
}

constexpr Palette kDay = palette({0x2f6fb8, 0x7fb2de, 0xdcebf3, 0xfff6e0, 0xffffff, 0x5d7f86, 0xc9dbe6},
                                 0.36f, 0.45f, 420, {1, 1, 1}, 0, 0.34f);
constexpr Palette kGolden = // an hour before sunset
    palette({0x45699f, 0xe3b083, 0xffdf9e, 0xfff0b8, 0xffc992, 0x8a6a5c, 0xf3c68c}, 0.1f, 0.5f, 300,
            {1, 0.85f, 0.68f}, 0.12f, 0.42f);
constexpr Palette kDusk = palette({0x1e2a5a, 0x76528a, 0xf2925e, 0xffb070, 0xe0708a, 0x35305a, 0x9c6a86},
                                  0.015f, 0.55f, 420, {0.5f, 0.44f, 0.56f}, 0.75f, 0);
constexpr Palette kNight = palette({0x05070f, 0x0c1224, 0x2a2b40, 0, 0x2c2c3c, 0x0b0e18, 0x1a1d2c}, -1, 0.3f,
                                   260, {0.2f, 0.21f, 0.27f}, 1, 0);

constexpr GeoPosition kSajikRo{37.57225, 126.95985};
constexpr GeoPosition kGangbyeon{37.52250, 126.99760};
constexpr double kTeheranBearing = 69;
constexpr int kMp4SoundRate = 32000;
constexpr int kAviSoundRate = 16000;

QDateTime seoulTime(int day, int hour, int minute, int second) {
    return QDateTime(QDate(2013, 4, day), QTime(hour, minute, second), QTimeZone(9 * 3600));
}

// Sets the name from its kind and its start.
ClipPlan named(const char* prefix, ClipPlan clip) {
    const bool avi = clip.format.container == ClipFormat::Container::Avi;
    clip.name = QLatin1String(prefix) + clip.start().toString(QStringLiteral("yyyy_MM_dd_hh_mm_ss")) +
                QLatin1String(avi ? ".avi" : ".mp4");
    return clip;
}

ClipFormat mp4(int videos) {
    ClipFormat format{ClipFormat::Container::Mp4, {{{1280, 720}, 3000}}, 30, kMp4SoundRate};
    if (videos > 1)
        format.videos.append({{640, 360}, 1000});
    return format;
}

ClipFormat avi(bool sound) {
    return {ClipFormat::Container::Avi, {{{640, 480}, 0}}, 15, sound ? kAviSoundRate : 0};
}

Curve moves(QList<CurveKey> keys) {
    return {Shape::Monotone, std::move(keys)};
}

Curve eases(QList<CurveKey> keys) {
    return {Shape::Ease, std::move(keys)};
}

// An oncoming car at constant speed.
Vehicle oncoming(CarLook look, float side, double startPlace, double kmh) {
    constexpr double seconds = 60;
    return {.look = look,
            .place = moves({{0, startPlace}, {seconds, startPlace - kmh / 3.6 * seconds}}),
            .relative = false,
            .side = static_cast<double>(side),
            .oncoming = true,
            .braking = {}};
}

Vehicle along(CarLook look, Curve side, QList<CurveKey> ahead, QList<TimeSpan> braking = {}) {
    return {.look = look,
            .place = moves(std::move(ahead)),
            .relative = true,
            .side = std::move(side),
            .braking = std::move(braking)};
}

Standing walker(Curve place, Curve side, Rgb coat) {
    return {QStringLiteral("walker#stand"), std::move(place), std::move(side), 1.74f, 0, coat};
}

void addOncomingTraffic(World& world, float first, float laneWidth, double kmh) {
    constexpr CarLook looks[] = {CarLook::WhiteSuv,    CarLook::SilverSedan, CarLook::BlueBus,
                                 CarLook::BlackSedan,  CarLook::OrangeTaxi,  CarLook::RedHatch,
                                 CarLook::SilverSedan, CarLook::Truck};
    double place = 40;
    for (int i = 0; i < 34; ++i) {
        const int lane = i * 5 % 3 % 2;
        world.vehicles.append(oncoming(looks[i % 8], -(first + laneWidth * static_cast<float>(lane)), place,
                                       kmh * (lane ? 1 : 1.12)));
        place += 22 + 30 * hashNoise(world.seed, i);
    }
}

// A minute on the avenue: from a red light up to town speed; the car ahead stops hard, braking isn't enough,
// and both cars clear the lane. The camera splits it into clips of 20 s and keeps the one with the impact.
QList<ClipPlan> crashInTheAfternoon() {
    ClipPlan clip;
    clip.drive.start = seoulTime(5, 17, 52, 20);
    clip.drive.seconds = 60;
    clip.drive.origin = {37.50149, 127.03919};
    clip.drive.bearingDeg = kTeheranBearing;
    clip.drive.speedKmh = moves({{0, 0},
                                 {3, 0},
                                 {5.5, 19},
                                 {8.5, 41},
                                 {12.5, 54},
                                 {16, 49},
                                 {20, 48},
                                 {24, 56},
                                 {28, 57},
                                 {28.9, 55},
                                 {30.1, 26},
                                 {30.3, 6},
                                 {30.7, 3},
                                 {31.4, 0},
                                 {47, 0},
                                 {50, 13},
                                 {54, 13},
                                 {57, 0}});
    clip.drive.lane = eases({{47.5, 4.8}, {51.5, 7.9}});
    clip.drive.bumps = {24, 88, 141, 242};
    clip.drive.impactTime = 30.1;
    clip.drive.seed = 14;
    clip.world = avenueWorld(kGolden, {{22, 40}, {430, 450}}, 24);
    clip.world.signalLights = {{42, {{0, 2.4}}, {}}, {452, {{29, 50}}, {{27, 29}}}};
    clip.world.vehicles = {along(CarLook::BlackSedan, eases({{45, 4.8}, {49, 8}}),
                                 {{0, 6.5},
                                  {2.7, 6.5},
                                  {5.5, 11},
                                  {9, 20},
                                  {14, 26},
                                  {20, 27},
                                  {25, 25},
                                  {27.2, 24},
                                  {28.2, 19.5},
                                  {29.2, 10},
                                  {30.1, 2},
                                  {30.35, 2.2},
                                  {30.7, 2.7},
                                  {31.8, 3.1},
                                  {44, 3.1},
                                  {46, 4.5},
                                  {50, 14},
                                  {54, 16},
                                  {57, 13}},
                                 {{0, 2.6}, {27.1, 44.5}, {53, 60}}),
                           along(CarLook::OrangeTaxi, 8.0,
                                 {{0, 5},
                                  {3.2, 5},
                                  {8, -3},
                                  {12, -12},
                                  {20, -14},
                                  {24, 4},
                                  {28, 30},
                                  {31, 62},
                                  {40, 66},
                                  {47, 66},
                                  {51, 58},
                                  {60, 110}},
                                 {{0, 2.8}, {29.5, 50}}),
                           along(CarLook::BlueBus, 1.6,
                                 {{0, 3},
                                  {3, 3},
                                  {6, 5},
                                  {12, 24},
                                  {20, 38},
                                  {26, 30},
                                  {30, 30},
                                  {33, 42},
                                  {47, 42},
                                  {51, 34},
                                  {60, 75}},
                                 {{0, 2.7}, {28.5, 50}}),
                           along(CarLook::WhiteSuv, 4.8,
                                 {{0, -10.6},
                                  {3.3, -10.6},
                                  {8, -20},
                                  {14, -27},
                                  {28.5, -25},
                                  {30.5, -15},
                                  {32.4, -10.6},
                                  {46, -10.6},
                                  {52, -12},
                                  {56, 25},
                                  {60, 80}}),
                           along(CarLook::RedHatch, 8.0,
                                 {{0, -12},
                                  {4, -14},
                                  {12, -40},
                                  {28, -40},
                                  {30.5, -25},
                                  {33, 16},
                                  {36, 44},
                                  {40, 48},
                                  {47, 48},
                                  {51, 40},
                                  {60, 88}},
                                 {{35, 51}}),
                           along(CarLook::SilverSedan, 1.6,
                                 {{0, -8},
                                  {3.5, -8},
                                  {10, -30},
                                  {29, -30},
                                  {31.5, -9},
                                  {34, 18},
                                  {37, 24},
                                  {47, 24},
                                  {51, 16},
                                  {60, 55}},
                                 {{34, 51}})};
    addOncomingTraffic(clip.world, 1.6f, 3.2f, 50);
    clip.world.standing +=
        {walker(19.2, eases({{0, -3}, {2.2, 6.9}, {4.2, 12.6}}), hex(0x3f7fbf)),
         walker(18.4, eases({{0, 2}, {2.6, 11.5}, {3, 12.2}}), hex(0xc8505a)), walker(125, 13, hex(0x8a5a7a)),
         walker(362, eases({{32, 13}, {37.5, 10.6}}), hex(0x4a6a9a))};
    clip.indicator = {{33, 47}};
    clip.format = mp4(2);
    QList<ClipPlan> clips(3, clip);
    for (int i = 0; i < clips.size(); ++i)
        clips[i].span = {20.0 * i, 20.0 * (i + 1)};
    return {named("REC_", clips[0]), named("EVS_", clips[1]), named("REC_", clips[2])};
}

// By day: a lane change, then a tunnel without satellites.
ClipPlan tunnelByDay() {
    ClipPlan clip;
    clip.drive.start = seoulTime(5, 14, 10, 0);
    clip.drive.origin = kSajikRo;
    clip.drive.bearingDeg = 63;
    clip.drive.altitude = 55;
    clip.drive.speedKmh = moves({{0, 44}, {4, 56}, {9, 61}, {14, 58}, {20, 63}});
    clip.drive.curvature = eases({{20, 0}, {60, -0.0022}, {95, 0}, {190, 0}, {250, 0.0042}, {330, 0.0036}});
    clip.drive.lane = eases({{1.6, 5.1}, {5.0, 1.7}});
    clip.drive.tunnelFrom = 98;
    clip.drive.tunnelTo = 222;
    clip.drive.bumps = {97, 223};
    clip.drive.seed = 12;
    clip.world = tunnelWorld(kDay, clip.drive.tunnelFrom, clip.drive.tunnelTo, 22);
    clip.world.vehicles = {
        along(CarLook::Truck, 5.1, {{0, 26}, {6, 14}, {12, 3}, {16, -9}, {20, -18}}),
        along(CarLook::WhiteSuv, 1.7, {{0, 34}, {8, 38}, {14, 30}, {20, 37}}, {{11.5, 13.5}}),
        along(CarLook::BlackSedan, 1.7, {{0, -26}, {8, -21}, {20, -24}})};
    addOncomingTraffic(clip.world, 1.7f, 3.4f, 52);
    clip.indicator = {{1.0, 4.9}};
    clip.format = mp4(1);
    return named("REC_", clip);
}

// Sweeping bends along the river after sunset.
ClipPlan riverAtDusk() {
    ClipPlan clip;
    clip.drive.start = seoulTime(5, 18, 40, 20);
    clip.drive.origin = kGangbyeon;
    clip.drive.bearingDeg = 214;
    clip.drive.altitude = 14;
    clip.drive.speedKmh = moves({{0, 62}, {5, 80}, {8, 82}, {11, 66}, {14, 68}, {20, 88}});
    clip.drive.curvature = eases({{10, 0},
                                  {70, 0.0042},
                                  {130, 0.0042},
                                  {185, -0.0005},
                                  {240, -0.0058},
                                  {290, -0.005},
                                  {340, 0.001},
                                  {420, 0.003}});
    clip.drive.lane = eases({{2.6, 8.75}, {6.2, 5.25}});
    clip.drive.bumps = {118, 260};
    clip.drive.seed = 13;
    clip.world = riverWorld(kDusk, 23);
    clip.world.vehicles = {
        along(CarLook::Truck, 8.75, {{0, 42}, {6, 16}, {10, 2}, {13, -9}, {20, -40}}),
        along(CarLook::RedHatch, 5.25, {{0, 55}, {9, 33}, {13, 28}, {20, 44}}, {{9, 11}}),
        along(CarLook::SilverSedan, 1.75, {{0, -12}, {5, 2}, {9, 22}, {14, 60}, {20, 105}}),
        along(CarLook::BlackSedan, 8.75, {{0, 95}, {10, 80}, {20, 60}})};
    addOncomingTraffic(clip.world, 1.75f, 3.5f, 80);
    clip.indicator = {{2.0, 6.0}};
    clip.format = mp4(1);
    return named("REC_", clip);
}

// At night a taxi cuts in and stops.
ClipPlan bumpAtNight() {
    ClipPlan clip;
    clip.drive.start = seoulTime(5, 21, 5, 40);
    clip.drive.origin = {37.50330, 127.04520};
    clip.drive.bearingDeg = kTeheranBearing;
    clip.drive.speedKmh =
        moves({{0, 43}, {6, 44}, {8.6, 42}, {10.05, 21}, {10.25, 3}, {10.6, 1}, {11.2, 0}, {20, 0}});
    clip.drive.lane = 4.8;
    clip.drive.impactTime = 10.05;
    clip.drive.seed = 15;
    clip.world = avenueWorld(kNight, {{190, 208}}, 25);
    clip.world.signalLights = {{210, {{8, 30}}, {{6, 8}}}};
    clip.world.vehicles = {
        along(CarLook::OrangeTaxi, eases({{6.2, 8.0}, {8.8, 4.9}}),
              {{0, 16}, {6, 13}, {8, 11}, {9.2, 6}, {10.05, 2.1}, {10.4, 2.5}, {11.4, 2.8}, {20, 2.8}},
              {{8, 20}}),
        along(CarLook::BlackSedan, 4.8, {{0, 46}, {6, 40}, {10, 40}, {14, 54}, {20, 54}}, {{8.4, 20}}),
        along(CarLook::BlueBus, 1.6, {{0, 26}, {7, 20}, {12, 44}, {20, 50}}, {{10, 20}})};
    addOncomingTraffic(clip.world, 1.6f, 3.2f, 44);
    clip.indicator = {{12.5, 20.0}};
    clip.format = avi(true);
    return named("EVT_", clip);
}

// Parked at night: somebody crosses the street, cars pass.
ClipPlan parkedAtNight() {
    ClipPlan clip;
    clip.drive.start = seoulTime(6, 2, 30, 10);
    clip.drive.origin = {37.50170, 127.03650};
    clip.drive.bearingDeg = 162;
    clip.drive.lane = 4.9;
    clip.drive.seed = 16;
    clip.world = streetWorld(kNight, 26);
    clip.world.headlights = false;
    clip.world.vehicles = {oncoming(CarLook::SilverSedan, -1.7f, 190, 44),
                           oncoming(CarLook::OrangeTaxi, -1.7f, 300, 52),
                           along(CarLook::WhiteSuv, 1.7, {{0, -30}, {2, -30}, {6, 10}, {14, 130}, {20, 230}}),
                           along(CarLook::BlackSedan, -5.4, {{0, 7}}),
                           along(CarLook::RedHatch, 5.4, {{0, 37}}),
                           along(CarLook::SilverSedan, 5.4, {{0, 44}})};
    clip.world.standing += {walker(10.8, eases({{4.5, 8.2}, {6, 6.6}, {14, -7.6}}), hex(0xb04a52)),
                            walker(moves({{0, 15}, {20, 17}}), 8.8, hex(0x3f5a7a))};
    clip.format = avi(false);
    return named("MOT_", clip);
}

} // namespace

QList<ClipPlan> demoClips() {
    return crashInTheAfternoon() << tunnelByDay() << riverAtDusk() << bumpAtNight() << parkedAtNight();
}

} // namespace ql240::demo
