#include "demo_card/scene/ground.h"

#include <algorithm>
#include <cmath>

namespace ql240::demo {
namespace {

using Marks = QList<GroundMark>;

constexpr Rgb kTubeLight{1.0f, 0.84f, 0.55f};

// How much of from … to is covered by dashes of length `on` repeated every `period`.
float dashCover(double from, double to, double period, double on) {
    const auto covered = [&](double at) {
        const double whole = std::floor(at / period);
        return whole * on + std::min(at - whole * period, on);
    };
    return static_cast<float>((covered(to) - covered(from)) / (to - from));
}

// One row of the picture and the strip of level ground that it shows.
struct Row {
    int y;
    float depth;
    double from, to; // distances along the road
    float perMetre;  // pixels, positive to the right as seen
    float middle;    // column of the road's middle

    double place() const { return (from + to) / 2; }
    float column(float side) const { return middle + side * perMetre; }
    void fill(Canvas& canvas, float left, float right, Rgb colour, float opacity = 1) const {
        const auto [x0, x1] = std::minmax({column(left), column(right)});
        canvas.span(y, x0, x1, colour, opacity);
    }
};

Row rowAt(const RoadView& view, int y, float height = 0) {
    const Projection& p = view.projection();
    const float away = std::abs(static_cast<float>(y) + 0.5f - p.horizon);
    const auto depthAt = [&](float rows) {
        return p.focal * std::abs(p.eye - height) / std::max(rows, 0.15f);
    };
    const float depth = depthAt(away);
    const RoadView::Node node = view.nodeAtDepth(depth);
    const float half = std::min((depthAt(away - 0.5f) - depthAt(away + 0.5f)) / 2 / node.cosine, 40.0f);
    const auto [from, to] = std::minmax({view.placeOf(static_cast<double>(node.ahead - half)),
                                         view.placeOf(static_cast<double>(node.ahead + half))});
    return {y, depth, from, to, view.viewSide(p.focal / (depth * node.cosine)), p.column(node.right, depth)};
}

void paintMarks(Canvas& canvas, const Marks& marks, const Row& row, const Shade& shade) {
    for (const GroundMark& mark : marks) {
        const double both = std::min(row.to, mark.to) - std::max(row.from, mark.from);
        if (both <= 0)
            continue;
        const double part = std::clamp((row.place() - mark.from) / (mark.to - mark.from), 0.0, 1.0);
        const double wide = mark.shape == GroundMark::Shape::Ellipse ? 2 * std::sqrt(part * (1 - part))
                            : mark.shape == GroundMark::Shape::Tip   ? 1 - part
                                                                     : 1;
        const float middle = (mark.left + mark.right) / 2;
        const float half = (mark.right - mark.left) / 2 * static_cast<float>(wide);
        row.fill(canvas, middle - half, middle + half, shade(mark.colour),
                 mark.opacity * static_cast<float>(both / (row.to - row.from)));
    }
}

// Water reflects the lower sky, and glitters below the sun.
void paintWater(Canvas& canvas, const Palette& palette, const Row& row, double time, float sunColumn) {
    const float near = std::clamp(12 / row.depth, 0.0f, 1.0f);
    row.fill(canvas, -1e4f, -12.6f, mix(palette.skyLow * 0.86f, palette.skyTop, 0.25f + 0.6f * near));
    const float bank = row.column(-12.6f);
    for (int i = 0; i < 20; ++i) {
        const auto key =
            (static_cast<std::int64_t>(row.y) * 64 + i) * 4096 + static_cast<std::int64_t>(time * 9) + i % 3;
        const double spread = (hashNoise(31, key) + hashNoise(32, key) - 1) * (40 + row.y % 400);
        const float x = sunColumn + static_cast<float>(spread);
        const float end = x + 3 + 14 * near * static_cast<float>(hashNoise(34, key));
        if (row.perMetre > 0 ? end < bank : x > bank)
            canvas.span(row.y, x, end, palette.sun, 0.7f);
    }
}

void paintRow(Canvas& canvas, const World& world, const Marks& marks, const Row& row) {
    const Shade shade = world.shadeAt(row.place(), static_cast<double>(row.depth));
    const float bands = 0.95f + 0.10f * dashCover(row.from, row.to, 14, 7);
    constexpr float far = 1e4f;
    row.fill(canvas, -far, 0, shade(world.leftGround * bands));
    row.fill(canvas, 0, far, shade(world.rightGround * bands));
    const bool inJunction = world.inJunction(row.place());
    const float dash = dashCover(row.from, row.to, 10, 4);
    for (const Stripe& stripe : world.stripes)
        if (stripe.kind == Stripe::Kind::Ground)
            row.fill(canvas, stripe.left, stripe.right, shade(stripe.colour));
        else if (!inJunction)
            row.fill(canvas, stripe.left, stripe.right, shade(stripe.colour),
                     stripe.kind == Stripe::Kind::Dashes ? dash : 1);
    if (inJunction)
        row.fill(canvas, -70, 70, shade(kAsphalt));
    paintMarks(canvas, marks, row, shade);
}

} // namespace

void paintGround(Canvas& canvas, const World& world, const RoadView& view, double time, float sunColumn) {
    const auto [from, to] = std::minmax({view.placeOf(0), view.placeOf(220)});
    Marks visible;
    std::copy_if(world.marks.begin(), world.marks.end(), std::back_inserter(visible),
                 [from = from, to = to](const GroundMark& mark) { return mark.to > from && mark.from < to; });
    for (int y = std::max(0, static_cast<int>(std::floor(view.projection().horizon))); y < canvas.height();
         ++y) {
        const Row row = rowAt(view, y);
        paintRow(canvas, world, visible, row);
        if (world.waterLeft)
            paintWater(canvas, world.palette, row, time, sunColumn);
    }
}

void paintCeiling(Canvas& canvas, const World& world, const RoadView& view, double nearAhead,
                  double farAhead) {
    const Projection& p = view.projection();
    const Tunnel& tunnel = world.tunnel;
    const auto rowOf = [&](double ahead) {
        return p.row(tunnel.height, std::max(view.nodeAt(ahead).forward, 0.4f));
    };
    const int end = std::min(canvas.height(), static_cast<int>(std::ceil(rowOf(farAhead))));
    for (int y = std::max(0, static_cast<int>(std::floor(rowOf(nearAhead)))); y < end; ++y) {
        const Row row = rowAt(view, y, tunnel.height);
        const Shade shade = world.shadeAt(row.place(), static_cast<double>(row.depth));
        row.fill(canvas, tunnel.left, tunnel.right, shade(hex(0x8c877c)));
        for (float part : {0.25f, 0.75f}) {
            const float lamp = tunnel.left + (tunnel.right - tunnel.left) * part;
            row.fill(canvas, lamp - 0.16f, lamp + 0.16f, kTubeLight, dashCover(row.from, row.to, 8, 1.6));
        }
    }
}

} // namespace ql240::demo
