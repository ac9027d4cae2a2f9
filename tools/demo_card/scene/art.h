// The drawings that scenes are composed of, in their own colours; light is applied when they are painted. A
// name is a file in the folder art, or "file#part" for one of its elements. One unit of the file is one
// pixel; areas in currentColor are painted in the requested colour.
#pragma once

#include <map>

#include "demo_card/scene/canvas.h"
#include "demo_card/scene/world.h"

namespace ql240::demo {

// An upright picture. The elements "foot" and "light" of its drawing mark where it stands and where it
// shines.
struct Picture {
    Mipmap image;
    double foot = 0.5;     // of the width
    QPointF light{-1, -1}; // of width and height
};

// A car is composed of its body's nearest end, the cabin some distance behind that, and its side. Each end is
// as wide and high as the car.
struct CarArt {
    Picture back, braking, front;
    std::optional<Picture> cabin; // none if the body is as high as the car
    WallCover side;               // drives to the right
    float width, height, length;  // m
    float cabinFromBack;
};

// Reads each drawing once.
class Art {
public:
    const Picture& picture(const QString& name, Rgb colour = {});
    const CarArt& car(CarLook look);
    // The element "wall" at the brightness of the lamp light, with a matching part of the element "lit".
    const WallCover& cover(const QString& name, float lampLight);

private:
    std::map<std::pair<QString, QRgb>, Picture> m_pictures;
    std::map<QString, WallCover> m_covers;
    std::map<CarLook, CarArt> m_cars;
};

} // namespace ql240::demo
