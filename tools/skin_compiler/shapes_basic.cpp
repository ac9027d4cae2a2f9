#include "shapes.h"

namespace ql240::skin {
namespace {

enum Look { Normal, Hover, Pressed };

Qt::Alignment alignment(const QString& word) {
    if (word == QLatin1String("left"))
        return Qt::AlignLeft;
    return word == QLatin1String("right") ? Qt::AlignRight : Qt::AlignHCenter;
}

// A key is raised when normal, lit when hovered and filled with the accent colour when pressed.
void paintKeyGround(Canvas& canvas, const QRectF& rect, Look look) {
    if (look == Pressed) {
        canvas.shade(rect, kRadius, canvas.color("accentDeep"), canvas.color("accent"));
        return;
    }
    const bool hover = look == Hover;
    canvas.shade(rect, kRadius, canvas.color(hover ? "keyHoverTop" : "keyTop"),
                 canvas.color(hover ? "keyHover" : "key"));
    canvas.fill(rect.adjusted(kRadius, 1, -kRadius, 0)
                    .intersected(QRectF(rect.left(), rect.top() + 1, rect.width(), 1)),
                0, canvas.color("gloss"));
    canvas.outline(rect, kRadius, canvas.color(hover ? "accent" : "line"));
}

// A key without a background until the pointer is on it: the small commands of the title bars. An outline
// would be too close to the glyph.
void paintFlatGround(Canvas& canvas, const QRectF& rect, Look look) {
    if (look == Hover)
        canvas.shade(rect, kRadius, canvas.color("keyHoverTop"), canvas.color("keyHover"));
    else if (look == Pressed)
        paintKeyGround(canvas, rect, look);
}

// A key that the program labels in (200, 200, 200): its pressed look is sunken and stays dark.
void paintTextGround(Canvas& canvas, const QRectF& rect, Look look) {
    if (look != Pressed) {
        paintKeyGround(canvas, rect, look);
        return;
    }
    canvas.shade(rect, kRadius, canvas.color("base"), canvas.color("well"));
    canvas.outline(rect, kRadius, canvas.color("accent"), 2);
}

} // namespace

void paintFill(Canvas& canvas, ShapeArguments& arguments) {
    const QRectF rect = arguments.rect();
    const QColor color = arguments.color();
    canvas.fill(rect, arguments.atEnd() ? 0 : arguments.number(), color);
}

void paintShade(Canvas& canvas, ShapeArguments& arguments) {
    const QRectF rect = arguments.rect();
    const QColor top = arguments.color();
    const QColor bottom = arguments.color();
    canvas.shade(rect, arguments.atEnd() ? 0 : arguments.number(), top, bottom);
}

void paintFrame(Canvas& canvas, ShapeArguments& arguments) {
    const QRectF rect = arguments.rect();
    const QColor color = arguments.color();
    canvas.outline(rect, arguments.atEnd() ? 0 : arguments.number(), color);
}

// A sunken area: dark, its upper edge in shadow, its lower edge lit.
void paintWell(Canvas& canvas, ShapeArguments& arguments) {
    const QRectF rect = arguments.rect();
    const double radius = arguments.atEnd() ? kRadius : arguments.number();
    canvas.fill(rect, radius, canvas.color("well"));
    canvas.shade(QRectF(rect.left(), rect.top(), rect.width(), 5), 0, canvas.color("shadow"),
                 canvas.color("shadow", 0));
    canvas.outline(rect, radius, canvas.color("line"));
}

// A screen that is off: light from above on its glass.
void paintGlass(Canvas& canvas, ShapeArguments& arguments) {
    const QRectF rect = arguments.rect();
    QRadialGradient light(QPointF(rect.center().x(), rect.top()), rect.width() * 0.6);
    light.setColorAt(0, canvas.color("bar"));
    light.setColorAt(1, canvas.color("well"));
    canvas.fill(rect, 0, light);
}

// A light plate for dark text.
void paintPaper(Canvas& canvas, ShapeArguments& arguments) {
    const QRectF rect = arguments.rect();
    canvas.shade(rect, kRadius / 2, canvas.color("paperTop"), canvas.color("paper"));
}

void paintText(Canvas& canvas, ShapeArguments& arguments) {
    const QRectF box = arguments.rect();
    const Qt::Alignment align = alignment(arguments.word());
    const double pixels = arguments.number();
    const QColor color = arguments.color();
    const QString text = arguments.word();
    const QString weight = arguments.atEnd() ? QString() : arguments.word();
    const bool bold = weight == QLatin1String("bold");
    const bool caption = weight == QLatin1String("caption");
    canvas.text(box, align, text, pixels, bold ? QFont::Bold : (caption ? QFont::DemiBold : QFont::Normal),
                color, caption ? 0.6 : 0);
}

void paintGlyph(Canvas& canvas, ShapeArguments& arguments) {
    const QString name = arguments.word();
    const QRectF rect = arguments.rect();
    if (!canvas.glyphCentred(name, rect, arguments.color()))
        arguments.fail(QStringLiteral("no glyph \"%1\"").arg(name));
}

void paintArt(Canvas& canvas, ShapeArguments& arguments) {
    const QString name = arguments.word();
    if (!canvas.art(name, arguments.rect()))
        arguments.fail(QStringLiteral("no drawing \"%1\"").arg(name));
}

void paintButton(Canvas& canvas, ShapeArguments& arguments) {
    const QString style = arguments.word();
    const Look look = static_cast<Look>(qRound(arguments.number()));
    const QRectF all({}, canvas.size());
    if (style == QLatin1String("key")) {
        const double margin = all.height() > 30 ? 2 : 0;
        paintKeyGround(canvas, all.adjusted(margin, margin, -margin, -margin), look);
    } else if (style == QLatin1String("flat")) {
        paintFlatGround(canvas, all, look);
    } else if (style == QLatin1String("text")) {
        paintTextGround(canvas, all, look);
    } else if (style == QLatin1String("narrow")) { // horizontal neighbours overlap by four pixels
        paintTextGround(canvas, all.adjusted(3, 0, -3, 0), look);
    } else if (style == QLatin1String("low")) { // extends into the heading above it
        paintTextGround(canvas, all.adjusted(0, 4, 0, -4), look);
    } else {
        arguments.fail(QStringLiteral("\"%1\" is no style of buttons").arg(style));
    }
    if (!arguments.atEnd()) {
        static constexpr const char* kGlyphColors[] = {"textBright", "accentLight", "base"};
        const QString glyph = arguments.word();
        if (!canvas.glyphCentred(glyph, all, canvas.color(kGlyphColors[look])))
            arguments.fail(QStringLiteral("no glyph \"%1\"").arg(glyph));
    }
}

} // namespace ql240::skin
