#include "shapes.h"

namespace ql240::skin {
namespace {

struct NamedShape {
    const char* verb;
    PaintFunction paint;
};

constexpr NamedShape kShapes[] = {
    {"fill", paintFill},       {"shade", paintShade},   {"frame", paintFrame}, {"well", paintWell},
    {"glass", paintGlass},     {"paper", paintPaper},   {"text", paintText},   {"glyph", paintGlyph},
    {"art", paintArt},         {"button", paintButton}, {"dial", paintDial},   {"segment", paintSegment},
    {"digit", paintDigit},     {"axes", paintAxes},     {"globe", paintGlobe}, {"lamp", paintLamp},
    {"cursor", paintCursor},   {"window", paintWindow}, {"panel", paintPanel}, {"heading", paintHeading},
    {"sockets", paintSockets}, {"scale", paintScale},   {"mark", paintMark},   {"tickbox", paintTickBox},
    {"world", paintWorld},
};

} // namespace

PaintFunction findShape(const QString& verb) {
    for (const NamedShape& shape : kShapes) {
        if (verb == QLatin1String(shape.verb))
            return shape.paint;
    }
    return nullptr;
}

} // namespace ql240::skin
