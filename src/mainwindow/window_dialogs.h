// The dialogs that the main window opens, replaceable in tests. Interface thread only.
#pragma once

#include <QString>

class QPrinter;
class QWidget;

namespace ql240 {

class WindowDialogs {
public:
    virtual ~WindowDialogs() = default;

    virtual void warn(QWidget* parent, const QString& title, const QString& text);

    // The path chosen; empty when the dialog was cancelled.
    virtual QString askOpenFile(QWidget* parent, const QString& caption, const QString& filter);
    virtual QString askSaveFile(QWidget* parent, const QString& caption, const QString& name,
                                const QString& filter);

    // Lets the user configure the printer; false if the dialog was cancelled.
    virtual bool askPrinter(QWidget* parent, QPrinter& printer);
};

} // namespace ql240
