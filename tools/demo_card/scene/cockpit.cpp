#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include "demo_card/scene/scene.h"

namespace ql240 {
namespace {

constexpr double kBonnetTop = 0.88; // of the picture's height

// The bonnet mirrors a little of the sky; its middle carries a crease.
void paintBonnet(QPainter& painter, double w, double h, const Palette& palette) {
    QPainterPath bonnet(QPointF(0, h));
    bonnet.lineTo(0, h * 0.972);
    bonnet.cubicTo(w * 0.16, h * 0.905, w * 0.34, h * 0.888, w * 0.5, h * 0.888);
    bonnet.cubicTo(w * 0.66, h * 0.888, w * 0.84, h * 0.905, w, h * 0.972);
    bonnet.lineTo(w, h);
    QLinearGradient paint(0, h * 0.885, 0, h);
    const Rgb mirrored = mix(palette.skyLow, hex(0x8090a0), 0.5f);
    paint.setColorAt(0, toColor(mirrored * 0.62f));
    paint.setColorAt(0.12, toColor(mirrored * 0.42f));
    paint.setColorAt(0.5, toColor(mix(mirrored, hex(0x11141a), 0.78f)));
    paint.setColorAt(1, QColor(14, 16, 20));
    painter.fillPath(bonnet, paint);
    painter.setPen(QPen(QColor(255, 255, 255, 34), h * 0.003));
    for (double side : {-1.0, 1.0}) {
        QPainterPath crease(QPointF(w * (0.5 + side * 0.13), h * 0.897));
        crease.quadTo(w * (0.5 + side * 0.18), h * 0.94, w * (0.5 + side * 0.25), h);
        painter.drawPath(crease);
    }
}

void paintRearWindow(QPainter& painter, double w, double h) {
    QPainterPath frame;
    frame.addRect(0, 0, w, h);
    QPainterPath window;
    window.moveTo(w * 0.075, h * 0.045);
    window.quadTo(w * 0.5, h * 0.0, w * 0.925, h * 0.045);
    window.quadTo(w * 0.985, h * 0.5, w * 0.995, h * 0.86);
    window.quadTo(w * 0.5, h * 0.905, w * 0.005, h * 0.86);
    window.quadTo(w * 0.015, h * 0.5, w * 0.075, h * 0.045);
    painter.setPen(QPen(QColor(40, 30, 20, 46), h * 0.004));
    for (int i = 1; i < 9; ++i)
        painter.drawLine(QPointF(w * 0.06, h * 0.09 * i + h * 0.03),
                         QPointF(w * 0.94, h * 0.09 * i + h * 0.03));
    painter.fillPath(frame.subtracted(window), QColor(15, 16, 19));
    painter.setPen(QPen(QColor(52, 54, 60), h * 0.006));
    painter.drawPath(window);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(26, 27, 31));
    painter.drawRoundedRect(QRectF(w * 0.42, h * 0.005, w * 0.16, h * 0.035), 4, 4);
}

} // namespace

Cockpit paintCockpit(QSize size, bool backwards, const Palette& palette) {
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(0);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    if (backwards)
        paintRearWindow(painter, size.width(), size.height());
    else
        paintBonnet(painter, size.width(), size.height(), palette);
    painter.end();
    const int top = backwards ? 0 : int(size.height() * kBonnetTop);
    return {picture.copy(0, top, size.width(), size.height() - top), top};
}

} // namespace ql240
