#pragma once

// The pictures that scenes are put together from, painted once for each scene: props at the roadside, wall
// covers, cars. All in their own colours; the light is added when they are drawn.

#include <QtGui/QColor>

#include "demo_card/scene/canvas.h"
#include "demo_card/scene/world.h"

namespace ql240 {

inline QColor toColor(Rgb c) {
    return QColor::fromRgb(toPixel(c));
}

// How a prop's picture hangs: its left edge is `offset` of its width left of where it stands.
struct PropArt {
    Mipmap picture;
    float offset = 0.5f;
    bool mirroredOnLeft = false;
};

PropArt paintProp(Prop prop, const World& world);

// Lit windows and signs where lampLight is high.
WallCover paintCover(Cover cover, float lampLight, std::uint32_t seed);

// A car is put together from its body's nearest end, the cabin some way behind that, and its flank. All ends
// have the car's width and height.
struct CarArt {
    Mipmap back, backBraking, front;
    Mipmap cabin;                                // none where the body is as high as the car
    float cabinFromBack = 0, cabinFromFront = 0; // m
    WallCover side;                              // drives to the right
    float width = 0, height = 0, length = 0;     // m
    float lampHeight = 0;                        // m; head and tail lamps
};

CarArt paintCar(CarLook look);

// Two steps of a walk.
Mipmap paintWalker(Rgb coat, bool stride);

enum class SignalColour { Red, Amber, Green };
Mipmap paintSignal(SignalColour colour);

// A soft round light.
Mipmap paintGlow();
// A soft-edged dark patch, for under cars.
Mipmap paintShadow();

} // namespace ql240
