// The volume gauge: ten segments that show and set the program's sound volume. The widget is enabled while
// the sound is on. Interface thread.
#pragma once

#include <QPixmap>
#include <QWidget>

#include "widgets/accessible_parts.h"

namespace ql240 {

class WidgetVolume : public QWidget, private AccessibleGauge {
    Q_OBJECT

public:
    static constexpr int kMaxLevel = 10;

    explicit WidgetVolume(QWidget* parent = nullptr);

    int level() const { return m_level; }
    // On: plays at the current level, at least 1. Off: mutes and keeps the level.
    void setSoundOn(bool on);

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int gaugeMaximum() const override { return kMaxLevel; }
    int gaugeValue() const override { return m_level; }
    QString gaugeText() const override;
    QString gaugeDetails() const override { return {}; }
    void setGaugeValue(int value) override { setLevel(value); }
    void setLevel(int level);
    void send(int level);

    QPixmap m_bar;
    QPixmap m_segment;
    int m_level = kMaxLevel;
};

} // namespace ql240
