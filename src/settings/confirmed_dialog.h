// Base of the small windows over the settings dialog: a frameless picture with OK, Cancel and a close button.
// The answer can be read after the window has closed. Interface thread only.
#pragma once

#include <QDialog>
#include <QPixmap>

namespace ql240 {

class ImageButton;

class ConfirmedDialog : public QDialog {
    Q_OBJECT
public:
    bool isConfirmed() const { return m_confirmed; }

public Q_SLOTS:
    void OnSlotsOK();
    void OnSlotsCancel();
    void OnSlotsApply();

protected:
    // `background` is the name of a picture of the skin.
    ConfirmedDialog(QWidget* parent, const QString& background);

    // Adds the standard buttons; returns the Cancel button.
    ImageButton* addButtons(const QRect& ok, const QRect& cancel, const QRect& close);
    // The action of Enter when no button has the focus.
    virtual void enter() { OnSlotsOK(); }

    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    QPixmap m_background;
    bool m_confirmed = false;
};

} // namespace ql240
