// A small modal page over the settings dialog: rows of painted marks. It edits a copy of the values and never
// touches the card; the dialog passes values in before the page runs and takes them back if it was confirmed.
// Interface thread only.
#pragma once

#include "settings/choice_row.h"
#include "settings/confirmed_dialog.h"
#include "settings/page_layout.h"

namespace ql240 {

class SettingsPage : public ConfirmedDialog, private RowOwner {
    Q_OBJECT
public:
    const RowValues& values() const { return m_values; }
    void setValues(const RowValues& values);
    // Copies to `values` what this page edits, and nothing else.
    void handBack(RowValues& values) const;

protected:
    SettingsPage(QWidget* parent, const pages::PageLayout& layout);

    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enter() override;

private:
    const RowValues& rowValues() const override { return m_values; }
    bool isOperable(const OptionRow&) const override { return true; }
    void choose(const OptionRow& row, int value) override;
    void refresh();

    const pages::PageLayout& m_layout;
    MarkImages m_marks;
    RowValues m_values;
    QList<ChoiceRow*> m_rows;
};

} // namespace ql240
