#include "canvas.h"

#include <QFileInfo>
#include <QFontMetricsF>
#include <QPainterPath>
#include <QSvgRenderer>
#include <algorithm>

namespace ql240::skin {

Canvas::Canvas(QPainter& painter, const Picture& picture, const Palette& palette, const QString& sourceFolder)
    : m_painter(painter), m_size(picture.size), m_palette(palette), m_sourceFolder(sourceFolder) {
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.setRenderHint(QPainter::SmoothPixmapTransform);
}

QColor Canvas::color(const char* name, double opacity) const {
    QColor color = m_palette.value(QString::fromLatin1(name), Qt::magenta);
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    return color;
}

void Canvas::outline(const QRectF& rect, double radius, const QColor& color, double width) {
    const double half = width / 2;
    m_painter.setPen(QPen(color, width));
    m_painter.setBrush(Qt::NoBrush);
    m_painter.drawRoundedRect(rect.adjusted(half, half, -half, -half), std::max(0.0, radius - half),
                              std::max(0.0, radius - half));
}

void Canvas::fill(const QRectF& rect, double radius, const QBrush& brush) {
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(brush);
    m_painter.drawRoundedRect(rect, radius, radius);
}

void Canvas::shade(const QRectF& rect, double radius, const QColor& top, const QColor& bottom) {
    QLinearGradient gradient(rect.topLeft(), rect.bottomLeft());
    gradient.setColorAt(0, top);
    gradient.setColorAt(1, bottom);
    fill(rect, radius, gradient);
}

void Canvas::text(const QRectF& box, Qt::Alignment align, const QString& text, double pixels,
                  QFont::Weight weight, const QColor& color, double spacing) {
    // Built at ten times the size, because font sizes are whole pixels.
    QFont font(QStringLiteral("Open Sans"));
    font.setPixelSize(qRound(pixels * 10));
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setLetterSpacing(QFont::AbsoluteSpacing, spacing * 10);
    QPainterPath path;
    path.addText(0, 0, font, text);
    path = QTransform::fromScale(0.1, 0.1).map(path);
    const QFontMetricsF metrics(font);
    const QRectF bounds = path.boundingRect();
    double x = box.left() - bounds.left();
    if (align & Qt::AlignHCenter)
        x = box.center().x() - bounds.center().x();
    else if (align & Qt::AlignRight)
        x = box.right() - bounds.right();
    const double baseline = box.center().y() + metrics.capHeight() / 20;
    m_painter.fillPath(path.translated(x, baseline), color);
}

QString Canvas::svgPath(const QString& name) const {
    return m_sourceFolder + QStringLiteral("/glyphs/") + name + QStringLiteral(".svg");
}

bool Canvas::art(const QString& name, const QRectF& rect) {
    QSvgRenderer renderer;
    if (!QFileInfo::exists(svgPath(name)) || !renderer.load(svgPath(name)))
        return false;
    renderer.render(&m_painter, rect);
    return true;
}

bool Canvas::glyph(const QString& name, const QRectF& rect, const QColor& color) {
    QSvgRenderer renderer;
    if (!QFileInfo::exists(svgPath(name)) || !renderer.load(svgPath(name)))
        return false;
    const double scale = m_painter.transform().m11();
    QImage mask((rect.size() * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::transparent);
    QPainter tint(&mask);
    tint.setRenderHint(QPainter::Antialiasing);
    renderer.render(&tint);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(mask.rect(), color);
    tint.end();
    m_painter.drawImage(rect, mask);
    return true;
}

bool Canvas::glyphCentred(const QString& name, const QRectF& rect, const QColor& color) {
    QSvgRenderer renderer;
    if (!QFileInfo::exists(svgPath(name)) || !renderer.load(svgPath(name)))
        return false;
    const QSizeF size = renderer.viewBoxF().size();
    const QPointF corner(rect.left() + std::floor((rect.width() - size.width()) / 2),
                         rect.top() + std::floor((rect.height() - size.height()) / 2));
    return glyph(name, QRectF(corner, size), color);
}

QString ShapeArguments::word() {
    if (atEnd()) {
        fail(QStringLiteral("too few arguments"));
        return {};
    }
    return m_shape.arguments[m_next++];
}

double ShapeArguments::number() {
    const QString text = word();
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (!isNumber)
        fail(QStringLiteral("\"%1\" is no number").arg(text));
    return value;
}

QRectF ShapeArguments::rect() {
    const double x = number();
    const double y = number();
    const double width = number();
    return {x, y, width, number()};
}

QColor ShapeArguments::color() {
    const QString name = word();
    if (!m_palette.contains(name))
        fail(QStringLiteral("\"%1\" is no colour of the palette").arg(name));
    return m_palette.value(name);
}

void ShapeArguments::fail(const QString& what) {
    if (m_error.isEmpty())
        m_error = QStringLiteral("line %1: %2: %3").arg(m_shape.line).arg(m_shape.verb, what);
}

} // namespace ql240::skin
