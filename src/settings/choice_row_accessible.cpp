#include "settings/choice_row_accessible.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>
#include <QWindow>

#include "settings/choice_row.h"
#include "settings/spoken_texts.h"

namespace ql240 {
namespace {

class ChoiceInterface : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    ChoiceInterface(ChoiceRow* row, int index) : m_row(row), m_index(index) {}

    bool isValid() const override { return !m_row.isNull(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return m_row ? m_row->window()->windowHandle() : nullptr; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(m_row); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::RadioButton; }
    void setText(QAccessible::Text, const QString&) override {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? spokenText(choice().name.text()) : QString();
    }

    QRect rect() const override {
        const QRect bounds = boundsOf(choice());
        return QRect(m_row->window()->mapToGlobal(bounds.topLeft()), bounds.size());
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        const bool chosen = choice().rule == MarkRule::AlwaysChosen || m_row->chosenIndex() == m_index;
        state.checkable = true;
        state.checked = chosen && choice().rule != MarkRule::AlwaysDisabled;
        state.readOnly = m_row->row().kind == RowKind::ShownOnly;
        state.focusable = !state.readOnly;
        state.focused = chosen && m_row->hasFocus();
        state.disabled = !m_row->isEnabled();
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

    QStringList actionNames() const override {
        return m_row->row().kind == RowKind::ShownOnly ? QStringList() : QStringList{pressAction()};
    }
    void doAction(const QString& name) override {
        if (name == pressAction())
            m_row->choose(m_index);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    const Choice& choice() const { return m_row->row().choices[static_cast<std::size_t>(m_index)]; }

    QPointer<ChoiceRow> m_row;
    int m_index;
};

class RowInterface : public QAccessibleWidget {
public:
    explicit RowInterface(ChoiceRow* row) : QAccessibleWidget(row) {
        for (int i = 0; !ticks() && i < static_cast<int>(row->row().choices.size()); ++i)
            m_choices.append(QAccessible::registerAccessibleInterface(new ChoiceInterface(row, i)));
    }
    ~RowInterface() override {
        for (const QAccessible::Id id : std::as_const(m_choices))
            QAccessible::deleteAccessibleInterface(id);
    }

    QAccessible::Role role() const override {
        return ticks() ? QAccessible::CheckBox : QAccessible::Grouping;
    }

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Name)
            return spokenText(row()->row().name.text());
        const int chosen = row()->chosenIndex();
        return kind == QAccessible::Value && chosen >= 0 && !ticks()
                   ? spokenText(row()->row().choices[static_cast<std::size_t>(chosen)].name.text())
                   : QString();
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = ticks();
        state.checked = ticks() && row()->chosenIndex() >= 0;
        state.readOnly = row()->row().kind == RowKind::ShownOnly;
        return state;
    }

    int childCount() const override { return static_cast<int>(m_choices.size()); }
    QAccessibleInterface* child(int index) const override {
        return index >= 0 && index < m_choices.size() ? QAccessible::accessibleInterface(m_choices[index])
                                                      : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return static_cast<int>(
            m_choices.indexOf(QAccessible::uniqueId(const_cast<QAccessibleInterface*>(child))));
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        for (int i = 0; i < childCount(); ++i) {
            if (child(i)->rect().contains(x, y))
                return child(i);
        }
        return nullptr;
    }
    QAccessibleInterface* focusChild() const override {
        return row()->hasFocus() ? child(row()->chosenIndex()) : nullptr;
    }

    QStringList actionNames() const override {
        const QStringList base = QAccessibleWidget::actionNames();
        return ticks() ? QStringList{toggleAction()} + base : base;
    }
    void doAction(const QString& name) override {
        if (name == toggleAction() && ticks())
            row()->choose(0);
        else
            QAccessibleWidget::doAction(name);
    }

private:
    ChoiceRow* row() const { return static_cast<ChoiceRow*>(widget()); }
    bool ticks() const { return row()->row().kind == RowKind::TickBox; }

    QList<QAccessible::Id> m_choices;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* row = qobject_cast<ChoiceRow*>(object);
    return row ? new RowInterface(row) : nullptr;
}

} // namespace

void installChoiceRowAccessibility() {
    static const bool installed = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    Q_UNUSED(installed)
}

} // namespace ql240
