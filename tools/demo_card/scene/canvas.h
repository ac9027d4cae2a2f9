#pragma once

// The picture that a scene is painted into, and the few operations that do the painting: level spans for the
// ground, upright walls in perspective, scaled pictures and glows. All clip to the picture. One canvas a
// thread.

#include <QtCore/QRectF>
#include <QtGui/QImage>

#include "demo_card/scene/rgb.h"

namespace ql240 {

// A picture with its smaller versions, each half the size of the one before; premultiplied.
class Mipmap {
public:
    Mipmap() = default;
    explicit Mipmap(const QImage& picture);

    bool isNull() const { return m_levels.isEmpty(); }
    double aspect() const; // width over height
    // The version in which a pixel of the screen takes at most about one pixel, if there is one that large.
    const QImage& levelFor(double pixelsPerPixel) const;

private:
    QList<QImage> m_levels;
};

// What covers a wall; repeats in both directions. Walls are drawn by columns, which lie in one piece in
// memory because the picture is turned on its side.
struct WallCover {
    WallCover() = default;
    WallCover(const QImage& upright, float wide, float high);

    Mipmap turned; // x counts from the top, y along the wall
    float metresWide = 1;
    float metresHigh = 1;
};

// One end of an upright wall segment in camera space: right and forward in metres, and its place along the
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

    const QImage& image() const { return m_image; }
    int width() const { return m_width; }
    int height() const { return m_height; }
    QRgb* line(int y) { return m_pixels + qsizetype(y) * m_width; }

    // Pixels from x0 to x1 of a line, the ends by how much of them is covered.
    void span(int y, float x0, float x1, Rgb colour, float opacity = 1);
    void rectangle(QRectF area, Rgb colour, float opacity = 1);

    void wall(const Projection& projection, WallEnd a, WallEnd b, float bottom, float top,
              const WallCover& cover, const Shade& shade);
    void picture(const Mipmap& picture, QRectF area, const Shade& shade, bool mirrored = false);
    // A picture of the canvas's own width at a line, unscaled.
    void overlay(const QImage& picture, int top, const Shade& shade);
    // Adds light: the picture's grey times the colour.
    void glow(const Mipmap& picture, QRectF area, Rgb colour);

private:
    struct Column;
    void wallColumn(const Column& column);

    QImage m_image;
    QRgb* m_pixels;
    int m_width;
    int m_height;
};

} // namespace ql240
