// A secondary window of the viewer in its skin: frameless, movable, with a title and a close button, around
// any contents. Opens beside the main window where the desktop lets a program place its windows, and never
// keeps the program alive. Owned by the main window; interface thread only.
#pragma once

#include <QColor>
#include <QWidget>

namespace ql240 {

class ClearButton;
class FlHlp;

namespace skin_colours {

inline constexpr QColor kGround(9, 9, 9);
inline constexpr QColor kPlate(7, 7, 7);
inline constexpr QColor kRaised(26, 26, 25);
inline constexpr QColor kLine(62, 62, 59);
inline constexpr QColor kText(220, 220, 220);
inline constexpr QColor kFaint(120, 120, 120);
inline constexpr QColor kAccent(134, 230, 217);

} // namespace skin_colours

class SkinWindow : public QWidget {
    Q_OBJECT
public:
    // Takes over the contents, whose size hint determines the window's size.
    SkinWindow(QWidget* beside, const QString& title, QWidget* contents);

    void toggle() { isVisible() ? static_cast<void>(close()) : open(); }
    void open();

Q_SIGNALS:
    void shown();
    void closed();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void place();

    QWidget* m_beside;
    FlHlp* m_helper;
    ClearButton* m_close;
    bool m_isPlaced = false; // afterwards it stays where the user has moved it
};

} // namespace ql240
