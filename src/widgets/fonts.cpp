#include "widgets/fonts.h"

#include <QStringList>

namespace ql240 {
namespace {

constexpr int kPointsPerInch = 72;
constexpr int kDotsPerInch = 96;

QString latinFamily() {
    return QStringLiteral("Segoe UI");
}
QString koreanFamily() {
    return QStringLiteral("Gulim");
}

} // namespace

int fontPixels(int points) {
    return (points * kDotsPerInch + kPointsPerInch / 2) / kPointsPerInch;
}

QFont uiFont(int points, QFont::Weight weight) {
    QFont font;
    font.setFamilies({latinFamily(), koreanFamily()});
    font.setPixelSize(fontPixels(points));
    font.setWeight(weight);
    return font;
}

void installFontSubstitutes() {
    const QString openSans = QStringLiteral("Open Sans");
    const QString nanumGothic = QStringLiteral("NanumGothic");
    QFont::insertSubstitutions(latinFamily(), {openSans, nanumGothic});
    QFont::insertSubstitutions(koreanFamily(), {nanumGothic});
}

} // namespace ql240
