#include "settings/config_window.h"

namespace ql240 {
namespace {

constexpr QSize kSize(554, 730);
constexpr QColor kBackground(9, 9, 9);

} // namespace

ConfigWindow::ConfigWindow(QWidget* parent) : QDialog(parent, Qt::FramelessWindowHint) {
    setWindowTitle(tr("QL240 Setting"));
    setFixedSize(kSize);
    setAutoFillBackground(true);
    QPalette colours = palette();
    colours.setColor(backgroundRole(), kBackground);
    setPalette(colours);
}

} // namespace ql240
