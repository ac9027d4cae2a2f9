// Accessibility of painted parts that no standard widget class describes: gauges, latching buttons, and parts
// with a role of their own. Interface thread only.
#pragma once

#include <QAccessible>
#include <QString>

class QWidget;

namespace ql240 {

// A whole number from 0 to a maximum that a painted part shows and sets. The widget implements this itself
// and calls describeGauge() before its accessible name is set.
class AccessibleGauge {
public:
    virtual ~AccessibleGauge() = default;
    virtual int gaugeMaximum() const = 0;
    virtual int gaugeValue() const = 0;
    virtual QString gaugeText() const = 0;    // the value in words, as a screen reader speaks it
    virtual QString gaugeDetails() const = 0; // anything else that the part shows
    virtual void setGaugeValue(int value) = 0;
};

// Describes `widget` as a slider with the value of `gauge`. Both are the same object.
void describeGauge(QWidget* widget, AccessibleGauge* gauge);
void tellGaugeChanged(QWidget* widget, const AccessibleGauge& gauge);

// Installs the accessible interfaces; buttons, which need no description of their own, call only this.
void installAccessibleParts();

// Gives a part an accessible name and role.
void describePart(QWidget* widget, const QString& name, QAccessible::Role role);

} // namespace ql240
