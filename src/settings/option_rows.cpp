#include "settings/option_rows.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QPainter>

#include "widgets/fonts.h"

namespace ql240 {
namespace {

constexpr int kSmallestPoints = 8;
constexpr int kGap = 2; // between a name and what follows

void paintText(QPainter& painter, const QRect& box, Qt::Alignment align, const QString& text, int width) {
    const QFont usual = painter.font();
    painter.setFont(fittingFont(usual, text, width));
    painter.drawText(box, int(align | Qt::AlignVCenter) | Qt::TextDontClip, text);
    painter.setFont(usual);
}

} // namespace

QFont fittingFont(QFont font, const QString& text, int width) {
    const int smallest = fontPixels(kSmallestPoints);
    // A font that a style sheet gave knows points only.
    int size = QFontInfo(font).pixelSize();
    while (size > smallest && QFontMetrics(font).horizontalAdvance(text) > width)
        font.setPixelSize(--size);
    return font;
}

const Choice* choiceAt(const OptionRow& row, QPoint point) {
    for (const Choice& choice : row.choices) {
        if (choice.hit.contains(point))
            return &choice;
    }
    return nullptr;
}

const Choice* chosenChoice(const OptionRow& row, const RowValues& values) {
    for (const Choice& choice : row.choices) {
        if (row.value && choice.value == values.*row.value)
            return &choice;
    }
    return nullptr;
}

QRect boundsOf(const Choice& choice) {
    return choice.text | choice.mark | choice.hit;
}

QRect boundsOf(const OptionRow& row) {
    QRect bounds = row.nameBox;
    for (const Choice& choice : row.choices)
        bounds |= boundsOf(choice);
    return bounds;
}

int roomForName(const OptionRow& row, const QFontMetrics& metrics) {
    int right = row.nameBox.right() + 1;
    for (const Choice& choice : row.choices) {
        const int text = choice.text.right() + 1 - metrics.horizontalAdvance(choice.name.text());
        const int left = choice.text.isNull() ? choice.mark.left() : text;
        const QRect place = choice.text | choice.mark;
        if (left > row.nameBox.left() && place.top() < row.nameBox.bottom() &&
            place.bottom() > row.nameBox.top())
            right = qMin(right, left - kGap);
    }
    return right - row.nameBox.left();
}

void paintLabels(QPainter& painter, std::span<const PageLabel> labels) {
    for (const PageLabel& label : labels)
        paintText(painter, label.box, label.align, label.text.text(),
                  label.room > 0 ? label.room : label.box.width());
}

void paintRowTexts(QPainter& painter, const OptionRow& row) {
    if (!row.nameBox.isNull())
        paintText(painter, row.nameBox, Qt::AlignLeft, row.name.text(),
                  roomForName(row, painter.fontMetrics()));
    for (const Choice& choice : row.choices) {
        if (!choice.text.isNull())
            paintText(painter, choice.text, row.choiceAlign, choice.name.text(), choice.text.width());
    }
}

void paintRowMarks(QPainter& painter, const OptionRow& row, const RowValues& values, const MarkImages& images,
                   bool operable) {
    const Choice* chosen = chosenChoice(row, values);
    const QPixmap& look = row.kind == RowKind::TickBox ? images.ticked
                          : operable                   ? images.chosen
                                                       : images.disabled;
    if (!chosen && !row.strayMark.isNull())
        painter.drawPixmap(row.strayMark, look);
    for (const Choice& choice : row.choices) {
        if (choice.rule == MarkRule::AlwaysDisabled)
            painter.drawPixmap(choice.mark, images.disabled);
        else if (choice.rule == MarkRule::AlwaysChosen)
            painter.drawPixmap(choice.mark, images.chosen);
        else if (&choice == chosen)
            painter.drawPixmap(choice.mark, look);
    }
}

} // namespace ql240
