// The main window's buttons, created, placed and named from the layout's table. The window owns the widgets.
// Interface thread only.
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
    // Sets the tooltips in the current language.
    void retranslateButtons();
    // Shows `next` in place of `old` and moves the focus to it.
    void replace(layout::ButtonId old, layout::ButtonId next);

    QAbstractButton* at(layout::ButtonId id) const { return m_buttons[static_cast<std::size_t>(id)]; }
    // The button as a ClearButton, which all but the logo are.
    ClearButton* controlAt(layout::ButtonId id) const;

private:
    std::array<QAbstractButton*, layout::kButtonCount> m_buttons{};
};

} // namespace ql240
