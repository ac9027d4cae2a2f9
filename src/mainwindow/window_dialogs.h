// The questions that the main window asks its user. Tests answer them without a user. Interface thread only.
#pragma once

#include <QString>

class QPrinter;
class QWidget;

namespace ql240 {

class WindowDialogs {
public:
    virtual ~WindowDialogs() = default;

    virtual void warn(QWidget* parent, const QString& title, const QString& text);

    // The path chosen, empty when the dialog was cancelled.
    virtual QString askOpenFile(QWidget* parent, const QString& caption, const QString& filter);
    virtual QString askSaveFile(QWidget* parent, const QString& caption, const QString& name,
                                const QString& filter);

    // Lets the user set the printer up; false when nothing shall be printed.
    virtual bool askPrinter(QWidget* parent, QPrinter& printer);
};

} // namespace ql240
