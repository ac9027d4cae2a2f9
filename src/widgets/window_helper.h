// Makes frameless windows draggable. One helper serves any number of windows; it watches them as an event
// filter and consumes none of their events. Positions are screen pixels. Interface thread only; owned by its
// Qt parent or by its creator.
#pragma once

#include <QHash>
#include <QObject>
#include <QPoint>
#include <QRect>
#include <memory>

class QMouseEvent;
class QWidget;

namespace ql240 {

// Where a point lies relative to a window's 5 pixel border.
struct EdgeFlags {
    bool any = false;
    bool left = false;
    bool right = false;
    bool top = false;
    bool bottom = false;
    bool topLeft = false;
    bool bottomLeft = false;
    bool topRight = false;
    bool bottomRight = false;
};

EdgeFlags edgesAt(QPoint point, const QRect& frame);

class FlHlp : public QObject {
    Q_OBJECT
public:
    explicit FlHlp(QObject* parent = nullptr);
    // Restores the flags and visibility of every watched window.
    ~FlHlp() override;

    // Makes the window frameless and watches it from now on. Calling it again has no effect.
    void watchWindow(QWidget* window);

    void setMovable(bool movable) { m_movable = movable; }
    void setResizable(bool resizable) { m_resizable = resizable; }

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    struct Record;

    void press(Record& record, const QMouseEvent& event);
    void drag(Record& record, const QMouseEvent& event);
    void release(Record& record, const QMouseEvent& event);
    void leave(Record& record);
    void showResizeCursor(Record& record, QPoint point);
    void takeCursorBack(Record& record);
    void giveBack(Record& record);

    QHash<QObject*, std::shared_ptr<Record>> m_windows;
    bool m_movable = true;
    bool m_resizable = true;
};

} // namespace ql240
