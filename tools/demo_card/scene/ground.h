#pragma once

// Paints everything that lies flat: the road with its markings, what is beside it, and a tunnel's ceiling.

#include <vector>

#include "demo_card/scene/road_view.h"
#include "demo_card/scene/world.h"

namespace ql240 {

class GroundPainter {
public:
    GroundPainter(const World& world, bool backwards);

    // sunColumn: where the sun stands, for its trace on water.
    void paint(Canvas& canvas, const RoadView& view, double time, float sunColumn);
    void paintCeiling(Canvas& canvas, const RoadView& view, double nearAhead, double farAhead) const;

private:
    struct Row; // one line of the picture and the strip of ground that it shows
    Row rowAt(const RoadView& view, int y) const;
    void paintRow(Canvas& canvas, const Row& row) const;
    void paintLanes(Canvas& canvas, const Row& row, const Shade& shade) const;
    void paintMarks(Canvas& canvas, const Row& row, const Shade& shade) const;
    void paintWater(Canvas& canvas, const Row& row, double time, float sunColumn) const;
    void lightRow(Canvas& canvas, const Row& row, const Shade& shade) const;
    void findVisibleMarks(const RoadView& view);

    const World& m_world;
    bool m_beams; // the car's own headlights
    std::vector<GroundMark> m_visible;
    std::vector<std::pair<double, float>> m_arrows;
};

} // namespace ql240
