#include "app/style.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleOption>

#include "widgets/fonts.h"
#include "widgets/plain_text.h"
#include "widgets/skin.h"

namespace ql240 {
namespace {

// The skinned windows are (9, 9, 9): dialogs are lighter than they are, and input fields darker than dialogs.
constexpr QColor kWindow(34, 34, 33);
constexpr QColor kField(9, 9, 9);
constexpr QColor kRaised(48, 48, 47);
constexpr QColor kLine(62, 62, 59);
constexpr QColor kText(220, 220, 220);
constexpr QColor kFaint(120, 120, 120);
constexpr QColor kSelection(24, 86, 79); // the skin's accent, dark enough for white texts

QPalette darkPalette() {
    QPalette palette(kText, kRaised, kText, kField, kFaint, kText, kText, kField, kWindow);
    palette.setColor(QPalette::AlternateBase, kRaised);
    palette.setColor(QPalette::ToolTipBase, kWindow);
    palette.setColor(QPalette::ToolTipText, kText);
    palette.setColor(QPalette::PlaceholderText, kFaint);
    palette.setColor(QPalette::Highlight, kSelection);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(134, 230, 217));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, kFaint);
    return palette;
}

// Makes dialogs, message boxes and tooltips match the skin: flat borders and the skin's own icons.
class SkinStyle : public QProxyStyle {
public:
    SkinStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        return hint == SH_DialogButtonBox_ButtonsHaveIcons
                   ? 0
                   : QProxyStyle::styleHint(hint, option, widget, data);
    }

    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option,
                       const QWidget* widget) const override {
        switch (icon) {
            case SP_MessageBoxWarning:
                return skinIcon(skinPath(QStringLiteral("message_warning")));
            case SP_DirIcon:
                return skinIcon(skinPath(QStringLiteral("tree_folder")));
            case SP_DirHomeIcon:
                return skinIcon(skinPath(QStringLiteral("tree_home")));
            case SP_DriveHDIcon:
                return skinIcon(skinPath(QStringLiteral("tree_drive")));
            default:
                return QProxyStyle::standardIcon(icon, option, widget);
        }
    }

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        if (element != PE_PanelTipLabel) {
            QProxyStyle::drawPrimitive(element, option, painter, widget);
            return;
        }
        painter->setPen(kLine);
        painter->setBrush(option->palette.toolTipBase());
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
    }
};

} // namespace

void prepareStyle() {
    if (!qEnvironmentVariableIsSet("QT_FONT_DPI"))
        qputenv("QT_FONT_DPI", "96");
}

void applyStyle() {
    QApplication::setStyle(new SkinStyle);
    QApplication::setPalette(darkPalette());
    installFontSubstitutes();
    QApplication::setFont(uiFont(10));
    installPlainTexts(*qApp);
}

} // namespace ql240
