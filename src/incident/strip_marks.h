// Marks on the dashboard's strip while the Incident window is open: a small triangle above the trace at each
// moment of the open clip, and the range as a bar. Lies directly above the panel and takes no mouse events.
// Times in milliseconds from the clip's start. Interface thread only; its parent is the panel's.
#pragma once

#include <QWidget>
#include <optional>
#include <vector>

#include "clips/clip_timeline.h"

namespace ql240 {

class StripMarks : public QWidget {
    Q_OBJECT
public:
    explicit StripMarks(QWidget* panel);

    struct State {
        std::int64_t durationMs = 0;
        std::vector<std::int64_t> momentsMs;
        std::optional<TimeRange> range; // of the clip
        friend bool operator==(const State&, const State&) = default;
    };
    void setState(const State& state);
    const State& state() const { return m_state; }

    // Follows the panel's geometry and visibility.
    bool eventFilter(QObject* object, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void follow();

    QWidget* m_panel;
    State m_state;
};

} // namespace ql240
