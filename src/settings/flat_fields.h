// The lists and date fields of the settings windows: flat and frameless, in two colours with the skin's
// arrows. They paint themselves, because a style sheet would double the time that the dialog takes to open.
// Interface thread only; owned by their window.
#pragma once

#include <QComboBox>
#include <QDateTimeEdit>
#include <QPixmap>

namespace ql240 {

class FlatList : public QComboBox {
    Q_OBJECT
public:
    // Black on white, in the skin's font family at `points`.
    FlatList(QWidget* window, const QRect& place, int points);

    void showPopup() override;

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap m_arrow;
    bool m_hasPopup = false;
};

class FlatField : public QDateTimeEdit {
    Q_OBJECT
public:
    FlatField(QWidget* window, const QRect& place, const QString& format);

    void setColours(const QColor& text, const QColor& ground);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap m_up;
    QPixmap m_down;
};

} // namespace ql240
