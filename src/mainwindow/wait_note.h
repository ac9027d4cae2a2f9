// Says that something takes its time, and lets the user cancel it: a text, a bar that moves, a button. Shows
// itself only when the wait has lasted a moment. Owned by its parent; interface thread only.
#pragma once

#include <QFrame>
#include <QTimer>

class QLabel;
class QPushButton;

namespace ql240 {

class WaitNote : public QFrame {
    Q_OBJECT
public:
    explicit WaitNote(QWidget* parent);

    void begin(const QString& text);
    void end();

Q_SIGNALS:
    // The button was pressed, or Escape. Ending the wait is left to whoever hears it.
    void cancelled();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void appear();

    QLabel* m_text;
    QPushButton* m_cancel;
    QTimer m_delay;
};

} // namespace ql240
