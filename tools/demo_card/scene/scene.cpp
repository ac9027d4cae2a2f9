#include "demo_card/scene/scene.h"

#include <algorithm>
#include <cmath>

namespace ql240::demo {

constexpr double kReach = 420; // nothing farther away is drawn

Scene::Scene(const Drive& drive, const World& world, QSize size, bool backwards)
    : m_drive(drive),
      m_world(world),
      m_backwards(backwards),
      m_beams(world.headlights && world.isNight() && !backwards),
      m_canvas(size) {
    double lowest = drive.at(0).heading;
    double highest = lowest;
    for (double time = 0; time <= drive.plan().seconds; time += 0.05) {
        lowest = std::min(lowest, drive.at(time).heading);
        highest = std::max(highest, drive.at(time).heading);
    }
    const float focal = RoadView(drive, drive.at(0), size, backwards).projection().focal;
    m_backdrop.emplace(world, m_art, size, focal, lowest, highest, backwards);
}

QImage& Scene::paint(double time) {
    const DriveState state = m_drive.at(time);
    m_view.emplace(m_drive, state, m_canvas.image().size(), m_backwards);
    m_backdrop->paint(m_canvas, state.heading, m_view->projection().horizon);
    paintGround(m_canvas, m_world, *m_view, time, m_backdrop->sunColumn(state.heading));
    paintBeams();
    gatherThings(time);
    const auto& nodes = m_view->nodes();
    for (qsizetype i = nodes.size() - 2; i >= 0; --i)
        paintSegment(static_cast<double>(nodes[i].ahead), static_cast<double>(nodes[i + 1].ahead));
    paintCockpit(state);
    return m_canvas.image();
}

// length: extent beyond its nearest end, which may be beside the camera.
void Scene::add(double ahead, double length, std::function<void()> paint) {
    if (ahead > -length && ahead < kReach)
        m_things.push_back({std::max(ahead, 0.01), std::move(paint)});
}

void Scene::gatherThings(double time) {
    m_things.clear();
    for (const Standing& standing : m_world.standing) {
        const double place = standing.at(time);
        add(m_view->aheadOf(place), 0, [=, this, &standing] { paintStanding(standing, place, time); });
    }
    for (const Signal& signal : m_world.signalLights)
        add(m_view->aheadOf(signal.at), 0, [&, time] { paintSignal(signal, time); });
    for (const Vehicle& vehicle : m_world.vehicles) {
        const double place = vehicle.place(time) + (vehicle.relative ? m_drive.at(time).distance : 0);
        if (vehicle.oncoming && m_world.inTunnel(place))
            continue; // in the other tube
        const double length = static_cast<double>(m_art.car(vehicle.look).length);
        add(m_view->aheadOf(m_backwards ? place + length : place), length,
            [=, this, &vehicle] { paintVehicle(vehicle, place, time); });
    }
    std::stable_sort(m_things.begin(), m_things.end(),
                     [](const Thing& a, const Thing& b) { return a.ahead < b.ahead; });
}

// Painted from far to near, so the order alone decides what covers what.
void Scene::paintSegment(double nearAhead, double farAhead) {
    const auto [from, to] = std::minmax({m_view->placeOf(nearAhead), m_view->placeOf(farAhead)});
    for (const Wall& wall : m_world.walls)
        if (wall.to > from && wall.from < to)
            paintWall(wall, nearAhead, farAhead);
    const Tunnel& tunnel = m_world.tunnel;
    if (const auto [in, out] = std::minmax({m_view->aheadOf(tunnel.from), m_view->aheadOf(tunnel.to)});
        in < farAhead && out > nearAhead)
        paintCeiling(m_canvas, m_world, *m_view, std::max(nearAhead, in), std::min(farAhead, out));
    for (; !m_things.empty() && m_things.back().ahead >= nearAhead; m_things.pop_back())
        m_things.back().paint();
}

void Scene::paintWall(const Wall& wall, double nearAhead, double farAhead) {
    const auto [wallNear, wallFar] = std::minmax({m_view->aheadOf(wall.from), m_view->aheadOf(wall.to)});
    const double from = std::max(nearAhead, wallNear);
    const auto end = [&](double ahead, float side, double along) {
        const RoadView::Spot spot = m_view->spot(ahead, m_view->viewSide(side));
        return WallEnd{spot.right, spot.forward, static_cast<float>(along)};
    };
    const auto paint = [&](const WallEnd& a, const WallEnd& b, float light) {
        Shade shade = m_world.shadeAt(m_view->placeOf(from), from);
        const bool lit = m_world.isNight() && wall.depth != 0; // covers have lit windows of their own
        shade.light = lit ? Rgb{light, light, light} : shade.light * light;
        m_canvas.wall(m_view->projection(), a, b, wall.bottom, wall.top,
                      m_art.cover(wall.cover, m_world.palette.lampLight), shade);
    };
    const auto along = [&](double ahead) {
        return end(ahead, wall.side, m_view->placeOf(ahead) - wall.from);
    };
    paint(along(from), along(std::min(farAhead, wallFar)), 1);
    if (wall.depth != 0 && wallNear >= nearAhead && wallNear < farAhead) // faces away from the street's light
        paint(end(wallNear, wall.side, 0),
              end(wallNear, wall.side + wall.depth, static_cast<double>(std::abs(wall.depth))), 0.82f);
}

// The camera car's own headlights on the road.
void Scene::paintBeams() {
    const double wide = m_canvas.width();
    const Rgb light = kBeam * kAsphalt * (0.7f * m_world.palette.lampLight);
    if (m_beams)
        m_canvas.picture(m_art.picture(QStringLiteral("beams")).image,
                         QRectF(0, static_cast<double>(m_view->projection().horizon), wide, wide * 0.406),
                         {light, {}, 0}, false, QPainter::CompositionMode_Plus);
}

// The bonnet, or the rear window's frame.
void Scene::paintCockpit(const DriveState& state) {
    const QString name = m_backwards ? QStringLiteral("rear-window") : QStringLiteral("bonnet");
    const Picture& picture = m_art.picture(name, mix(m_world.palette.skyLow, hex(0x8090a0), 0.5f));
    const int high = qRound(m_canvas.width() / picture.image.aspect()); // whole pixels need no scaling
    m_canvas.picture(picture.image, QRect(0, m_canvas.height() - high, m_canvas.width(), high),
                     {m_world.lightAt(state.distance), {}, 0});
}

} // namespace ql240::demo
