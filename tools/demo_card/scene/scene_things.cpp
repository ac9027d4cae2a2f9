#include <algorithm>
#include <cmath>

#include "demo_card/scene/scene.h"

namespace ql240::demo {
namespace {

constexpr Rgb kLampGlow{1.0f, 0.78f, 0.5f};
constexpr Rgb kHeadGlow{1.0f, 0.97f, 0.88f};
constexpr Rgb kTailGlow{1.0f, 0.10f, 0.06f};
constexpr float kNearest = 0.6f; // metres; anything nearer can't be seen whole

bool within(const QList<TimeSpan>& spans, double time) {
    return std::any_of(spans.begin(), spans.end(),
                       [time](const TimeSpan& span) { return time >= span.from && time < span.to; });
}

} // namespace

// Adds the light of the car's own headlights on things ahead.
Shade Scene::shadeAt(double place, const RoadView::Spot& spot) const {
    Shade shade = m_world.shadeAt(place, static_cast<double>(spot.forward));
    if (!m_beams)
        return shade;
    const float away = spot.right / (2.2f + 0.16f * spot.forward);
    const float strength = 0.75f * std::exp(-spot.forward / 38) * std::exp(-away * away);
    shade.light = shade.light + kBeam * (strength * m_world.palette.lampLight);
    return shade;
}

QRectF Scene::paintUpright(const Picture& picture, const RoadView::Spot& spot, float bottom, float height,
                           const Shade& shade, bool mirrored) {
    const Projection& p = m_view->projection();
    const float forward = std::max(spot.forward, 0.3f);
    const double low = static_cast<double>(p.row(bottom, forward));
    const double high = static_cast<double>(p.row(bottom + height, forward));
    const double width = (low - high) * picture.image.aspect();
    const double foot = mirrored ? 1 - picture.foot : picture.foot;
    const QRectF area(static_cast<double>(p.column(spot.right, forward)) - width * foot, high, width,
                      low - high);
    if (spot.forward > kNearest)
        m_canvas.picture(picture.image, area, shade, mirrored);
    return area;
}

void Scene::paintGlow(QPointF middle, double radius, Rgb colour) {
    m_canvas.picture(m_art.picture(QStringLiteral("glow")).image,
                     QRectF(middle.x() - radius, middle.y() - radius, 2 * radius, 2 * radius),
                     {colour, {}, 0}, false, QPainter::CompositionMode_Plus);
}

void Scene::paintStanding(const Standing& standing, double place, double time) {
    const float side = m_view->viewSide(static_cast<float>(standing.side(time)));
    const float moved = side - m_view->viewSide(static_cast<float>(standing.side(time - 0.1)));
    const bool strides = std::abs(moved) > 0.02f && std::fmod(time, 0.56) < 0.28;
    const Picture& picture =
        m_art.picture(strides ? QStringLiteral("walker#stride") : standing.drawing, standing.coat);
    const RoadView::Spot spot = m_view->spot(m_view->aheadOf(place), side);
    Shade shade = shadeAt(place, spot);
    if (m_backwards && standing.drawing.startsWith(QLatin1String("sign"))) // bare metal from behind
        shade = {{}, mix(shade(hex(0x8c9092)), shade.haze, shade.hazePart), 1};
    const bool mirrored = moved < 0 || (picture.foot > 0.6 && side < 0);
    const QRectF area = paintUpright(picture, spot, standing.base, standing.height, shade, mirrored);
    const float lit = m_world.palette.lampLight;
    if (picture.light.x() < 0 || lit < 0.3f)
        return;
    const double x = mirrored ? 1 - picture.light.x() : picture.light.x();
    const QPointF lamp(area.left() + area.width() * x, area.top() + area.height() * picture.light.y());
    paintGlow(lamp, area.height() * 0.16, kLampGlow * (0.85f * lit));
    paintGlow(lamp, area.height() * 0.045, Rgb{1, 0.95f, 0.8f} * lit);
}

void Scene::paintSignal(const Signal& signal, double time) {
    if (m_backwards)
        return; // from behind only the mast is visible
    const RoadView::Spot spot = m_view->spot(m_view->aheadOf(signal.at), 10.2f);
    const QRectF area =
        paintUpright(m_art.picture(QStringLiteral("signal")), spot, 0, 7.4f, shadeAt(signal.at, spot));
    constexpr Rgb glows[] = {{1.0f, 0.2f, 0.12f}, {1.0f, 0.7f, 0.2f}, {0.25f, 1.0f, 0.65f}};
    const int colour = within(signal.red, time) ? 0 : within(signal.amber, time) ? 1 : 2;
    const QPointF lamp(area.left() + area.width() * (98 + 50 * colour) / 512,
                       area.top() + area.height() * 61 / 512);
    for (double radius : {0.045, 0.09})
        paintGlow(lamp, std::max(area.height() * radius, 4.0), glows[colour]);
}

// From far to near: the shadow, the visible side, the cabin, the end.
void Scene::paintVehicle(const Vehicle& vehicle, double place, double time) {
    const CarArt& art = m_art.car(vehicle.look);
    const Projection& p = m_view->projection();
    const double nearAhead = m_view->aheadOf(m_backwards ? place + static_cast<double>(art.length) : place);
    const float side = m_view->viewSide(static_cast<float>(vehicle.side(time)));
    const bool front = vehicle.oncoming != m_backwards;
    const bool braking = within(vehicle.braking, time);
    const RoadView::Spot nearest = m_view->spot(std::max(nearAhead, 0.0), side);
    const Shade shade = shadeAt(place, nearest);
    const float shadowEnd = std::max(nearest.forward - 0.5f, 1.2f);
    const double half = static_cast<double>(p.focal * art.width * 0.62f / shadowEnd);
    const double middle = static_cast<double>(p.column(nearest.right, shadowEnd));
    const double low = static_cast<double>(p.row(0, shadowEnd));
    const double high = static_cast<double>(p.row(0, std::max(nearest.forward + art.length, 2.0f)));
    m_canvas.picture(m_art.picture(QStringLiteral("shadow")).image,
                     QRectF(middle - half, high, 2 * half, low - high), {});
    paintFlank(art, nearAhead, nearest.right > 0 ? side - art.width / 2 : side + art.width / 2, front, shade);
    if (art.cabin && nearAhead > 0)
        paintUpright(*art.cabin,
                     m_view->spot(nearAhead + static_cast<double>(front ? 1.35f : art.cabinFromBack), side),
                     0, art.height, shade);
    if (nearAhead < static_cast<double>(kNearest))
        return;
    const Picture& end = front ? art.front : braking ? art.braking : art.back;
    paintVehicleLamps(paintUpright(end, nearest, 0, art.height, shade), front, braking);
}

void Scene::paintFlank(const CarArt& art, double nearAhead, float side, bool front, const Shade& shade) {
    const double length = static_cast<double>(art.length);
    const auto end = [&](double ahead) {
        RoadView::Spot spot = m_view->spot(std::max(ahead, 0.0), side);
        spot.forward +=
            static_cast<float>(std::min(ahead, 0.0)); // beside the camera the road is treated as straight
        const double fromRear = front ? nearAhead + length - ahead : ahead - nearAhead;
        return WallEnd{spot.right, spot.forward,
                       static_cast<float>(std::clamp(fromRear, 0.01, length - 0.01))};
    };
    m_canvas.wall(m_view->projection(), end(nearAhead), end(nearAhead + length), 0, art.height, art.side,
                  shade);
}

void Scene::paintVehicleLamps(const QRectF& face, bool front, bool braking) {
    const float lit = m_world.palette.lampLight;
    const double y = face.bottom() - std::min(face.height() * 0.49, face.width() * 0.4);
    for (double x : {0.14, 0.86}) {
        const QPointF lamp(face.left() + face.width() * x, y);
        if (front && lit > 0.1f) {
            paintGlow(lamp, face.width() * 0.55, kHeadGlow * (0.75f * lit));
            paintGlow(lamp, face.width() * 0.16, kHeadGlow * std::min(1.0f, lit * 2));
        }
        if (!front && (braking || lit > 0.3f))
            paintGlow(lamp, face.width() * 0.3, kTailGlow * (braking ? 0.75f : 0.4f * lit));
    }
}

} // namespace ql240::demo
