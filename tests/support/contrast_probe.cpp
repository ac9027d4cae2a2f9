#include "support/contrast_probe.h"

#include <QFontMetricsF>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace ql240::test {
namespace {

double luminance(QRgb color) {
    const auto linear = [](int value) {
        const double part = value / 255.0;
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) + 0.0722 * linear(qBlue(color));
}

} // namespace

double contrast(QRgb a, QRgb b) {
    const double first = luminance(a) + 0.05;
    const double second = luminance(b) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

// Hands everything on to a painter on the image; only texts are looked at first.
class ContrastProbe::Engine : public QPaintEngine {
public:
    explicit Engine(const QImage& ground)
        : QPaintEngine(AllFeatures), m_image(ground.convertToFormat(QImage::Format_ARGB32_Premultiplied)) {}

    bool begin(QPaintDevice*) override { return m_painter.begin(&m_image); }
    bool end() override { return m_painter.end(); }
    Type type() const override { return User; }

    void updateState(const QPaintEngineState& painterState) override;
    void drawPath(const QPainterPath& path) override { m_painter.drawPath(path); }
    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override;
    void drawPixmap(const QRectF& target, const QPixmap& pixmap, const QRectF& source) override {
        m_painter.drawPixmap(target, pixmap, source);
    }
    void drawTextItem(const QPointF& at, const QTextItem& item) override;

    const QImage& image() const { return m_image; }
    const QList<TextOnGround>& texts() const { return m_texts; }

private:
    void applyClip(const QPaintEngineState& painterState);
    double worstContrast(const QRect& place, QRgb color) const;

    QImage m_image;
    QPainter m_painter;
    QList<TextOnGround> m_texts;
};

void ContrastProbe::Engine::updateState(const QPaintEngineState& painterState) {
    m_painter.setTransform(painterState.transform());
    m_painter.setPen(painterState.pen());
    m_painter.setBrush(painterState.brush());
    m_painter.setBrushOrigin(painterState.brushOrigin());
    m_painter.setFont(painterState.font());
    m_painter.setBackground(painterState.backgroundBrush());
    m_painter.setBackgroundMode(painterState.backgroundMode());
    m_painter.setRenderHints(m_painter.renderHints(), false);
    m_painter.setRenderHints(painterState.renderHints());
    m_painter.setCompositionMode(painterState.compositionMode());
    m_painter.setOpacity(painterState.opacity());
    if (painterState.state() & (DirtyClipRegion | DirtyClipPath | DirtyClipEnabled))
        applyClip(painterState);
}

// The painter's clip is in its own coordinates, the widget's (system) clip in those of the device.
void ContrastProbe::Engine::applyClip(const QPaintEngineState& painterState) {
    const bool isOff = !painterState.isClipEnabled() || painterState.clipOperation() == Qt::NoClip;
    if (isOff)
        m_painter.setClipping(false);
    else if (painterState.state() & DirtyClipPath)
        m_painter.setClipPath(painterState.clipPath(), painterState.clipOperation());
    else if (painterState.state() & DirtyClipRegion)
        m_painter.setClipRegion(painterState.clipRegion(), painterState.clipOperation());
}

void ContrastProbe::Engine::drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) {
    if (mode == PolylineMode)
        m_painter.drawPolyline(points, count);
    else
        m_painter.drawPolygon(points, count, mode == WindingMode ? Qt::WindingFill : Qt::OddEvenFill);
}

void ContrastProbe::Engine::drawTextItem(const QPointF& at, const QTextItem& item) {
    const QRectF letters = QFontMetricsF(item.font()).tightBoundingRect(item.text()).translated(at);
    QRectF place = m_painter.transform().mapRect(letters);
    if (m_painter.hasClipping())
        place &= m_painter.transform().mapRect(m_painter.clipBoundingRect());
    const QRect pixels = place.toAlignedRect() & m_image.rect();
    if (!pixels.isEmpty() && !item.text().trimmed().isEmpty()) {
        const QColor color = m_painter.pen().color();
        m_texts.append({item.text(), pixels, color, worstContrast(pixels, color.rgb())});
    }
    m_painter.drawText(at, item.text());
}

double ContrastProbe::Engine::worstContrast(const QRect& place, QRgb color) const {
    double worst = 21;
    for (int y = place.top(); y <= place.bottom(); ++y)
        for (int x = place.left(); x <= place.right(); ++x)
            worst = std::min(worst, test::contrast(m_image.pixel(x, y), color));
    return worst;
}

ContrastProbe::ContrastProbe(const QImage& ground)
    : QImage(ground), m_engine(std::make_unique<Engine>(ground)) {}
ContrastProbe::~ContrastProbe() = default;

QPaintEngine* ContrastProbe::paintEngine() const {
    return m_engine.get();
}

const QImage& ContrastProbe::image() const {
    return m_engine->image();
}

const QList<TextOnGround>& ContrastProbe::texts() const {
    return m_engine->texts();
}

} // namespace ql240::test
