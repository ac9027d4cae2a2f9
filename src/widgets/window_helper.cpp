#include "widgets/window_helper.h"

#include <QGuiApplication>
#include <QHoverEvent>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>
#include <utility>

#include "widgets/mouse_drag.h"

namespace ql240 {
namespace {

constexpr int kBorder = 5;
constexpr Qt::WindowFlags kFrameless = Qt::FramelessWindowHint | Qt::CustomizeWindowHint;

// A Wayland client can't position its own windows: the compositor moves them from the first mouse move on.
bool compositorMoves() {
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

Qt::Edges resizeEdges(const EdgeFlags& edges) {
    Qt::Edges result;
    result.setFlag(Qt::LeftEdge, edges.left);
    result.setFlag(Qt::RightEdge, edges.right && !edges.left);
    result.setFlag(Qt::TopEdge, edges.top);
    result.setFlag(Qt::BottomEdge, edges.bottom && !edges.top);
    return result;
}

Qt::CursorShape resizeCursor(const EdgeFlags& edges) {
    if (edges.topLeft || edges.bottomRight)
        return Qt::SizeFDiagCursor;
    if (edges.topRight || edges.bottomLeft)
        return Qt::SizeBDiagCursor;
    return edges.left || edges.right ? Qt::SizeHorCursor : Qt::SizeVerCursor;
}

} // namespace

struct FlHlp::Record {
    QWidget* window = nullptr;
    MouseDrag drag;
    QPoint dragOffset;
    EdgeFlags edges;
    bool cursorChanged = false;
    Qt::WindowFlags savedFlags;
};

EdgeFlags edgesAt(QPoint point, const QRect& frame) {
    const int right = frame.left() + frame.width();
    const int bottom = frame.top() + frame.height();
    EdgeFlags edges;
    edges.left = frame.left() <= point.x() && point.x() <= frame.left() + kBorder;
    edges.right = right - kBorder <= point.x() && point.x() <= right;
    edges.top = frame.top() <= point.y() && point.y() <= frame.top() + kBorder;
    edges.bottom = bottom - kBorder <= point.y() && point.y() <= bottom;
    edges.topLeft = edges.top && edges.left;
    edges.bottomLeft = edges.bottom && edges.left;
    edges.topRight = edges.top && edges.right;
    edges.bottomRight = edges.bottom && edges.right;
    edges.any = edges.left || edges.right || edges.top || edges.bottom;
    return edges;
}

FlHlp::FlHlp(QObject* parent) : QObject(parent) {}

FlHlp::~FlHlp() {
    for (const auto& record : std::as_const(m_windows))
        giveBack(*record);
}

void FlHlp::watchWindow(QWidget* window) {
    if (!window || m_windows.contains(window))
        return;
    auto record = std::make_shared<Record>();
    record->window = window;
    record->savedFlags = window->windowFlags();
    const bool visible = window->isVisible();
    window->setMouseTracking(true);
    if (window->testAttribute(Qt::WA_WState_Created)) {
        window->setWindowFlags(kFrameless);
        // Changing the flags hides the window.
        window->setVisible(visible);
    } else {
        // Sets the flags before the native window exists, without polishing all children again.
        window->overrideWindowFlags(kFrameless | Qt::Window);
    }
    window->setAttribute(Qt::WA_Hover);
    m_windows.insert(window, record);
    window->installEventFilter(this);
    connect(window, &QObject::destroyed, this, [this](QObject* gone) { m_windows.remove(gone); });
}

void FlHlp::giveBack(Record& record) {
    QWidget& window = *record.window;
    const bool visible = window.isVisible();
    window.setMouseTracking(false);
    window.setWindowFlags(record.savedFlags);
    window.setAttribute(Qt::WA_Hover, false);
    window.setVisible(visible);
}

bool FlHlp::eventFilter(QObject* object, QEvent* event) {
    const auto record = m_windows.value(object);
    if (!record)
        return false;
    switch (event->type()) {
        case QEvent::MouseButtonPress:
            press(*record, static_cast<QMouseEvent&>(*event));
            break;
        case QEvent::MouseMove:
            drag(*record, static_cast<QMouseEvent&>(*event));
            break;
        case QEvent::MouseButtonRelease:
            release(*record, static_cast<QMouseEvent&>(*event));
            break;
        case QEvent::Leave:
            leave(*record);
            break;
        case QEvent::HoverMove:
            if (!record->drag.isUnderWay())
                showResizeCursor(*record, record->window->mapToGlobal(
                                              static_cast<QHoverEvent*>(event)->position().toPoint()));
            break;
        default:
            break;
    }
    return false;
}

void FlHlp::press(Record& record, const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton)
        return;
    const QPoint point = event.globalPosition().toPoint();
    const QRect frame = record.window->frameGeometry();
    record.drag.begin(event);
    record.edges = edgesAt(point, frame);
    record.dragOffset = point - frame.topLeft();
}

void FlHlp::drag(Record& record, const QMouseEvent& event) {
    const QPoint point = event.globalPosition().toPoint();
    if (!record.drag.goesOn(event)) {
        showResizeCursor(record, point);
        return;
    }
    QWindow* handle = record.window->windowHandle();
    if (m_resizable && record.edges.any) {
        if (handle && handle->startSystemResize(resizeEdges(record.edges)))
            record.drag.end();
        return;
    }
    if (!m_movable || record.window->isFullScreen())
        return;
    if (compositorMoves() && handle && handle->startSystemMove()) {
        // The compositor doesn't pass the release on.
        record.drag.end();
        return;
    }
    record.window->move(point - record.dragOffset);
}

void FlHlp::release(Record& record, const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton)
        return;
    record.drag.end();
    record.edges = {};
}

void FlHlp::leave(Record& record) {
    if (!record.drag.isUnderWay())
        takeCursorBack(record);
}

void FlHlp::showResizeCursor(Record& record, QPoint point) {
    if (!m_resizable)
        return;
    const EdgeFlags edges = edgesAt(point, record.window->frameGeometry());
    if (edges.any) {
        record.window->setCursor(resizeCursor(edges));
        record.cursorChanged = true;
    } else {
        takeCursorBack(record);
    }
}

// Any other cursor belongs to the window.
void FlHlp::takeCursorBack(Record& record) {
    if (std::exchange(record.cursorChanged, false))
        record.window->unsetCursor();
}

} // namespace ql240
