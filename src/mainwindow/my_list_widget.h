// The list of clips: one entry for each recording of the open folder, in the folder's order. Making an entry
// current selects its clip; the main window acts on the list's signal. Takes no drops. Interface thread only.
#pragma once

#include <QElapsedTimer>
#include <QListWidget>

namespace ql240 {

class Clip;

// Holds the entry's Clip pointer; an entry without one is a file added by name only.
inline constexpr int kClipRole = Qt::UserRole + 1;

class MyListWidget : public QListWidget {
    Q_OBJECT
public:
    // `owner` is the parent and the window that gets the mouse events posted by the list.
    explicit MyListWidget(QWidget* owner);

    // Appends an entry for the clip, or one with only a name. Clips go before names that were added while the
    // folder was being read.
    void appendClip(const Clip* clip);
    void appendName(const QString& fileName);

    // Null for an entry without a clip, and for a null entry.
    static const Clip* clipOf(const QListWidgetItem* item);

    // The first row with the clip, or -1.
    int rowOf(const Clip* clip) const;
    // The row of the clip with this absolute path, or -1.
    int rowOfPath(const QString& path) const;

    // Whether the keys of the Incident window's commands are passed on too.
    void setPassesIncident(bool on) { m_passesIncident = on; }

    // A press away from the pointer's position is posted to the owner as a click at a fixed position.
    void mousePressEvent(QMouseEvent* event) override;

protected:
    // Selects nothing, unlike Qt's own handler.
    void focusInEvent(QFocusEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    // The window's command keys are passed on to it; typing and moving up and down stay here.
    void keyPressEvent(QKeyEvent* event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;
    void dragEnterEvent(QDragEnterEvent*) override {}
    void dragMoveEvent(QDragMoveEvent*) override {}
    void dragLeaveEvent(QDragLeaveEvent*) override {}
    void dropEvent(QDropEvent*) override {}

private:
    void postClickToOwner(const QMouseEvent& event);
    bool isTyping() const;

    QWidget* m_owner;
    bool m_busy = false;
    bool m_passesIncident = false;
    bool m_takingFocus = false;
    QElapsedTimer m_lastTyped;
};

} // namespace ql240
