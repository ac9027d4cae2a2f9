#include "widgets/accessible_parts.h"

#include <QAccessibleWidget>
#include <QVariant>

#include "widgets/image_buttons.h"

namespace ql240 {
namespace {

constexpr char kRole[] = "ql240AccessibleRole";
constexpr char kGauge[] = "ql240AccessibleGauge";

class GaugeInterface : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    GaugeInterface(QWidget* widget, AccessibleGauge& gauge)
        : QAccessibleWidget(widget, QAccessible::Slider), m_gauge(gauge) {}

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Value)
            return m_gauge.gaugeText();
        return kind == QAccessible::Description ? m_gauge.gaugeDetails() : QAccessibleWidget::text(kind);
    }
    QVariant currentValue() const override { return m_gauge.gaugeValue(); }
    void setCurrentValue(const QVariant& value) override {
        if (widget()->isEnabled())
            m_gauge.setGaugeValue(value.toInt());
    }
    QVariant maximumValue() const override { return m_gauge.gaugeMaximum(); }
    QVariant minimumValue() const override { return 0; }
    QVariant minimumStepSize() const override { return 1; }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }

private:
    AccessibleGauge& m_gauge;
};

class ButtonInterface : public QAccessibleWidget {
public:
    explicit ButtonInterface(ClearButton* button) : QAccessibleWidget(button, QAccessible::Button) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = button()->latches();
        state.checked = button()->isLatched();
        state.pressed = button()->isDown();
        return state;
    }
    QStringList actionNames() const override {
        return button()->isEnabled() ? QStringList{pressAction()} + QAccessibleWidget::actionNames()
                                     : QStringList();
    }
    void doAction(const QString& name) override {
        if (name == pressAction())
            button()->click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    ClearButton* button() const { return static_cast<ClearButton*>(widget()); }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (!widget)
        return nullptr;
    if (auto* button = qobject_cast<ClearButton*>(widget))
        return new ButtonInterface(button);
    if (void* gauge = widget->property(kGauge).value<void*>())
        return new GaugeInterface(widget, *static_cast<AccessibleGauge*>(gauge));
    const QVariant role = widget->property(kRole);
    return role.isValid() ? new QAccessibleWidget(widget, static_cast<QAccessible::Role>(role.toInt()))
                          : nullptr;
}

} // namespace

void installAccessibleParts() {
    static const bool installed = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    Q_UNUSED(installed)
}

// Qt creates and caches the accessible interface when it first reports a change, such as a new name, so the
// role must be set before that.
void describeGauge(QWidget* widget, AccessibleGauge* gauge) {
    installAccessibleParts();
    widget->setProperty(kGauge, QVariant::fromValue(static_cast<void*>(gauge)));
}

void tellGaugeChanged(QWidget* widget, const AccessibleGauge& gauge) {
    if (!QAccessible::isActive())
        return;
    QAccessibleValueChangeEvent event(widget, gauge.gaugeValue());
    QAccessible::updateAccessibility(&event);
}

void describePart(QWidget* widget, const QString& name, QAccessible::Role role) {
    installAccessibleParts();
    widget->setProperty(kRole, static_cast<int>(role));
    widget->setAccessibleName(name);
}

} // namespace ql240
