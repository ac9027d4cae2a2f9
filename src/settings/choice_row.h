// Keyboard and screen reader access to one painted row: an invisible child widget over the row takes the
// focus, turns arrow keys into choices and paints the focus frame. Mouse events pass through to the window,
// which paints the row. Interface thread only; owned by its window.
#pragma once

#include <QWidget>

#include "settings/option_rows.h"

namespace ql240 {

// The window that paints the rows and holds their values.
class RowOwner {
public:
    virtual ~RowOwner() = default;
    virtual const RowValues& rowValues() const = 0;
    virtual bool isOperable(const OptionRow& row) const = 0;
    // The user chose `value`; the owner may reject it.
    virtual void choose(const OptionRow& row, int value) = 0;
};

class ChoiceRow : public QWidget {
    Q_OBJECT
public:
    // `owner` is the window itself; `row` must outlive the widget.
    ChoiceRow(QWidget* window, RowOwner& owner, const OptionRow& row);

    const OptionRow& row() const { return m_row; }
    // Index of the chosen choice in the row's choices; -1 if none is.
    int chosenIndex() const;
    bool isOperable() const { return m_owner.isOperable(m_row); }
    void choose(int index);
    // Updates whether the row can be operated, and notifies screen readers if another choice has been set
    // since the last call.
    void refresh();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void step(int by);
    void tell();

    RowOwner& m_owner;
    const OptionRow& m_row;
    int m_reported = -1; // the chosen index last reported to screen readers
};

// One for each row of the table, in its order.
QList<ChoiceRow*> addChoiceRows(QWidget* window, RowOwner& owner, std::span<const OptionRow> rows);

// Makes Tab visit the window's widgets line by line, from left to right.
void setTabOrderByPlace(QWidget* window);

} // namespace ql240
