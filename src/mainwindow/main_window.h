// The viewer's main window. Interface thread only.
#pragma once

#include <QMainWindow>

namespace ql240 {

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(QWidget* parent = nullptr, Qt::WindowFlags flags = {});
};

} // namespace ql240
