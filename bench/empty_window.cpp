// The peer of start_up.py: an empty window of the viewer's size.
#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window(nullptr, Qt::FramelessWindowHint);
    window.setWindowTitle(QStringLiteral("Empty"));
    window.resize(1024, 645);
    window.show();
    return QApplication::exec();
}
