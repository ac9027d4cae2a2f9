// The buttons of the skinned windows: tool buttons that paint themselves from four pictures. Each picture is
// loaded once, when it is first shown; a missing one leaves the button invisible in that state. Interface
// thread only. Owned by the Qt parent.
#pragma once

#include <QIcon>
#include <QStyle>
#include <QToolButton>
#include <array>

#include "widgets/skin.h"

namespace ql240 {

enum class ImageSlot { Normal, Pressed, Hover, Disabled };

// Paths of the four pictures, in the order of ImageSlot.
using ImagePaths = std::array<QString, 4>;

// The paths of a control's pictures: ":/gfx_r/2012/" + stem + 1, 3, 2 and 1 + ".png".
ImagePaths controlImages(const QString& stem);

// Which picture a button with this style state shows.
ImageSlot imageSlot(QStyle::State state);

// What the four classes share: auto-raise, a name for assistive technology, a mark of keyboard focus.
class ImageButton : public QToolButton {
    Q_OBJECT
public:
    explicit ImageButton(QWidget* parent);

protected:
    QStyle::State paintState() const;
    void paintText(QPainter& painter, const QRect& rect) const;
    void paintFocus(QPainter& painter, QStyle::State state) const;
};

// A control of the main window. Shows its hover text itself; takes the size of its normal picture.
class ClearButton : public ImageButton {
    Q_OBJECT
public:
    ClearButton(QWidget* parent, const ImagePaths& images, const QString& hoverText = {});

    const QString& hoverText() const { return m_hoverText; }
    // The hover text is the accessible name too.
    void setHoverText(const QString& text);

    // Latched: a mode is on, so the hover picture shows whatever the state.
    bool isLatched() const { return m_latched; }
    // Whether it stands for a mode at all.
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

// A picture at its own size in the middle of the button, at most `iconSize` large. Without a normal or a
// pressed picture it paints nothing.
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

// A tall bar over a small label, for choosing one of many columns.
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
