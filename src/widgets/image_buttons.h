// The buttons of the skinned windows: tool buttons that paint themselves from four pictures. Each picture is
// loaded when it is first shown; if it is missing, the button is invisible in that state. Interface thread
// only; owned by the Qt parent.
#pragma once

#include <QIcon>
#include <QStyle>
#include <QToolButton>
#include <array>

#include "widgets/skin.h"

namespace ql240 {

enum class ImageSlot { Normal, Pressed, Hover, Disabled };

// Paths of the four pictures, in ImageSlot order.
using ImagePaths = std::array<QString, 4>;

// The paths of a control's pictures: ":/gfx_r/2012/" + stem + 1, 3, 2 and 1 + ".png".
ImagePaths controlImages(const QString& stem);

// The picture that a button in this style state shows.
ImageSlot imageSlot(QStyle::State state);

// Base of the four classes: auto-raise, an accessible name, a focus mark.
class ImageButton : public QToolButton {
    Q_OBJECT
public:
    explicit ImageButton(QWidget* parent);

protected:
    QStyle::State paintState() const;
    void paintText(QPainter& painter, const QRect& rect) const;
    void paintFocus(QPainter& painter, QStyle::State state) const;
};

// A control of the main window. Shows its tooltip itself; has the size of its normal picture.
class ClearButton : public ImageButton {
    Q_OBJECT
public:
    ClearButton(QWidget* parent, const ImagePaths& images, const QString& hoverText = {});

    const QString& hoverText() const { return m_hoverText; }
    // Also sets the accessible name.
    void setHoverText(const QString& text);

    // Latched means that a mode is on: the hover picture shows in every state.
    bool isLatched() const { return m_latched; }
    // Whether the button switches a mode at all.
    bool latches() const { return m_latches; }
    void setLatched(bool latched);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_hoverText;
    std::array<SkinPicture, 4> m_images;
    bool m_latched = false;
    bool m_latches = false;
};

// Shows a picture centred in the button at its own size, but at most `iconSize`. Paints nothing without a
// normal or a pressed picture.
class IconButton : public ImageButton {
    Q_OBJECT
public:
    IconButton(QWidget* parent, const ImagePaths& images, QSize iconSize);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::array<QIcon, 4> m_icons;
    QSize m_iconSize;
};

// A control of the settings windows, with its text over the picture.
class IconToolButton : public ImageButton {
    Q_OBJECT
public:
    IconToolButton(QWidget* parent, const ImagePaths& images);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::array<SkinPicture, 4> m_images;
};

// A tall bar above a small label, for choosing one of many columns.
class IconToolButtonA : public ImageButton {
    Q_OBJECT
public:
    IconToolButtonA(QWidget* parent, const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::array<SkinPicture, 4> m_images;
    SkinPicture m_hoverBar;
    SkinPicture m_activeBar;
};

} // namespace ql240
