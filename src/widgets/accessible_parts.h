// What assistive technology is told of painted parts that no standard class describes: gauges, latching
// buttons, and parts with a role of their own. Interface thread only.
#pragma once

#include <QAccessible>
#include <QString>

class QWidget;

namespace ql240 {

// A whole number in a range from 0, shown and set by a painted part. The widget itself implements it and
// calls describeGauge() before it takes a name.
class AccessibleGauge {
public:
    virtual ~AccessibleGauge() = default;
    virtual int gaugeMaximum() const = 0;
    virtual int gaugeValue() const = 0;
    virtual QString gaugeText() const = 0;    // the value as a person would say it
    virtual QString gaugeDetails() const = 0; // what else the part shows
    virtual void setGaugeValue(int value) = 0;
};

// A slider whose value is `gauge`'s. `widget` and `gauge` are one object.
void describeGauge(QWidget* widget, AccessibleGauge* gauge);
void tellGaugeChanged(QWidget* widget, const AccessibleGauge& gauge);

// For what needs no description of its own: buttons call this once.
void installAccessibleParts();

// A part with a name and a role.
void describePart(QWidget* widget, const QString& name, QAccessible::Role role);

} // namespace ql240
