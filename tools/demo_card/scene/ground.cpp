#include "demo_card/scene/ground.h"

#include <cmath>

namespace ql240 {
namespace {

constexpr Rgb kPaint = hex(0xdfe0dc);
constexpr Rgb kBeam{1.0f, 0.94f, 0.80f};
constexpr Rgb kTubeLight{1.0f, 0.84f, 0.55f};

// How much of from … to is covered by marks of the length `on` every `period`.
float dashCover(double from, double to, double period, double on) {
    const auto covered = [&](double at) {
        const double whole = std::floor(at / period);
        return whole * on + std::min(at - whole * period, on);
    };
    return float((covered(to) - covered(from)) / (to - from));
}

float overlap(double from, double to, double otherFrom, double otherTo) {
    const double both = std::min(to, otherTo) - std::max(from, otherFrom);
    return float(std::clamp(both / (to - from), 0.0, 1.0));
}

} // namespace

struct GroundPainter::Row {
    int y;
    float depth;
    double from, to; // places along the road
    float perMetre;  // pixels
    float middle;    // column of the road's middle
    bool backwards;
    bool inJunction;
    float column(float side) const { return middle + (backwards ? -side : side) * perMetre; }
};

GroundPainter::GroundPainter(const World& world, bool backwards)
    : m_world(world), m_beams(world.headlights && world.palette.lampLight > 0.5f && !backwards) {}

GroundPainter::Row GroundPainter::rowAt(const RoadView& view, int y) const {
    const Projection& p = view.projection();
    const auto depthAt = [&](float below) { return p.focal * p.eye / std::max(below, 0.15f); };
    const float below = float(y) + 0.5f - p.horizon;
    const float depth = depthAt(below);
    const RoadView::Node node = view.nodeAtDepth(depth);
    const float half = std::min((depthAt(below - 0.5f) - depthAt(below + 0.5f)) / 2 / node.cosine, 40.0f);
    const double a = view.placeOf(double(node.ahead - half));
    const double b = view.placeOf(double(node.ahead + half));
    Row row{y,
            depth,
            std::min(a, b),
            std::max(a, b),
            p.focal / (depth * node.cosine),
            p.column(node.right, depth),
            view.viewSide(1) < 0,
            false};
    const double place = (a + b) / 2;
    for (const TimeSpan& junction : m_world.junctions)
        row.inJunction |= place > junction.from && place < junction.to;
    return row;
}

void GroundPainter::findVisibleMarks(const RoadView& view) {
    const double a = view.placeOf(0);
    const double b = view.placeOf(220);
    const double from = std::min(a, b);
    const double to = std::max(a, b);
    m_visible.clear();
    std::copy_if(m_world.marks.begin(), m_world.marks.end(), std::back_inserter(m_visible),
                 [&](const GroundMark& mark) { return mark.to > from && mark.from < to; });
    m_arrows.clear();
    for (const GroundArrow& arrow : m_world.arrows)
        if (arrow.at + 6 > from && arrow.at < to)
            m_arrows.emplace_back(arrow.at, arrow.middle);
}

void GroundPainter::paint(Canvas& canvas, const RoadView& view, double time, float sunColumn) {
    findVisibleMarks(view);
    const int first = std::max(0, int(std::floor(view.projection().horizon)));
    for (int y = first; y < canvas.height(); ++y) {
        const Row row = rowAt(view, y);
        paintRow(canvas, row);
        if (m_world.waterLeft)
            paintWater(canvas, row, time, sunColumn);
    }
}

void GroundPainter::paintRow(Canvas& canvas, const Row& row) const {
    const Shade shade = m_world.shadeAt((row.from + row.to) / 2, double(row.depth));
    const Shade plain = m_beams ? Shade() : shade;
    const float bands = 0.95f + 0.10f * dashCover(row.from, row.to, 14, 7);
    const float end = float(canvas.width());
    const Rgb left = plain((row.backwards ? m_world.rightGround : m_world.leftGround) * bands);
    const Rgb right = plain((row.backwards ? m_world.leftGround : m_world.rightGround) * bands);
    canvas.span(row.y, 0, row.middle, left);
    canvas.span(row.y, row.middle, end, right);
    const auto fill = [&](float a, float b, Rgb colour, float opacity) {
        const float x0 = row.column(a);
        const float x1 = row.column(b);
        canvas.span(row.y, std::min(x0, x1), std::max(x0, x1), colour, opacity);
    };
    for (const GroundStripe& stripe : m_world.stripes)
        fill(stripe.left, stripe.right, plain(stripe.colour), 1);
    if (row.inJunction)
        fill(-70, 70, plain(m_world.stripes.at(4).colour), 1);
    else
        paintLanes(canvas, row, plain);
    paintMarks(canvas, row, plain);
    if (m_beams)
        lightRow(canvas, row, shade);
}

void GroundPainter::paintLanes(Canvas& canvas, const Row& row, const Shade& shade) const {
    for (const LaneLine& line : m_world.lines) {
        const float cover =
            line.period > 0 ? dashCover(row.from, row.to, double(line.period), double(line.on)) : 1;
        if (cover <= 0)
            continue;
        const float middle = row.column(line.middle);
        const float half = line.width * row.perMetre / 2;
        canvas.span(row.y, middle - half, middle + half, shade(line.colour), cover);
    }
    for (const auto& [at, middle] : m_arrows) {
        const double along = (row.from + row.to) / 2 - at;
        if (along < 0 || along > 5)
            continue;
        const float half = along < 3 ? 0.09f : 0.42f * float(5 - along) / 2;
        const float x = row.column(middle);
        canvas.span(row.y, x - half * row.perMetre, x + half * row.perMetre, shade(kPaint), 0.9f);
    }
}

void GroundPainter::paintMarks(Canvas& canvas, const Row& row, const Shade& shade) const {
    for (const GroundMark& mark : m_visible) {
        const float cover = overlap(row.from, row.to, mark.from, mark.to);
        if (cover <= 0)
            continue;
        float half = (mark.right - mark.left) / 2;
        const float middle = row.column(mark.left + half);
        if (mark.round) {
            const double length = mark.to - mark.from;
            const double at = std::clamp(((row.from + row.to) / 2 - mark.from) / length, 0.0, 1.0) * 2 - 1;
            half *= float(std::sqrt(1 - at * at));
        }
        const float reach = std::abs(half) * row.perMetre;
        canvas.span(row.y, middle - reach, middle + reach, shade(mark.colour), mark.opacity * cover);
    }
}

// Water mirrors the low sky, and glitters below the sun.
void GroundPainter::paintWater(Canvas& canvas, const Row& row, double time, float sunColumn) const {
    const float bank = row.column(-12.6f);
    const float from = row.backwards ? std::max(bank, 0.0f) : 0;
    const float to = row.backwards ? float(canvas.width()) : std::min(bank, float(canvas.width()));
    if (to <= from)
        return;
    const float near = std::clamp(12 / row.depth, 0.0f, 1.0f);
    canvas.span(row.y, from, to,
                mix(m_world.palette.skyLow * 0.86f, m_world.palette.skyTop, 0.25f + 0.6f * near));
    const auto tick = std::int64_t(time * 9);
    for (int i = 0; i < 26; ++i) {
        const auto key = (std::int64_t(row.y) * 64 + i) * 4096 + tick + i % 3;
        const bool sunny = i < 14;
        const double spread = (hashNoise(31, key) + hashNoise(32, key) - 1) * (40 + 3.0 * (row.y % 400) / 3);
        const float x = sunny ? sunColumn + float(spread) : float(hashNoise(33, key)) * float(canvas.width());
        const float long_ = 3 + 14 * near * float(hashNoise(34, key));
        if (x < from || x + long_ > to)
            continue;
        canvas.span(row.y, x, x + long_, sunny ? m_world.palette.sun : m_world.palette.skyMiddle,
                    sunny ? 0.75f : 0.25f);
    }
}

// The pool of the headlights, brightest 6 to 14 m ahead, on top of what else there is.
void GroundPainter::lightRow(Canvas& canvas, const Row& row, const Shade& shade) const {
    const float rise = std::clamp((row.depth - 2.5f) / 5, 0.0f, 1.0f);
    const float strength = 0.62f * m_world.palette.lampLight * rise * std::exp(-row.depth / 26);
    const float sharp = 1 / ((1.9f + 0.13f * row.depth) * row.perMetre);
    const float straight = float(canvas.width()) / 2;
    QRgb* const pixels = canvas.line(row.y);
    constexpr int step = 8;
    const float clear = 1 - shade.hazePart;
    const int haze[3] = {int(shade.haze.r * shade.hazePart * 255), int(shade.haze.g * shade.hazePart * 255),
                         int(shade.haze.b * shade.hazePart * 255)};
    for (int x = 0; x < canvas.width(); x += step) {
        const float away = (float(x) + step / 2.0f - straight) * sharp;
        const Rgb light = (shade.light + kBeam * (strength * std::exp(-away * away))) * (256 * clear);
        const int times[3] = {int(light.r), int(light.g), int(light.b)};
        for (int i = x; i < std::min(x + step, canvas.width()); ++i) {
            const QRgb c = pixels[i];
            pixels[i] = qRgb(std::min(255, (qRed(c) * times[0] >> 8) + haze[0]),
                             std::min(255, (qGreen(c) * times[1] >> 8) + haze[1]),
                             std::min(255, (qBlue(c) * times[2] >> 8) + haze[2]));
        }
    }
}

void GroundPainter::paintCeiling(Canvas& canvas, const RoadView& view, double nearAhead,
                                 double farAhead) const {
    const Projection& p = view.projection();
    const Tunnel& tunnel = m_world.tunnel;
    const float over = p.focal * (tunnel.height - p.eye);
    const float nearDepth = std::max(view.nodeAt(nearAhead).forward, 0.4f);
    const float farDepth = std::max(view.nodeAt(farAhead).forward, 0.5f);
    const int first = std::max(0, int(std::floor(p.horizon - over / nearDepth)));
    const int end = std::min(canvas.height(), int(std::ceil(p.horizon - over / farDepth)));
    const float a = view.viewSide(tunnel.left);
    const float b = view.viewSide(tunnel.right);
    for (int y = first; y < end; ++y) {
        const float depth = over / std::max(p.horizon - float(y) - 0.5f, 0.5f);
        const RoadView::Node node = view.nodeAtDepth(depth);
        const double place = view.placeOf(double(node.ahead));
        const double half = double(depth * depth / over) / 2;
        const auto column = [&](float side) { return p.column(node.right + side / node.cosine, depth); };
        const Shade shade = m_world.shadeAt(place, double(depth));
        canvas.span(y, column(std::min(a, b)), column(std::max(a, b)), shade(hex(0x8c877c)));
        const float cover = dashCover(place - half, place + half, 8, 1.6);
        for (float part : {0.25f, 0.75f}) {
            const float side = a + (b - a) * part;
            canvas.span(y, column(side - 0.16f), column(side + 0.16f), kTubeLight, cover);
        }
    }
}

} // namespace ql240
