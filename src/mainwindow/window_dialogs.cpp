#include "mainwindow/window_dialogs.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QPrintDialog>

namespace ql240 {

void WindowDialogs::warn(QWidget* parent, const QString& title, const QString& text) {
    QMessageBox box(QMessageBox::Warning, title, {}, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.setText(text);
    box.exec();
}

QString WindowDialogs::askOpenFile(QWidget* parent, const QString& caption, const QString& filter) {
    return QFileDialog::getOpenFileName(parent, caption, QString(), filter);
}

QString WindowDialogs::askSaveFile(QWidget* parent, const QString& caption, const QString& name,
                                   const QString& filter) {
    return QFileDialog::getSaveFileName(parent, caption, name, filter);
}

bool WindowDialogs::askPrinter(QWidget* parent, QPrinter& printer) {
    QPrintDialog dialog(&printer, parent);
    return dialog.exec() == QDialog::Accepted;
}

} // namespace ql240
