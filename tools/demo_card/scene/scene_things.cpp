#include <cmath>

#include "demo_card/scene/scene.h"

namespace ql240 {
namespace {

constexpr Rgb kLampGlow{1.0f, 0.78f, 0.5f};
constexpr Rgb kHeadGlow{1.0f, 0.97f, 0.88f};
constexpr Rgb kTailGlow{1.0f, 0.10f, 0.06f};

bool within(const QList<TimeSpan>& spans, double time) {
    return std::any_of(spans.begin(), spans.end(),
                       [time](const TimeSpan& span) { return time >= span.from && time < span.to; });
}

constexpr double kNearest = 0.8; // metres; what is nearer can't be seen whole

} // namespace

// The own headlights on what stands ahead.
Rgb Scene::beamOn(const RoadView::Spot& spot) const {
    if (m_backwards || !m_world.headlights || m_world.palette.lampLight <= 0.5f)
        return {};
    const float away = spot.right / (2.2f + 0.16f * spot.forward);
    const float strength = 0.75f * std::exp(-spot.forward / 38) * std::exp(-away * away);
    return Rgb{1.0f, 0.95f, 0.84f} * (strength * m_world.palette.lampLight);
}

void Scene::paintThing(const RoadView& view, const Thing& thing, double time) {
    switch (thing.kind) {
        case Kind::Standing:
            return paintStanding(view, m_world.standing[thing.index]);
        case Kind::Signal:
            return paintSignal(view, m_world.signalLights[thing.index], time);
        case Kind::Vehicle:
            return paintVehicle(view, m_world.vehicles[thing.index], time);
        case Kind::Walker:
            return paintWalker(view, m_world.walkers[thing.index], time);
        case Kind::Portal:
            return paintPortal(view, thing.ahead);
        case Kind::TunnelLamps:
            return paintTunnelLamps(view, thing.ahead);
        case Kind::TunnelMouth:
            return paintDaylight(view, thing.ahead);
    }
}

void Scene::paintStanding(const RoadView& view, const Standing& standing) {
    const double ahead = view.aheadOf(standing.at);
    const PropArt& art = m_props.at(standing.prop);
    const float side = view.viewSide(standing.side);
    const bool mirrored = art.mirroredOnLeft && side < 0;
    const double offset = mirrored ? 1 - double(art.offset) : double(art.offset);
    const QRectF area = upright(view, ahead, side, standing.base, standing.base + standing.height,
                                art.picture.aspect(), offset);
    if (view.spot(ahead, side).forward < 0.6f)
        return;
    Shade shade = m_world.shadeAt(standing.at, ahead);
    shade.light = shade.light + beamOn(view.spot(ahead, side));
    const bool sign = standing.prop == Prop::Board || standing.prop == Prop::SpeedSign;
    if (sign && m_backwards) // seen from behind: bare metal
        shade = {{}, mix(shade(hex(0x8c9092)), shade.haze, shade.hazePart), 1};
    m_canvas.picture(art.picture, area, shade, mirrored);
    if (standing.prop == Prop::Lamp && m_world.palette.lampLight > 0.3f) {
        const double lamp = mirrored ? 0.66 : 0.34;
        const QPointF middle(area.left() + area.width() * lamp, area.top() + area.height() * 0.052);
        paintGlow(middle, area.height() * 0.16, kLampGlow * (0.85f * m_world.palette.lampLight));
        paintGlow(middle, area.height() * 0.045, Rgb{1, 0.95f, 0.8f} * m_world.palette.lampLight);
    }
}

void Scene::paintSignal(const RoadView& view, const Signal& signal, double time) {
    if (m_backwards)
        return; // from behind there is nothing to see but the mast
    const double ahead = view.aheadOf(signal.at);
    const int colour = within(signal.red, time) ? 0 : within(signal.amber, time) ? 1 : 2;
    const QRectF area = upright(view, ahead, signal.side, 0, 7.4f, 1, 0.97);
    if (view.spot(ahead, signal.side).forward < 1)
        return;
    m_canvas.picture(m_signals[size_t(colour)], area, m_world.shadeAt(signal.at, ahead));
    constexpr Rgb glows[] = {{1.0f, 0.2f, 0.12f}, {1.0f, 0.7f, 0.2f}, {0.25f, 1.0f, 0.65f}};
    const QPointF lamp(area.left() + area.width() * (98 + 50 * colour) / 512,
                       area.top() + area.height() * 61 / 512);
    paintGlow(lamp, std::max(area.height() * 0.09, 4.0),
              glows[colour] * (0.5f + 0.4f * m_world.palette.lampLight));
}

// From far to near: the shadow, the flank that the camera sees, the cabin, the end.
void Scene::paintVehicle(const RoadView& view, const Vehicle& vehicle, double time) {
    const CarArt& art = m_cars.at(vehicle.look);
    const double place = placeOf(vehicle, time);
    const double nearAhead = view.aheadOf(m_backwards ? place + double(art.length) : place);
    const float side = view.viewSide(float(vehicle.side(time)));
    const bool front = vehicle.oncoming != m_backwards;
    const bool braking = within(vehicle.braking, time);
    const RoadView::Spot nearest = view.spot(std::max(nearAhead, 0.0), side);
    Shade shade = m_world.shadeAt(place, std::max(0.0, nearAhead));
    shade.light = shade.light + beamOn(nearest);
    paintCarShadow(view, nearest, art);
    paintFlank(view, art, nearAhead, nearest.right > 0 ? side - art.width / 2 : side + art.width / 2, front,
               shade);
    const double cabin = nearAhead + double(front ? art.cabinFromFront : art.cabinFromBack);
    if (!art.cabin.isNull() && nearAhead > 0)
        m_canvas.picture(art.cabin, upright(view, cabin, side, 0, art.height, art.cabin.aspect(), 0.5),
                         shade);
    if (nearAhead < kNearest)
        return;
    const Mipmap& end = front ? art.front : braking ? art.backBraking : art.back;
    const QRectF face = upright(view, nearAhead, side, 0, art.height, end.aspect(), 0.5);
    m_canvas.picture(end, face, shade);
    paintVehicleLamps(face, art, front, braking);
}

void Scene::paintCarShadow(const RoadView& view, const RoadView::Spot& nearest, const CarArt& art) {
    const Projection& p = view.projection();
    const float farDepth = std::max(nearest.forward + art.length, 2.0f);
    const float nearDepth = std::max(nearest.forward - 0.5f, 1.2f);
    const double middle = double(p.column(nearest.right, nearDepth));
    const double half = double(p.focal * art.width * 0.62f / nearDepth);
    const QRectF area(QPointF(middle - half, double(p.row(0, farDepth))),
                      QPointF(middle + half, double(p.row(0, nearDepth))));
    m_canvas.picture(m_shadow, area, Shade());
}

void Scene::paintFlank(const RoadView& view, const CarArt& art, double nearAhead, float side, bool front,
                       const Shade& shade) {
    const double length = double(art.length);
    const auto end = [&](double ahead) {
        RoadView::Spot spot = view.spot(std::max(ahead, 0.0), side);
        spot.forward += float(std::min(ahead, 0.0)); // beside the camera the road is taken as straight
        const double fromRear = front ? nearAhead + length - ahead : ahead - nearAhead;
        return WallEnd{spot.right, spot.forward, float(std::clamp(fromRear, 0.01, length - 0.01))};
    };
    m_canvas.wall(view.projection(), end(nearAhead), end(nearAhead + length), 0, art.height, art.side, shade);
}

void Scene::paintVehicleLamps(const QRectF& face, const CarArt& art, bool front, bool braking) {
    const float lit = m_world.palette.lampLight;
    const double y = face.bottom() - face.height() * double(art.lampHeight / art.height);
    for (double x : {0.14, 0.86}) {
        const QPointF lamp(face.left() + face.width() * x, y);
        if (front && lit > 0.1f) {
            paintGlow(lamp, face.width() * 0.55, kHeadGlow * (0.75f * lit));
            paintGlow(lamp, face.width() * 0.16, kHeadGlow * std::min(1.0f, lit * 2));
        } else if (!front && (braking || lit > 0.3f)) {
            paintGlow(lamp, face.width() * (braking ? 0.34 : 0.22),
                      kTailGlow * (braking ? 0.75f : 0.5f * lit));
        }
    }
}

void Scene::paintWalker(const RoadView& view, const Walker& walker, double time) {
    const qsizetype index = &walker - m_world.walkers.constData();
    const double ahead = view.aheadOf(walker.place(time));
    const float side = view.viewSide(float(walker.side(time)));
    const float before = view.viewSide(float(walker.side(time - 0.1)));
    const bool moves = std::abs(side - before) > 0.02f;
    const auto& steps = m_walkers.at(index);
    const Mipmap& picture = steps[moves && std::fmod(time, 0.56) < 0.28 ? 1 : 0];
    const float bob = moves ? 0.03f * float(std::abs(std::sin(time * 11.2))) : 0;
    Shade shade = m_world.shadeAt(walker.place(time), ahead);
    shade.light = shade.light + beamOn(view.spot(ahead, side));
    m_canvas.picture(picture, upright(view, ahead, side, bob, 1.74f + bob, picture.aspect(), 0.5), shade,
                     side < before);
}

// The tunnel's face, with the mouth of the other tube beside ours.
void Scene::paintPortal(const RoadView& view, double ahead) {
    const Tunnel& tunnel = m_world.tunnel;
    const Shade shade = m_world.shadeAt(view.placeOf(ahead) + (m_backwards ? 1 : -1), ahead);
    const Shade frame{shade.light * 1.15f, shade.haze, shade.hazePart};
    const auto plate = [&](float from, float to, float bottom, float top, const Shade& light) {
        const RoadView::Spot a = view.spot(ahead, view.viewSide(from));
        const RoadView::Spot b = view.spot(ahead, view.viewSide(to));
        m_canvas.wall(view.projection(), {a.right, a.forward, from + 100}, {b.right, b.forward, to + 100},
                      bottom, top, m_covers.at(Cover::Stone), light);
    };
    constexpr float top = 8.6f;
    const float otherLeft = -tunnel.right;
    const Shade dark{{0.06f, 0.055f, 0.05f}, {}, 0};
    plate(otherLeft, tunnel.left - 0.3f, 0, tunnel.height, dark);
    plate(-46, otherLeft, 0, top, shade);
    plate(tunnel.right, 46, 0, top, shade);
    plate(otherLeft, tunnel.right, tunnel.height, top, shade);
    plate(tunnel.left - 0.3f, tunnel.left, 0, tunnel.height, shade);
    plate(-46, 46, top, top + 0.5f, frame);
    plate(otherLeft - 0.5f, tunnel.right + 0.5f, tunnel.height, tunnel.height + 0.45f, frame);
}

void Scene::paintTunnelLamps(const RoadView& view, double ahead) {
    const Tunnel& tunnel = m_world.tunnel;
    for (float part : {0.25f, 0.75f}) {
        const float side = view.viewSide(tunnel.left + (tunnel.right - tunnel.left) * part);
        const QRectF area = upright(view, ahead, side, tunnel.height - 1, tunnel.height, 1, 0.5);
        paintGlow({area.center().x(), area.top()}, area.height() * 1.3, Rgb{1.0f, 0.72f, 0.4f} * 0.5f);
    }
}

// Eyes used to the tunnel's light find the day outside too bright.
void Scene::paintDaylight(const RoadView& view, double ahead) {
    const double inside = view.aheadOf(m_backwards ? m_world.tunnel.to : m_world.tunnel.from);
    if (inside >= 0)
        return;
    const RoadView::Spot left =
        view.spot(ahead, view.viewSide(m_backwards ? m_world.tunnel.right : m_world.tunnel.left));
    const RoadView::Spot right =
        view.spot(ahead, view.viewSide(m_backwards ? m_world.tunnel.left : m_world.tunnel.right));
    const Projection& p = view.projection();
    const float opacity = 0.6f * float(std::clamp(-inside / 30, 0.0, 1.0) * std::clamp(ahead / 25, 0.0, 1.0));
    const QRectF mouth(
        QPointF(double(p.column(left.right, left.forward)),
                double(p.row(m_world.tunnel.height, left.forward))),
        QPointF(double(p.column(right.right, right.forward)), double(p.row(0, right.forward))));
    m_canvas.rectangle(mouth, hex(0xfff6e4), opacity);
    paintGlow(mouth.center(), mouth.width() * 1.1, Rgb{1, 0.95f, 0.85f} * (0.5f * opacity));
}

} // namespace ql240
