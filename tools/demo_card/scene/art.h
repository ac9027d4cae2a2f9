// The drawings that scenes are put together from, in their own colours; the light is added when they are
// painted. A name is a file of the folder art, or "file#part" for one element of it. Its pixels are the
// file's units; what it leaves open (currentColor) is painted in the colour that is asked for.
#pragma once

#include <map>

#include "demo_card/scene/canvas.h"
#include "demo_card/scene/world.h"

namespace ql240::demo {

// An upright picture. The elements "foot" and "light" of its drawing say where it stands and where it shines.
struct Picture {
    Mipmap image;
    double foot = 0.5;     // of the width
    QPointF light{-1, -1}; // of width and height
};

// A car is put together from its body's nearest end, the cabin some way behind that, and its flank. All ends
// have the car's width and height.
struct CarArt {
    Picture back, braking, front;
    std::optional<Picture> cabin; // none where the body is as high as the car
    WallCover side;               // drives to the right
    float width, height, length;  // m
    float cabinFromBack;
};

// Reads each drawing once.
class Art {
public:
    const Picture& picture(const QString& name, Rgb colour = {});
    const CarArt& car(CarLook look);
    // Its element "wall", as bright as the lamps leave it, with as much of its element "lit".
    const WallCover& cover(const QString& name, float lampLight);

private:
    std::map<std::pair<QString, QRgb>, Picture> m_pictures;
    std::map<QString, WallCover> m_covers;
    std::map<CarLook, CarArt> m_cars;
};

} // namespace ql240::demo
