// The parameters of a shape's paint function: the painter in logical pixels, the palette, the glyphs and the
// shape's arguments, which are read one after the other.
#pragma once

#include <QFont>
#include <QPainter>
#include <QRectF>

#include "picture_table.h"

namespace ql240::skin {

// The corner radius of all plates, wells and keys.
inline constexpr double kRadius = 4.0;

class Canvas {
public:
    Canvas(QPainter& painter, const Picture& picture, const Palette& palette, const QString& sourceFolder);

    QPainter& painter() { return m_painter; }
    QSizeF size() const { return m_size; }
    const QString& sourceFolder() const { return m_sourceFolder; }
    // A colour of the palette, its opacity scaled by `opacity`.
    QColor color(const char* name, double opacity = 1.0) const;

    // One stroke or one filled path. Rectangles are given by their outer edge and drawn with crisp lines.
    void outline(const QRectF& rect, double radius, const QColor& color, double width = 1.0);
    void fill(const QRectF& rect, double radius, const QBrush& brush);
    // A vertical gradient, lit from above.
    void shade(const QRectF& rect, double radius, const QColor& top, const QColor& bottom);
    // Draws a text as outlines, so that it doesn't depend on the machine's hinting. Vertically, only the cap
    // height counts.
    void text(const QRectF& box, Qt::Alignment align, const QString& text, double pixels,
              QFont::Weight weight, const QColor& color, double spacing = 0.0);
    // An SVG of the glyph folder in one colour; false if there is no such glyph.
    bool glyph(const QString& name, const QRectF& rect, const QColor& color);
    bool glyphCentred(const QString& name, const QRectF& rect, const QColor& color);
    // An SVG in its own colours.
    bool art(const QString& name, const QRectF& rect);

private:
    QString svgPath(const QString& name) const;

    QPainter& m_painter;
    QSizeF m_size;
    const Palette& m_palette;
    QString m_sourceFolder;
};

// The words of one shape. After the first error every further read gives a zero value; error() says what was
// wrong.
class ShapeArguments {
public:
    ShapeArguments(const Shape& shape, const Palette& palette) : m_shape(shape), m_palette(palette) {}

    QString word();
    double number();
    QRectF rect();
    QColor color();
    bool atEnd() const { return m_next >= m_shape.arguments.size(); }
    void fail(const QString& what);
    const QString& error() const { return m_error; }

private:
    const Shape& m_shape;
    const Palette& m_palette;
    qsizetype m_next = 0;
    QString m_error;
};

} // namespace ql240::skin
