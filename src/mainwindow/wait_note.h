// Says that something takes a while and lets the user cancel it: a text, an indeterminate progress bar, a
// button. Appears only after a short delay. Owned by its parent; interface thread only.
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
    // The button or Escape was pressed. The receiver ends the wait.
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
