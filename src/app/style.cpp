#include "app/style.h"

#include <QApplication>
#include <QPalette>

#include "widgets/fonts.h"

namespace ql240 {
namespace {

// Dialogs stand out from the skinned windows, which are (9, 9, 9), and fields from dialogs.
constexpr QColor kWindow(34, 34, 33);
constexpr QColor kField(9, 9, 9);
constexpr QColor kRaised(48, 48, 47);
constexpr QColor kText(220, 220, 220);
constexpr QColor kFaint(120, 120, 120);
constexpr QColor kSelection(24, 86, 79); // the skin's accent, dark enough for white texts

QPalette darkPalette() {
    QPalette palette(kText, kRaised, kText, kField, kFaint, kText, kText, kField, kWindow);
    palette.setColor(QPalette::AlternateBase, kRaised);
    palette.setColor(QPalette::ToolTipBase, kRaised);
    palette.setColor(QPalette::ToolTipText, kText);
    palette.setColor(QPalette::PlaceholderText, kFaint);
    palette.setColor(QPalette::Highlight, kSelection);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(134, 230, 217));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, kFaint);
    return palette;
}

} // namespace

void prepareStyle() {
    if (!qEnvironmentVariableIsSet("QT_FONT_DPI"))
        qputenv("QT_FONT_DPI", "96");
}

void applyStyle() {
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication::setPalette(darkPalette());
    installFontSubstitutes();
    QApplication::setFont(uiFont(10));
}

} // namespace ql240
