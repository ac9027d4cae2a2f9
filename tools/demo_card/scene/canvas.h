// The picture that a scene is painted into, and its few operations: horizontal spans for the ground, upright
// walls in perspective, scaled pictures. All clip to the picture. One canvas per thread.
#pragma once

#include <QImage>
#include <QPainter>
#include <QRectF>

#include "demo_card/scene/rgb.h"

namespace ql240::demo {

// A picture with smaller versions of it, each half the size of the one before; premultiplied.
class Mipmap {
public:
    explicit Mipmap(const QImage& picture);

    double aspect() const { return static_cast<double>(m_levels[0].width()) / m_levels[0].height(); }
    // The version of which one pixel covers about one screen pixel or less, if there is one that large.
    const QImage& levelFor(double pixelsPerPixel) const;

private:
    QList<QImage> m_levels;
};

// A wall's texture; repeats in both directions. Walls are drawn in columns, so the picture is turned on its
// side to keep a column contiguous in memory.
struct WallCover {
    WallCover(const QImage& upright, QSizeF size)
        : turned(upright.transformed(QTransform(0, 1, 1, 0, 0, 0))), metres(size) {}
    Mipmap turned; // x is the distance from the top, y along the wall
    QSizeF metres;
};

// One end of an upright wall segment in camera space: right and forward in metres, and its position along the
// cover.
struct WallEnd {
    float right;
    float forward;
    float along;
};

struct Projection {
    float focal;   // pixels
    float centre;  // column straight ahead
    float horizon; // row
    float eye;     // metres above the ground
    float column(float right, float forward) const { return centre + focal * right / forward; }
    float row(float height, float forward) const { return horizon - focal * (height - eye) / forward; }
};

class Canvas {
public:
    explicit Canvas(QSize size);

    QImage& image() { return m_image; }
    int width() const { return m_image.width(); }
    int height() const { return m_image.height(); }

    // Pixels from x0 to x1 of a row; the end pixels are anti-aliased by coverage.
    void span(int y, float x0, float x1, Rgb colour, float opacity = 1);
    void wall(const Projection& projection, WallEnd a, WallEnd b, float bottom, float top,
              const WallCover& cover, const Shade& shade);
    void picture(const Mipmap& picture, QRectF area, const Shade& shade, bool mirrored = false,
                 QPainter::CompositionMode mode = QPainter::CompositionMode_SourceOver);

private:
    struct Column;
    void wallColumn(Column column);

    QImage m_image;
    QRgb* m_pixels;
};

} // namespace ql240::demo
