#include "land.h"
#include "shapes.h"

// The parts of the settings windows: title bars, panels, sockets for marks, scales, and the world.
namespace ql240::skin {
namespace {

constexpr QSizeF kMark(14, 14);
constexpr QSizeF kTickBox(16, 15);

void paintSocketAt(Canvas& canvas, QPointF corner) {
    const QRectF ring = QRectF(corner, kMark).adjusted(1, 1, -1, -1);
    canvas.fill(ring, 6, canvas.color("well"));
    canvas.outline(ring, 6, canvas.color("ring"), 1.2);
}

} // namespace

// window BAR: a window's background, with a title bar of that height
void paintWindow(Canvas& canvas, ShapeArguments& arguments) {
    const double bar = arguments.number();
    const double width = canvas.size().width();
    canvas.fill(QRectF({}, canvas.size()), 0, canvas.color("base"));
    canvas.shade(QRectF(0, 0, width, bar - 1), 0, canvas.color("barTop"), canvas.color("bar"));
    canvas.fill(QRectF(0, bar - 1, width, 1), 0, canvas.color("line"));
    canvas.outline(QRectF({}, canvas.size()), 0, canvas.color("line"));
}

// panel X Y W H: a plate behind a group of rows
void paintPanel(Canvas& canvas, ShapeArguments& arguments) {
    const QRectF rect = arguments.rect();
    canvas.fill(rect, kRadius, canvas.color("panel"));
    canvas.outline(rect, kRadius, canvas.color("line"));
}

// heading X Y W H: the band behind a section's title
void paintHeading(Canvas& canvas, ShapeArguments& arguments) {
    const QRectF rect = arguments.rect();
    canvas.shade(rect, kRadius / 2, canvas.color("keyTop"), canvas.color("key"));
    canvas.fill(QRectF(rect.topLeft(), QSizeF(3, rect.height())), 0, canvas.color("accent"));
}

// sockets Y X…: sockets for marks, given by the marks' top left corners
void paintSockets(Canvas& canvas, ShapeArguments& arguments) {
    const double y = arguments.number();
    do {
        paintSocketAt(canvas, {arguments.number(), y});
    } while (!arguments.atEnd());
}

// scale Y X LABEL…: sockets for marks, given by their centres, on a common groove, each below its tick and
// label
void paintScale(Canvas& canvas, ShapeArguments& arguments) {
    const double y = arguments.number();
    QList<std::pair<double, QString>> steps;
    do {
        const double x = arguments.number();
        steps.append({x, arguments.word()});
    } while (!arguments.atEnd());
    canvas.fill(QRectF(steps.front().first, y - 1, steps.back().first - steps.front().first, 2), 0,
                canvas.color("line"));
    for (const auto& [x, label] : steps) {
        paintSocketAt(canvas, QPointF(x - kMark.width() / 2, y - kMark.height() / 2));
        canvas.fill(QRectF(x - 1, y - 13, 2, 4), 0, canvas.color("ring"));
        canvas.text(QRectF(x - 20, y - 27, 40, 12), Qt::AlignHCenter, label, 11, QFont::Normal,
                    canvas.color("text"));
    }
}

// mark on|off: the mark in a socket; "off" for a choice that can't be made
void paintMark(Canvas& canvas, ShapeArguments& arguments) {
    const QRectF ring = QRectF({0, 0}, kMark).adjusted(1, 1, -1, -1);
    if (arguments.word() == QLatin1String("on")) {
        canvas.fill(ring, 6, canvas.color("well"));
        canvas.outline(ring, 6, canvas.color("accent"), 1.6);
        canvas.fill(ring.adjusted(3, 3, -3, -3), 3, canvas.color("accentLight"));
        return;
    }
    canvas.fill(ring, 6, canvas.color("key"));
    canvas.fill(QRectF(4, 6, 6, 2), 1, canvas.color("textDim"));
}

// tickbox X Y empty|ticked|off
void paintTickBox(Canvas& canvas, ShapeArguments& arguments) {
    const double x = arguments.number();
    const QRectF box = QRectF({x, arguments.number()}, kTickBox).adjusted(0.5, 0, -0.5, 0);
    const QString look = arguments.word();
    const bool ticked = look == QLatin1String("ticked");
    const bool off = look == QLatin1String("off");
    canvas.fill(box, kRadius / 2, canvas.color(ticked ? "accent" : (off ? "key" : "well")));
    if (ticked)
        canvas.glyphCentred(QStringLiteral("tick"), box, canvas.color("base"));
    else if (off)
        canvas.fill(QRectF(box.center() - QPointF(3, 1), QSizeF(6, 2)), 1, canvas.color("textDim"));
    else
        canvas.outline(box, kRadius / 2, canvas.color("ring"), 1.2);
}

// world X Y SCALE SPACING: the land as dots, with longitude and latitude 0 at (X, Y) and SCALE pixels per
// degree
void paintWorld(Canvas& canvas, ShapeArguments& arguments) {
    const double x = arguments.number();
    const QPointF origin(x, arguments.number());
    const double scale = arguments.number();
    const double spacing = arguments.number();
    const QList<QPolygonF> land = readLand(canvas.sourceFolder());
    if (land.isEmpty()) {
        arguments.fail(QStringLiteral("no world.txt"));
        return;
    }
    for (double east = -187.5 + spacing / 2; east < 187.5; east += spacing) {
        for (double north = 88; north > -88; north -= spacing) {
            if (isLand(land, {east, north})) {
                const QPointF centre = origin + QPointF(east, -north) * scale;
                const double radius = spacing * scale * 0.34;
                canvas.fill(QRectF(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius), radius,
                            canvas.color("land"));
            }
        }
    }
}

} // namespace ql240::skin
