#include "widgets/image_buttons.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionToolButton>
#include <QToolTip>

#include "widgets/accessible_parts.h"
#include "widgets/fonts.h"
#include "widgets/skin.h"

namespace ql240 {
namespace {

constexpr QColor kTextColour(200, 200, 200);
constexpr int kBarHeight = 283;
constexpr int kBarLabelHeight = 14;

template <typename Picture, typename Load>
std::array<Picture, 4> makeSlots(const ImagePaths& paths, Load load) {
    return {load(paths[0]), load(paths[1]), load(paths[2]), load(paths[3])};
}

std::array<SkinPicture, 4> skinPictures(const ImagePaths& paths) {
    return makeSlots<SkinPicture>(paths, [](const QString& path) { return SkinPicture(path); });
}

template <typename Picture>
const Picture& pictureFor(const std::array<Picture, 4>& pictures, ImageSlot slot) {
    return pictures[static_cast<std::size_t>(slot)];
}

void drawScaled(QPainter& painter, const QRect& rect, const SkinPicture& picture) {
    const QPixmap& pixmap = picture.pixmap();
    if (pixmap.isNull())
        return;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(rect, pixmap);
}

} // namespace

ImagePaths controlImages(const QString& stem) {
    const auto path = [&stem](char look) { return skinPath(stem + QLatin1Char(look)); };
    return {path('1'), path('3'), path('2'), path('1')};
}

ImageSlot imageSlot(QStyle::State state) {
    if (!(state & QStyle::State_Enabled))
        return ImageSlot::Disabled;
    if (!(state & QStyle::State_MouseOver))
        return ImageSlot::Normal;
    return state & (QStyle::State_Sunken | QStyle::State_On) ? ImageSlot::Pressed : ImageSlot::Hover;
}

ImageButton::ImageButton(QWidget* parent) : QToolButton(parent) {
    setAutoRaise(true);
}

QStyle::State ImageButton::paintState() const {
    QStyleOptionToolButton option;
    initStyleOption(&option);
    return option.state;
}

void ImageButton::paintText(QPainter& painter, const QRect& rect) const {
    if (text().isEmpty())
        return;
    painter.setPen(kTextColour);
    painter.drawText(rect, Qt::AlignCenter, text());
}

void ImageButton::paintFocus(QPainter& painter, QStyle::State state) const {
    if (!(state & QStyle::State_HasFocus) || !(state & QStyle::State_KeyboardFocusChange))
        return;
    painter.setPen(QPen(kTextColour, 1, Qt::DotLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

ClearButton::ClearButton(QWidget* parent, const ImagePaths& images, const QString& hoverText)
    : ImageButton(parent), m_images(skinPictures(images)) {
    installAccessibleParts();
    setFont(uiFont(10, QFont::DemiBold));
    setHoverText(hoverText);
    const QPixmap& normal = pictureFor(m_images, ImageSlot::Normal).pixmap();
    resize(normal.deviceIndependentSize().toSize());
}

void ClearButton::setHoverText(const QString& text) {
    m_hoverText = text;
    if (!text.isEmpty())
        setAccessibleName(text);
}

void ClearButton::setLatched(bool latched) {
    const bool changed = m_latched != latched;
    m_latches = true;
    m_latched = latched;
    update();
    if (!changed || !QAccessible::isActive())
        return;
    QAccessible::State state;
    state.checked = true;
    QAccessibleStateChangeEvent event(this, state);
    QAccessible::updateAccessibility(&event);
}

bool ClearButton::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && !m_hoverText.isEmpty()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), m_hoverText, this);
        return true;
    }
    // Skips QToolButton::event() on purpose: a disabled control passes a press on to the window, so that the
    // window can be dragged by it.
    return QWidget::event(event);
}

// Arrow keys belong to the window, for its commands and its list; Tab moves the focus.
void ClearButton::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down)
        event->ignore();
    else
        ImageButton::keyPressEvent(event);
}

void ClearButton::paintEvent(QPaintEvent*) {
    const QStyle::State state = paintState();
    QPainter painter(this);
    drawScaled(painter, rect(), pictureFor(m_images, m_latched ? ImageSlot::Hover : imageSlot(state)));
    paintText(painter, rect());
    paintFocus(painter, state);
}

IconButton::IconButton(QWidget* parent, const ImagePaths& images, QSize iconSize)
    : ImageButton(parent), m_icons(makeSlots<QIcon>(images, skinIcon)), m_iconSize(iconSize) {}

void IconButton::paintEvent(QPaintEvent*) {
    if (pictureFor(m_icons, ImageSlot::Normal).isNull() || pictureFor(m_icons, ImageSlot::Pressed).isNull())
        return;
    QStyle::State state = paintState();
    if (!(state & QStyle::State_AutoRaise))
        state &= ~QStyle::State_MouseOver;
    const QIcon& icon = pictureFor(m_icons, imageSlot(state));
    const QPixmap pixmap =
        icon.pixmap(size().boundedTo(m_iconSize), devicePixelRatioF(), QIcon::Normal, QIcon::Off);
    QPainter painter(this);
    painter.setClipRect(rect());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    style()->drawItemPixmap(&painter, rect(), Qt::AlignCenter, pixmap);
    paintFocus(painter, state);
}

IconToolButton::IconToolButton(QWidget* parent, const ImagePaths& images)
    : ImageButton(parent), m_images(skinPictures(images)) {
    setFont(uiFont(9));
}

void IconToolButton::paintEvent(QPaintEvent*) {
    const QStyle::State state = paintState();
    QPainter painter(this);
    drawScaled(painter, rect(), pictureFor(m_images, imageSlot(state)));
    paintText(painter, rect());
    paintFocus(painter, state);
}

IconToolButtonA::IconToolButtonA(QWidget* parent, const QString& text)
    : ImageButton(parent),
      m_images(
          skinPictures({skinPath(QStringLiteral("time_select1")), skinPath(QStringLiteral("time_select2")),
                        skinPath(QStringLiteral("time_select3")), skinPath(QStringLiteral("time_select2"))})),
      m_hoverBar(skinPath(QStringLiteral("time_bar1"))),
      m_activeBar(skinPath(QStringLiteral("time_bar2"))) {
    setFont(uiFont(9));
    setText(text);
}

void IconToolButtonA::paintEvent(QPaintEvent*) {
    const QStyle::State state = paintState();
    const ImageSlot slot = imageSlot(state);
    const QRect bar(0, 0, width(), kBarHeight);
    const QRect label(0, kBarHeight, width(), kBarLabelHeight);
    QPainter painter(this);
    if (slot != ImageSlot::Normal)
        drawScaled(painter, bar, slot == ImageSlot::Hover ? m_hoverBar : m_activeBar);
    drawScaled(painter, label, pictureFor(m_images, slot));
    paintText(painter, label);
    paintFocus(painter, state);
}

} // namespace ql240
