#include <QPainterPath>
#include <QRadialGradient>
#include <QtMath>
#include <algorithm>

#include "land.h"
#include "shapes.h"

// The three round instruments and the readout of the dashboard. All numbers are in the dashboard panel's
// coordinates; a picture of a part of the panel translates the painter by its X and Y.
namespace ql240::skin {
namespace {

// The speed dial's scale: 24 segments clockwise from the lower left, 10 units each. Angles are clockwise from
// the top; these values match the 24 rectangles of the segment pictures within a pixel.
constexpr QPointF kDialCentre(319.4, 162.6);
constexpr double kDialStart = 194.7;
constexpr double kSegmentSpan = 11.27;
constexpr int kSegments = 24;
constexpr double kSegmentInner = 41.5;
constexpr double kSegmentOuter = 69.4;
constexpr double kSegmentGap = 1.7;
constexpr double kDialRim = 86;
constexpr QRectF kLamp(347, 191, 43, 43);
constexpr QPointF kDigits[] = {{286, 150}, {310, 150}, {334, 150}};

QPointF onDial(double radius, double angle) {
    const double radians = qDegreesToRadians(angle);
    return kDialCentre + QPointF(radius * qSin(radians), -radius * qCos(radians));
}

QRectF circle(QPointF centre, double radius) {
    return {centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius};
}

QPainterPath segmentPath(int index) {
    // Qt measures angles counter-clockwise from the right.
    const double from = 90 - (kDialStart + index * kSegmentSpan + kSegmentGap / 2);
    const double span = kSegmentSpan - kSegmentGap;
    QPainterPath path;
    path.arcMoveTo(circle(kDialCentre, kSegmentOuter), from);
    path.arcTo(circle(kDialCentre, kSegmentOuter), from, -span);
    path.arcTo(circle(kDialCentre, kSegmentInner), from - span, span);
    path.closeSubpath();
    return path;
}

// The seven bars of a digit in its 20 × 23 cell, slanted to the right: top, upper left, upper right, middle,
// lower left, lower right, bottom.
QPainterPath barPath(int bar) {
    constexpr double kLeft = 4;
    constexpr double kRight = 15.5;
    constexpr double kRows[] = {2.5, 11.5, 20.5};
    constexpr double kHalf = 1.5;
    const bool upright = bar == 1 || bar == 2 || bar == 4 || bar == 5;
    QPolygonF shape;
    if (upright) {
        const double x = bar == 1 || bar == 4 ? kLeft : kRight;
        const double top = kRows[bar < 3 ? 0 : 1] + 0.5;
        const double bottom = kRows[bar < 3 ? 1 : 2] - 0.5;
        shape << QPointF(x, top) << QPointF(x + kHalf, top + kHalf) << QPointF(x + kHalf, bottom - kHalf)
              << QPointF(x, bottom) << QPointF(x - kHalf, bottom - kHalf) << QPointF(x - kHalf, top + kHalf);
    } else {
        const double y = kRows[bar / 3];
        const double left = kLeft + 0.5;
        const double right = kRight - 0.5;
        shape << QPointF(left, y) << QPointF(left + kHalf, y - kHalf) << QPointF(right - kHalf, y - kHalf)
              << QPointF(right, y) << QPointF(right - kHalf, y + kHalf) << QPointF(left + kHalf, y + kHalf);
    }
    QPainterPath path;
    path.addPolygon(QTransform(1, 0, -0.07, 1, 0.8, 0).map(shape));
    path.closeSubpath();
    return path;
}

void paintBars(Canvas& canvas, int digit, QPointF at, const QColor& color) {
    static constexpr int kBars[] = {0x77, 0x24, 0x5d, 0x6d, 0x2e, 0x6b, 0x7b, 0x25, 0x7f, 0x6f};
    for (int bar = 0; bar < 7; ++bar) {
        if (kBars[digit] & (1 << bar))
            canvas.painter().fillPath(barPath(bar).translated(at), color);
    }
}

// A round face under glass: lit from above, with a rim of one line.
void paintFace(Canvas& canvas, QPointF centre, double radius, bool lit) {
    QRadialGradient face(centre - QPointF(0, radius * 0.5), radius * 1.5);
    face.setColorAt(0, canvas.color(lit ? "faceLight" : "face"));
    face.setColorAt(1, canvas.color("well"));
    canvas.fill(circle(centre, radius), radius, face);
    canvas.outline(circle(centre, radius), radius, canvas.color("line", lit ? 1.0 : 0.7), 1.2);
}

// A number at every fourth boundary, ticks between them.
void paintDialNumbers(Canvas& canvas, bool lit) {
    const QColor color = canvas.color(lit ? "text" : "textDim");
    for (int value = 0; value <= 10 * kSegments; value += 20) {
        const double angle = kDialStart + value * kSegmentSpan / 10;
        if (value % 40 != 0) {
            canvas.painter().setPen(QPen(color, 1));
            canvas.painter().drawLine(onDial(72, angle), onDial(75, angle));
            continue;
        }
        // Wide numbers at the sides are moved inwards, so that all have the same distance from the rim.
        const QString number = QString::number(value);
        const double reach = qAbs(qSin(qDegreesToRadians(angle))) * 2.2 * static_cast<double>(number.size());
        canvas.text(circle(onDial(82.5 - reach, angle), 10), Qt::AlignHCenter, number, 7.5, QFont::DemiBold,
                    color);
    }
}

void paintLampLens(Canvas& canvas, bool lit) {
    const QPointF centre = kLamp.center();
    if (lit) {
        QRadialGradient glow(centre, 21);
        glow.setColorAt(0.5, canvas.color("accent", 0.45));
        glow.setColorAt(1, canvas.color("accent", 0));
        canvas.fill(circle(centre, 21), 21, glow);
    }
    QRadialGradient lens(centre - QPointF(0, 6), 18);
    lens.setColorAt(0, canvas.color(lit ? "accentLight" : "faceLight"));
    lens.setColorAt(1, canvas.color(lit ? "accent" : "face"));
    canvas.fill(circle(centre, 13), 13, lens);
    canvas.outline(circle(centre, 13), 13, canvas.color(lit ? "accentLight" : "line"));
    canvas.text(circle(centre, 13), Qt::AlignHCenter, QStringLiteral("GPS"), 8, QFont::Bold,
                canvas.color(lit ? "base" : "textDim"));
}

void movePainter(Canvas& canvas, ShapeArguments& arguments) {
    const double x = arguments.number();
    canvas.painter().translate(x, arguments.number());
}

// "ghost": an instrument that isn't running, painted on the window's background.
bool readLit(ShapeArguments& arguments) {
    return arguments.word() == QLatin1String("lit");
}

void paintArrow(Canvas& canvas, QPointF from, QPointF to, const QColor& color, const QString& letter) {
    const QPointF along = (to - from) / QLineF(from, to).length();
    const QPointF across(-along.y(), along.x());
    canvas.painter().setPen(QPen(color, 2.5, Qt::SolidLine, Qt::RoundCap));
    canvas.painter().drawLine(from, to - along * 6);
    QPainterPath head;
    head.addPolygon(QPolygonF{to, to - along * 9 + across * 4.5, to - along * 9 - across * 4.5});
    canvas.painter().fillPath(head, color);
    canvas.text(circle(to + along * 9, 8), Qt::AlignHCenter, letter, 11, QFont::Bold,
                canvas.color("textBright"));
}

// A dot of land on the globe: its position on the disc of radius 1, y down, and how much it faces the viewer,
// 0 to 1.
struct EarthDot {
    QPointF place;
    double facing;
};

// The land seen from far above the Yellow Sea, in dots evenly spaced on the sphere (orthographic projection).
QList<EarthDot> visibleLand(const QList<QPolygonF>& land) {
    constexpr double kStep = 4.5;
    constexpr double kEyeEast = 118;
    const double eyeNorth = qDegreesToRadians(24.0);
    QList<EarthDot> dots;
    for (double north = -85; north < 90; north += kStep) {
        const double phi = qDegreesToRadians(north);
        const int count = std::max(1, qRound(360 * qCos(phi) / kStep));
        for (int i = 0; i < count; ++i) {
            const double east = i * 360.0 / count - 180;
            const double lambda = qDegreesToRadians(east - kEyeEast);
            const double facing = qSin(eyeNorth) * qSin(phi) + qCos(eyeNorth) * qCos(phi) * qCos(lambda);
            if (facing > 0 && isLand(land, {east, north})) {
                dots.append({{qCos(phi) * qSin(lambda),
                              qSin(eyeNorth) * qCos(phi) * qCos(lambda) - qCos(eyeNorth) * qSin(phi)},
                             facing});
            }
        }
    }
    return dots;
}

} // namespace

// dial X Y lit|ghost
void paintDial(Canvas& canvas, ShapeArguments& arguments) {
    movePainter(canvas, arguments);
    const bool lit = readLit(arguments);
    paintFace(canvas, kDialCentre, kDialRim, lit);
    for (int index = 0; index < kSegments; ++index)
        canvas.painter().fillPath(segmentPath(index), canvas.color("unlit", lit ? 1.0 : 0.6));
    paintDialNumbers(canvas, lit);
    for (const QPointF& place : kDigits)
        paintBars(canvas, 8, place, canvas.color("unlit", 0.55));
    paintLampLens(canvas, false);
}

// segment INDEX X Y
void paintSegment(Canvas& canvas, ShapeArguments& arguments) {
    const int index = qRound(arguments.number());
    movePainter(canvas, arguments);
    QRadialGradient light(kDialCentre, kSegmentOuter);
    light.setColorAt(kSegmentInner / kSegmentOuter, canvas.color("accentDeep"));
    light.setColorAt(0.85, canvas.color("accent"));
    light.setColorAt(1, canvas.color("accentLight"));
    canvas.painter().fillPath(segmentPath(index), light);
}

// digit VALUE
void paintDigit(Canvas& canvas, ShapeArguments& arguments) {
    paintBars(canvas, qBound(0, qRound(arguments.number()), 9), {}, canvas.color("textBright"));
}

// axes X Y lit|ghost: the three directions of the acceleration readings, in the colours of their traces
void paintAxes(Canvas& canvas, ShapeArguments& arguments) {
    movePainter(canvas, arguments);
    const bool lit = readLit(arguments);
    const QPointF centre(160.5, 163.5);
    paintFace(canvas, centre, 62, lit);
    canvas.painter().setBrush(Qt::NoBrush);
    for (const double radius : {16.0, 32.0, 48.0}) {
        canvas.painter().setPen(QPen(canvas.color(lit ? "line" : "unlit"), 1));
        canvas.painter().drawEllipse(centre + QPointF(0, 8), radius, radius * 0.5);
    }
    if (!lit)
        return;
    const QPointF origin = centre + QPointF(0, 8);
    paintArrow(canvas, origin, origin + QPointF(0, -42), canvas.color("axisZ"), QStringLiteral("Z"));
    paintArrow(canvas, origin, origin + QPointF(-34, 19), canvas.color("axisX"), QStringLiteral("X"));
    paintArrow(canvas, origin, origin + QPointF(34, 19), canvas.color("axisY"), QStringLiteral("Y"));
}

// globe X Y lit|ghost: the earth with a pin
void paintGlobe(Canvas& canvas, ShapeArguments& arguments) {
    movePainter(canvas, arguments);
    const bool lit = readLit(arguments);
    const QPointF centre(478.5, 163.5);
    constexpr double kEarth = 46;
    paintFace(canvas, centre, 62, lit);
    const QList<QPolygonF> land = readLand(canvas.sourceFolder());
    if (land.isEmpty()) {
        arguments.fail(QStringLiteral("no world.txt"));
        return;
    }
    canvas.outline(circle(centre, kEarth + 3), kEarth + 3, canvas.color(lit ? "line" : "unlit"));
    for (const EarthDot& dot : visibleLand(land)) {
        canvas.fill(circle(centre + dot.place * kEarth, 0.5 + 0.9 * dot.facing), 1.4,
                    canvas.color(lit ? "landLit" : "unlit", 0.35 + 0.65 * dot.facing));
    }
    if (lit) {
        canvas.fill(circle(centre - QPointF(0, 19), 5), 5, canvas.color("base"));
        canvas.glyph(QStringLiteral("pin"), QRectF(centre.x() - 12, centre.y() - 30, 24, 32),
                     canvas.color("accent"));
    }
}

// lamp X Y: the GPS lamp, lit
void paintLamp(Canvas& canvas, ShapeArguments& arguments) {
    movePainter(canvas, arguments);
    paintLampLens(canvas, true);
}

// cursor: the flag on top of the progress line, which is the picture's first column
void paintCursor(Canvas& canvas, ShapeArguments&) {
    QPainterPath flag;
    flag.addPolygon(QPolygonF{{0, 0}, {10, 0}, {10, 6}, {0, 12}});
    canvas.painter().fillPath(flag, canvas.color("accent"));
    canvas.fill(QRectF(1, 12, 1, canvas.size().height() - 12), 0, canvas.color("shadow"));
}

} // namespace ql240::skin
