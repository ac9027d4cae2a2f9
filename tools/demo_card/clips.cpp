#include "demo_card/clips.h"

#include <QtCore/QTimeZone>

namespace ql240 {
namespace {

using Shape = Curve::Shape;

constexpr GeoPosition kTeheranRo{37.49905, 127.03115}; // east of Gangnam station
constexpr GeoPosition kSajikRo{37.57225, 126.95985};
constexpr GeoPosition kGangbyeon{37.52250, 126.99760};
constexpr double kTeheranBearing = 69;
constexpr int kMp4SoundRate = 32000;
constexpr int kAviSoundRate = 16000;

QDateTime seoulTime(int day, int hour, int minute, int second) {
    return QDateTime(QDate(2013, 4, day), QTime(hour, minute, second), QTimeZone(9 * 3600));
}

QString clipName(const char* prefix, const QDateTime& start, const char* extension) {
    return QLatin1String(prefix) + start.toString(QStringLiteral("yyyy_MM_dd_hh_mm_ss")) +
           QLatin1String(extension);
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

// A car that comes towards the camera at an even speed.
Vehicle oncoming(CarLook look, float side, double startPlace, double kmh) {
    constexpr double seconds = 20;
    return {.look = look,
            .place = moves({{0, startPlace}, {seconds, startPlace - kmh / 3.6 * seconds}}),
            .relative = false,
            .side = double(side),
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

void addOncomingTraffic(World& world, float first, float laneWidth, double kmh) {
    constexpr CarLook looks[] = {CarLook::WhiteSuv,    CarLook::SilverSedan, CarLook::BlueBus,
                                 CarLook::BlackSedan,  CarLook::OrangeTaxi,  CarLook::RedHatch,
                                 CarLook::SilverSedan, CarLook::Truck};
    double place = 40;
    for (int i = 0; i < 16; ++i) {
        const int lane = i * 5 % 3 % 2;
        world.vehicles.append(
            oncoming(looks[i % 8], -(first + laneWidth * float(lane)), place, kmh * (lane ? 1 : 1.12)));
        place += 22 + 30 * hashNoise(world.seed, i);
    }
}

// From a red light in the avenue on a clear day up to town speed, and down again for the next one.
ClipPlan avenueByDay() {
    ClipPlan clip;
    clip.drive.start = seoulTime(5, 14, 10, 0);
    clip.drive.origin = kTeheranRo;
    clip.drive.bearingDeg = kTeheranBearing;
    clip.drive.speedKmh =
        moves({{0, 0}, {3, 0}, {5.5, 19}, {8.5, 41}, {12.5, 57}, {15, 58}, {17.5, 44}, {20, 19}});
    clip.drive.lane = 4.8;
    clip.drive.bumps = {24, 88, 141};
    clip.drive.seed = 11;
    clip.world = avenueWorld(dayPalette(), {{22, 40}, {214, 234}}, 21);
    clip.world.signalLights = {{42, 10.2f, {{0, 2.4}}, {}}, {236, 10.2f, {{15.2, 30}}, {{13.2, 15.2}}}};
    clip.world.vehicles = {
        along(CarLook::SilverSedan, 4.8,
              {{0, 6.5}, {2.7, 6.5}, {5.5, 11}, {9, 22}, {14, 29}, {17, 24}, {20, 11}},
              {{0, 2.6}, {15.6, 20}}),
        along(CarLook::OrangeTaxi, 8.0, {{0, 5}, {3.2, 5}, {8, -3}, {12, -12}, {20, -16}}, {{0, 2.8}}),
        along(CarLook::BlueBus, 1.6, {{0, 3}, {3, 3}, {6, 5}, {12, 24}, {20, 30}}, {{0, 2.7}, {16, 20}}),
        along(CarLook::RedHatch, 8.0, {{0, 36}, {3, 40}, {10, 48}, {20, 36}}, {{16, 20}})};
    addOncomingTraffic(clip.world, 1.6f, 3.2f, 46);
    clip.world.walkers = {{Curve(19.2), eases({{0, -3}, {2.2, 6.9}, {4.2, 12.6}}), hex(0x3f7fbf)},
                          {Curve(18.4), eases({{0, 2}, {2.6, 11.5}, {3, 12.2}}), hex(0xc8505a)},
                          {Curve(60), moves({{0, 12.4}, {20, 12.5}}), hex(0x6a8a5a)},
                          {Curve(125), moves({{0, 13.2}, {20, 13}}), hex(0x8a5a7a)}};
    clip.format = mp4(1);
    clip.name = clipName("REC_", clip.drive.start, ".mp4");
    return clip;
}

// Late afternoon: a change of lane, then a tunnel without satellites.
ClipPlan tunnelInTheAfternoon() {
    ClipPlan clip;
    clip.drive.start = seoulTime(5, 17, 45, 0);
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
    clip.world = tunnelWorld(goldenPalette(), clip.drive.tunnelFrom, clip.drive.tunnelTo, 22);
    clip.world.vehicles = {
        along(CarLook::Truck, 5.1, {{0, 26}, {6, 14}, {12, 3}, {16, -9}, {20, -18}}),
        along(CarLook::WhiteSuv, 1.7, {{0, 34}, {8, 38}, {14, 30}, {20, 37}}, {{11.5, 13.5}}),
        along(CarLook::BlackSedan, 1.7, {{0, -26}, {8, -21}, {20, -24}})};
    addOncomingTraffic(clip.world, 1.7f, 3.4f, 52);
    clip.indicator = {{1.0, 4.9}};
    clip.format = mp4(2);
    clip.name = clipName("REC_", clip.drive.start, ".mp4");
    return clip;
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
    clip.world = riverWorld(duskPalette(), 23);
    clip.world.vehicles = {
        along(CarLook::Truck, 8.75, {{0, 42}, {6, 16}, {10, 2}, {13, -9}, {20, -40}}),
        along(CarLook::RedHatch, 5.25, {{0, 55}, {9, 33}, {13, 28}, {20, 44}}, {{9, 11}}),
        along(CarLook::SilverSedan, 1.75, {{0, -12}, {5, 2}, {9, 22}, {14, 60}, {20, 105}}),
        along(CarLook::BlackSedan, 8.75, {{0, 95}, {10, 80}, {20, 60}})};
    addOncomingTraffic(clip.world, 1.75f, 3.5f, 80);
    clip.indicator = {{2.0, 6.0}};
    clip.format = mp4(1);
    clip.name = clipName("REC_", clip.drive.start, ".mp4");
    return clip;
}

// The car ahead stops hard; the brakes aren't enough.
ClipPlan crashInTheAfternoon() {
    ClipPlan clip;
    clip.drive.start = seoulTime(5, 17, 52, 40);
    clip.drive.origin = {37.50210, 127.04120};
    clip.drive.bearingDeg = kTeheranBearing;
    clip.drive.speedKmh = moves(
        {{0, 48}, {4, 56}, {8, 57}, {8.9, 55}, {10.15, 25}, {10.25, 13}, {10.8, 7}, {11.8, 0}, {20, 0}});
    clip.drive.lane = 4.8;
    clip.drive.bumps = {52};
    clip.drive.impactTime = 10.15;
    clip.drive.seed = 14;
    clip.world = avenueWorld(goldenPalette(), {{224, 244}}, 24);
    clip.world.signalLights = {{246, 10.2f, {{9, 30}}, {{7, 9}}}};
    clip.world.vehicles = {
        along(CarLook::BlackSedan, 4.8,
              {{0, 27},
               {5, 25},
               {7.2, 24},
               {8.2, 19.5},
               {9.2, 10},
               {10.2, 2.1},
               {10.5, 2.7},
               {11.8, 3.1},
               {20, 3.1}},
              {{7.1, 20}}),
        along(CarLook::OrangeTaxi, 8.0, {{0, -14}, {4, 4}, {8, 30}, {11, 62}, {20, 66}}, {{9.5, 20}}),
        along(CarLook::BlueBus, 1.6, {{0, 38}, {6, 30}, {10, 30}, {13, 42}, {20, 42}}, {{8.5, 20}}),
        along(CarLook::WhiteSuv, 4.8, {{0, -27}, {8.5, -25}, {10.5, -15}, {12.4, -10.6}, {20, -10.6}}),
        along(CarLook::RedHatch, 8.0, {{0, -44}, {8, -40}, {10.5, -25}, {13, 16}, {16, 44}, {20, 48}},
              {{15, 20}}),
        along(CarLook::SilverSedan, 1.6, {{0, -34}, {9, -30}, {11.5, -9}, {14, 18}, {17, 24}, {20, 24}},
              {{14, 20}})};
    addOncomingTraffic(clip.world, 1.6f, 3.2f, 50);
    clip.world.walkers = {{Curve(165), eases({{12, 13}, {17.5, 10.6}}), hex(0x4a6a9a)}};
    clip.indicator = {{13.0, 20.0}};
    clip.format = mp4(2);
    clip.name = clipName("EVS_", clip.drive.start, ".mp4");
    return clip;
}

// At night a taxi cuts in and stops.
ClipPlan bumpAtNight() {
    ClipPlan clip;
    clip.drive.start = seoulTime(5, 21, 5, 40);
    clip.drive.origin = {37.50330, 127.04520};
    clip.drive.bearingDeg = kTeheranBearing;
    clip.drive.speedKmh =
        moves({{0, 43}, {6, 44}, {8.6, 42}, {10.05, 17}, {10.15, 8}, {10.7, 4}, {11.4, 0}, {20, 0}});
    clip.drive.lane = 4.8;
    clip.drive.impactTime = 10.05;
    clip.drive.seed = 15;
    clip.world = avenueWorld(nightPalette(), {{190, 208}}, 25);
    clip.world.signalLights = {{210, 10.2f, {{8, 30}}, {{6, 8}}}};
    clip.world.vehicles = {
        along(CarLook::OrangeTaxi, eases({{6.2, 8.0}, {8.8, 4.9}}),
              {{0, 16}, {6, 13}, {8, 11}, {9.2, 6}, {10.05, 2.1}, {10.4, 2.5}, {11.4, 2.8}, {20, 2.8}},
              {{8, 20}}),
        along(CarLook::BlackSedan, 4.8, {{0, 46}, {6, 40}, {10, 40}, {14, 54}, {20, 54}}, {{8.4, 20}}),
        along(CarLook::BlueBus, 1.6, {{0, 26}, {7, 20}, {12, 44}, {20, 50}}, {{10, 20}})};
    addOncomingTraffic(clip.world, 1.6f, 3.2f, 44);
    clip.indicator = {{12.5, 20.0}};
    clip.format = avi(true);
    clip.name = clipName("EVT_", clip.drive.start, ".avi");
    return clip;
}

// Parked at night: somebody crosses the street, cars pass.
ClipPlan parkedAtNight() {
    ClipPlan clip;
    clip.drive.start = seoulTime(6, 2, 30, 10);
    clip.drive.origin = {37.50170, 127.03650};
    clip.drive.bearingDeg = 162;
    clip.drive.lane = 4.9;
    clip.drive.seed = 16;
    clip.world = streetWorld(nightPalette(), 26);
    clip.world.headlights = false;
    clip.world.vehicles = {oncoming(CarLook::SilverSedan, -1.7f, 190, 44),
                           oncoming(CarLook::OrangeTaxi, -1.7f, 300, 52),
                           along(CarLook::WhiteSuv, 1.7, {{0, -30}, {2, -30}, {6, 10}, {14, 130}, {20, 230}}),
                           along(CarLook::BlackSedan, -5.4, {{0, 7}}),
                           along(CarLook::RedHatch, 5.4, {{0, 37}}),
                           along(CarLook::SilverSedan, 5.4, {{0, 44}})};
    clip.world.walkers = {{Curve(10.8), eases({{4.5, 8.2}, {6, 6.6}, {14, -7.6}}), hex(0xb04a52)},
                          {moves({{0, 15}, {20, 17}}), Curve(8.8), hex(0x3f5a7a)}};
    clip.format = avi(false);
    clip.name = clipName("MOT_", clip.drive.start, ".avi");
    return clip;
}

} // namespace

QList<ClipPlan> demoClips() {
    return {crashInTheAfternoon(), tunnelInTheAfternoon(), avenueByDay(),
            riverAtDusk(),         bumpAtNight(),          parkedAtNight()};
}

} // namespace ql240
