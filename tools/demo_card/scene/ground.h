// Paints everything flat: the road with its markings, the ground beside it, and a tunnel's ceiling.
#pragma once

#include "demo_card/scene/road_view.h"
#include "demo_card/scene/world.h"

namespace ql240::demo {

// sunColumn: the sun's column, for its reflection on water.
void paintGround(Canvas& canvas, const World& world, const RoadView& view, double time, float sunColumn);
void paintCeiling(Canvas& canvas, const World& world, const RoadView& view, double nearAhead,
                  double farAhead);

} // namespace ql240::demo
