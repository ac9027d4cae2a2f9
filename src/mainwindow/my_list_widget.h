// The list of clips: one entry for every recording of the open folder, in the collection's order. Making an
// entry current is how a clip is chosen; the main window acts on the list's signal. Takes no drop. Interface
// thread only.
#pragma once

#include <QElapsedTimer>
#include <QListWidget>

namespace ql240 {

class Clip;

// Where an entry keeps its clip's address; an entry without one stands for a file that no scan found.
inline constexpr int kClipRole = Qt::UserRole + 1;

class MyListWidget : public QListWidget {
    Q_OBJECT
public:
    // `owner` is the parent and the window that gets the mouse events that the list posts.
    explicit MyListWidget(QWidget* owner);

    // Appends an entry named after the clip's file, or one with a name only. Clips go ahead of names that
    // were added while the folder was being read.
    void appendClip(const Clip* clip);
    void appendName(const QString& fileName);

    // Null for an entry without a clip, and for no entry.
    static const Clip* clipOf(const QListWidgetItem* item);

    // The first row that holds the clip, -1 when none does.
    int rowOf(const Clip* clip) const;

    // A press that is not where the pointer is, is handed to the owner as a click of its own.
    void mousePressEvent(QMouseEvent* event) override;

protected:
    // Chooses nothing, as Qt would.
    void focusInEvent(QFocusEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    // The window's command keys go on to it; typing and moving up and down stay here.
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
    bool m_takingFocus = false;
    QElapsedTimer m_lastTyped;
};

} // namespace ql240
