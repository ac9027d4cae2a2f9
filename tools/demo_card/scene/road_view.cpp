#include "demo_card/scene/road_view.h"

#include <cmath>

namespace ql240::demo {
namespace {

constexpr float kStep = 2.5f;
constexpr int kNodes = 200;
constexpr float kSharpest = 0.3f; // cosine of the angle at which a bend leaves the picture
constexpr float kEyeHeight = 1.35f;

RoadView::Node between(const RoadView::Node& a, const RoadView::Node& b, float part) {
    return {std::lerp(a.ahead, b.ahead, part), std::lerp(a.right, b.right, part),
            std::lerp(a.forward, b.forward, part), std::lerp(a.sine, b.sine, part),
            std::lerp(a.cosine, b.cosine, part)};
}

} // namespace

RoadView::RoadView(const Drive& drive, const DriveState& state, QSize size, bool backwards)
    : m_place(state.distance), m_backwards(backwards) {
    const float focal = static_cast<float>(size.width()) * 0.62f;
    const double nose = backwards ? -state.pitch : state.pitch;
    m_projection = {focal, static_cast<float>(size.width()) / 2,
                    static_cast<float>(size.height() * 0.47 + nose * static_cast<double>(focal)),
                    kEyeHeight + static_cast<float>(state.heave)};
    double angle = -state.yaw;
    double right = backwards ? state.lane : -state.lane;
    double forward = 0;
    for (int i = 0; i < kNodes; ++i) {
        const double ahead = i * static_cast<double>(kStep);
        if (std::cos(angle) < static_cast<double>(kSharpest))
            break;
        m_nodes.append({static_cast<float>(ahead), static_cast<float>(right), static_cast<float>(forward),
                        static_cast<float>(std::sin(angle)), static_cast<float>(std::cos(angle))});
        const double bend = drive.plan().curvature(placeOf(ahead + static_cast<double>(kStep) / 2));
        const double turn = (backwards ? -bend : bend) * static_cast<double>(kStep);
        right += std::sin(angle + turn / 2) * static_cast<double>(kStep);
        forward += std::cos(angle + turn / 2) * static_cast<double>(kStep);
        angle += turn;
    }
}

RoadView::Node RoadView::nodeAt(double ahead) const {
    const double index =
        std::clamp(ahead / static_cast<double>(kStep), 0.0, static_cast<double>(m_nodes.size() - 1) - 1e-6);
    const auto i = static_cast<qsizetype>(index);
    return between(m_nodes[i], m_nodes[i + 1], static_cast<float>(index - static_cast<double>(i)));
}

RoadView::Node RoadView::nodeAtDepth(float forward) const {
    const auto next = std::lower_bound(m_nodes.begin() + 1, m_nodes.end() - 1, forward,
                                       [](const Node& node, float depth) { return node.forward < depth; });
    const Node& from = *(next - 1);
    return between(from, *next, (forward - from.forward) / (next->forward - from.forward));
}

RoadView::Spot RoadView::spot(double ahead, float side) const {
    const Node node = nodeAt(ahead);
    return {node.right + side * node.cosine, node.forward - side * node.sine};
}

} // namespace ql240::demo
