#include "shapes.h"

namespace ql240::skin {
namespace {

struct NamedShape {
    const char* verb;
    PaintFunction paint;
};

constexpr NamedShape kShapes[] = {
    {"fill", paintFill},     {"shade", paintShade}, {"frame", paintFrame},     {"well", paintWell},
    {"paper", paintPaper},   {"text", paintText},   {"glyph", paintGlyph},     {"art", paintArt},
    {"button", paintButton}, {"dial", paintDial},   {"segment", paintSegment}, {"digit", paintDigit},
    {"axes", paintAxes},     {"globe", paintGlobe}, {"lamp", paintLamp},       {"cursor", paintCursor},
};

} // namespace

PaintFunction findShape(const QString& verb) {
    for (const NamedShape& shape : kShapes) {
        if (verb == QLatin1String(shape.verb)) {
            return shape.paint;
        }
    }
    return nullptr;
}

} // namespace ql240::skin
