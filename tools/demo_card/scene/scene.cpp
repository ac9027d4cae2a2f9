#include "demo_card/scene/scene.h"

#include <cmath>
#include <limits>

#include "demo_card/scene/dot_text.h"

namespace ql240 {
namespace {

constexpr double kReach = 420; // nothing farther away is drawn

// The range of headings through a drive, in radians.
std::pair<double, double> headings(const Drive& drive) {
    double lowest = std::numeric_limits<double>::max();
    double highest = std::numeric_limits<double>::lowest();
    for (double time = 0; time <= drive.plan().seconds; time += 0.05) {
        lowest = std::min(lowest, drive.at(time).heading);
        highest = std::max(highest, drive.at(time).heading);
    }
    return {lowest, highest};
}

} // namespace

Scene::Scene(const Drive& drive, const World& world, QSize size, bool backwards)
    : m_drive(drive),
      m_world(world),
      m_size(size),
      m_backwards(backwards),
      m_canvas(size),
      m_ground(world, backwards) {
    const auto [lowest, highest] = headings(drive);
    const float focal = RoadView(drive, drive.at(0), size, backwards).projection().focal;
    m_backdrop = std::make_unique<Backdrop>(world, size, focal, lowest, highest, backwards);
    prepareArt();
}

void Scene::prepareArt() {
    for (const Standing& standing : m_world.standing)
        if (!m_props.contains(standing.prop))
            m_props[standing.prop] = paintProp(standing.prop, m_world);
    for (const Wall& wall : m_world.walls)
        if (!m_covers.contains(wall.cover))
            m_covers[wall.cover] = paintCover(wall.cover, m_world.palette.lampLight, m_world.seed);
    m_covers.try_emplace(Cover::Stone, paintCover(Cover::Stone, m_world.palette.lampLight, m_world.seed));
    for (const Vehicle& vehicle : m_world.vehicles)
        if (!m_cars.contains(vehicle.look))
            m_cars[vehicle.look] = paintCar(vehicle.look);
    for (int i = 0; i < 3; ++i)
        m_signals[size_t(i)] = ql240::paintSignal(SignalColour(i));
    for (qsizetype i = 0; i < m_world.walkers.size(); ++i)
        for (int step = 0; step < 2; ++step)
            m_walkers[i][size_t(step)] = ql240::paintWalker(m_world.walkers[i].coat, step);
    m_glow = ql240::paintGlow();
    m_shadow = paintShadow();
    m_cockpit = paintCockpit(m_size, m_backwards, m_world.palette);
}

const QImage& Scene::paint(double time, int frameNumber) {
    const DriveState state = m_drive.at(time);
    const RoadView view(m_drive, state, m_size, m_backwards);
    m_backdrop->paint(m_canvas, state.heading, view.projection().horizon);
    m_ground.paint(m_canvas, view, time, m_backdrop->sunColumn(state.heading));
    gatherWalls(view);
    gatherThings(view, time);
    const auto& nodes = view.nodes();
    for (qsizetype i = nodes.size() - 2; i >= 0; --i)
        paintSegment(view, double(nodes[i].ahead), double(nodes[i + 1].ahead), time);
    const Shade light{m_world.lightAt(state.distance), {}, 0};
    m_canvas.overlay(m_cockpit.picture, m_cockpit.top, light);
    paintText(state, frameNumber);
    return m_canvas.image();
}

void Scene::gatherWalls(const RoadView& view) {
    const double a = view.placeOf(0);
    const double b = view.placeOf(view.reach());
    m_walls.clear();
    for (const Wall& wall : m_world.walls)
        if (wall.to > std::min(a, b) && wall.from < std::max(a, b))
            m_walls.push_back(&wall);
}

void Scene::add(double ahead, Kind kind, qsizetype index) {
    if (ahead > 0 && ahead < kReach)
        m_things.push_back({ahead, kind, index});
}

double Scene::placeOf(const Vehicle& vehicle, double time) const {
    return vehicle.place(time) + (vehicle.relative ? m_drive.at(time).distance : 0);
}

void Scene::gatherThings(const RoadView& view, double time) {
    m_things.clear();
    m_next = 0;
    for (qsizetype i = 0; i < m_world.standing.size(); ++i)
        add(view.aheadOf(m_world.standing[i].at), Kind::Standing, i);
    for (qsizetype i = 0; i < m_world.signalLights.size(); ++i)
        add(view.aheadOf(m_world.signalLights[i].at), Kind::Signal, i);
    for (qsizetype i = 0; i < m_world.walkers.size(); ++i)
        add(view.aheadOf(m_world.walkers[i].place(time)), Kind::Walker, i);
    for (qsizetype i = 0; i < m_world.vehicles.size(); ++i) {
        const Vehicle& vehicle = m_world.vehicles[i];
        const double place = placeOf(vehicle, time);
        const double length = double(m_cars.at(vehicle.look).length);
        const bool otherTube = vehicle.oncoming && m_world.inTunnel(place);
        // A car is in its place in the order by its nearest end, which may lie beside the camera.
        const double ahead = view.aheadOf(m_backwards ? place + length : place);
        if (!otherTube && ahead > -length && ahead < kReach)
            m_things.push_back({std::max(ahead, 0.01), Kind::Vehicle, i});
    }
    gatherTunnel(view);
    std::stable_sort(m_things.begin(), m_things.end(),
                     [](const Thing& a, const Thing& b) { return a.ahead > b.ahead; });
}

void Scene::gatherTunnel(const RoadView& view) {
    if (!m_world.hasTunnel())
        return;
    const double entry = m_backwards ? m_world.tunnel.to : m_world.tunnel.from;
    const double exit = m_backwards ? m_world.tunnel.from : m_world.tunnel.to;
    add(view.aheadOf(entry), Kind::Portal);
    add(view.aheadOf(exit), Kind::TunnelMouth);
    for (double at = m_world.tunnel.from + 0.8; at < m_world.tunnel.to; at += 8)
        add(view.aheadOf(at), Kind::TunnelLamps);
}

void Scene::paintSegment(const RoadView& view, double nearAhead, double farAhead, double time) {
    const double a = view.placeOf(nearAhead);
    const double b = view.placeOf(farAhead);
    if (m_world.inTunnel((a + b) / 2))
        m_ground.paintCeiling(m_canvas, view, nearAhead, farAhead);
    for (const Wall* wall : m_walls)
        if (wall->to > std::min(a, b) && wall->from < std::max(a, b))
            paintWall(view, *wall, nearAhead, farAhead);
    for (; m_next < m_things.size() && m_things[m_next].ahead >= nearAhead; ++m_next)
        paintThing(view, m_things[m_next], time);
}

void Scene::paintWall(const RoadView& view, const Wall& wall, double nearAhead, double farAhead) {
    const double one = view.aheadOf(wall.from);
    const double other = view.aheadOf(wall.to);
    const double wallNear = std::min(one, other);
    const double from = std::max(nearAhead, wallNear);
    const double to = std::min(farAhead, std::max(one, other));
    const float side = view.viewSide(wall.side);
    const auto end = [&](double ahead, float at, double along) {
        const RoadView::Spot spot = view.spot(ahead, at);
        return WallEnd{spot.right, spot.forward, float(along)};
    };
    const WallCover& cover = m_covers.at(wall.cover);
    const bool glows = m_world.palette.lampLight > 0.5f && wall.depth > 0; // its lit windows are painted in
    Shade shade = m_world.shadeAt(view.placeOf(from), from);
    if (glows)
        shade.light = {1, 1, 1};
    m_canvas.wall(view.projection(), end(from, side, view.placeOf(from) - wall.from),
                  end(to, side, view.placeOf(to) - wall.from), wall.bottom, wall.top, cover, shade);
    if (wall.depth <= 0 || wallNear < nearAhead || wallNear >= farAhead)
        return;
    const float outward = side > 0 ? side + wall.depth : side - wall.depth;
    shade.light = shade.light * 0.82f; // the face looks away from the street's light
    m_canvas.wall(view.projection(), end(wallNear, side, 0), end(wallNear, outward, double(wall.depth)),
                  wall.bottom, wall.top, cover, shade);
}

QRectF Scene::upright(const RoadView& view, double ahead, float side, float bottom, float top, double aspect,
                      double offset) const {
    const RoadView::Spot spot = view.spot(ahead, side);
    const Projection& p = view.projection();
    const float forward = std::max(spot.forward, 0.3f);
    const double low = double(p.row(bottom, forward));
    const double high = double(p.row(top, forward));
    const double width = (low - high) * aspect;
    return {double(p.column(spot.right, forward)) - width * offset, high, width, low - high};
}

void Scene::paintGlow(QPointF middle, double radius, Rgb colour) {
    m_canvas.glow(m_glow, QRectF(middle.x() - radius, middle.y() - radius, 2 * radius, 2 * radius), colour);
}

void Scene::paintText(const DriveState& state, int frameNumber) {
    const int dot = std::max(1, m_size.height() / 240);
    const QDateTime clock = m_drive.plan().start.addMSecs(qint64(state.time * 1000));
    const QString speed =
        state.fix ? QString::number(qRound(state.speed * 3.6)).rightJustified(3) : QStringLiteral(" --");
    const QString position = state.fix ? QStringLiteral("N%1 E%2")
                                             .arg(state.position.latitude, 0, 'f', 5)
                                             .arg(state.position.longitude, 0, 'f', 5)
                                       : QStringLiteral("N--.----- E---.-----");
    const QString text =
        clock.toString(QStringLiteral("yyyy/MM/dd hh:mm:ss ")) + speed + QStringLiteral("km/h  ") + position;
    const QString frame = QStringLiteral("%1 #%2")
                              .arg(m_backwards ? "REAR" : "FRONT")
                              .arg(frameNumber, 5, 10, QLatin1Char('0'));
    const int y = m_size.height() - 12 * dot;
    const int margin = 6 * dot;
    const int right = m_size.width() - dotTextWidth(dot, frame) - margin;
    const bool fits = margin + dotTextWidth(dot, text) < right;
    paintDotText(m_canvas, margin, y, dot, text);
    paintDotText(m_canvas, right, fits ? y : margin, dot, frame);
}

} // namespace ql240
