// The main window's buttons: made, placed and named by the layout's table. Their widgets belong to the
// window. Interface thread only.
#pragma once

#include <QCoreApplication>
#include <array>

#include "mainwindow/main_window_layout.h"

class QAbstractButton;
class QWidget;

namespace ql240 {

class ClearButton;

class MainWindowButtons {
    Q_DECLARE_TR_FUNCTIONS(ql240::MainWindow)
public:
    void make(QWidget* window);
    // Sets the hover texts in the current language.
    void retranslateButtons();
    // Shows one button in place of another; the focus goes on to it.
    void replace(layout::ButtonId old, layout::ButtonId next);

    QAbstractButton* at(layout::ButtonId id) const { return m_buttons[static_cast<std::size_t>(id)]; }
    // Every button but the logo is of this class.
    ClearButton* controlAt(layout::ButtonId id) const;

private:
    std::array<QAbstractButton*, layout::kButtonCount> m_buttons{};
};

} // namespace ql240
