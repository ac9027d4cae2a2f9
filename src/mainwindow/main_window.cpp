#include "mainwindow/main_window.h"

namespace ql240 {

MainWindow::MainWindow(QWidget* parent, Qt::WindowFlags flags) : QMainWindow(parent, flags) {
    setFixedSize(1024, 645);
    setWindowTitle(tr("QL240 Viewer"));
}

} // namespace ql240
