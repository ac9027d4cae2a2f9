// The volume gauge: ten segments that show and set the program's sound volume. Enabled means that the sound
// is on. Interface thread.
#pragma once

#include <QPixmap>
#include <QWidget>

namespace ql240 {

class WidgetVolume : public QWidget {
    Q_OBJECT

public:
    static constexpr int kMaxLevel = 10;

    explicit WidgetVolume(QWidget* parent = nullptr);

    int level() const { return m_level; }
    // On: plays at the level, at least 1. Off: plays silence and keeps the level.
    void setSoundOn(bool on);

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void send(int level);

    QPixmap m_bar;
    QPixmap m_segment;
    int m_level = kMaxLevel;
};

} // namespace ql240
