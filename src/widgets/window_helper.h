// Lets frameless windows be dragged. One helper serves any number of windows; it watches them as an event
// filter and takes none of their events. Positions are screen pixels. Interface thread only; owned by its Qt
// parent or its maker.
#pragma once

#include <QHash>
#include <QObject>
#include <QPoint>
#include <QRect>
#include <memory>

class QMouseEvent;
class QWidget;

namespace ql240 {

// Where a point lies relative to a window's border, 5 pixels wide.
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
    // Gives every watched window its flags and its visibility back.
    ~FlHlp() override;

    // Makes the window frameless and watches it from now on; a second call does nothing.
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
