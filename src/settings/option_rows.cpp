#include "settings/option_rows.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

#include "widgets/fonts.h"

namespace ql240 {
namespace {

constexpr int kSmallestPoints = 8;
constexpr int kGap = 2; // between a name and what follows

// Measuring a text costs as much as painting it; this estimate assumes that no character is wider than the
// font is high.
bool surelyFits(const QFont& font, const QString& text, int width) {
    return text.size() * font.pixelSize() <= width;
}

void paintText(QPainter& painter, const QRect& box, Qt::Alignment align, const QString& text, int width) {
    const int flags = static_cast<int>(align | Qt::AlignVCenter) | Qt::TextDontClip;
    const QFont usual = painter.font();
    if (surelyFits(usual, text, width)) {
        painter.drawText(box, flags, text);
        return;
    }
    painter.setFont(fittingFont(usual, text, width));
    painter.drawText(box, flags, text);
    painter.setFont(usual);
}

// From the start of the name to the box of the first choice, whose text may start further right.
int widthToChoices(const OptionRow& row) {
    int right = row.nameBox.right() + 1;
    for (const Choice& choice : row.choices) {
        const QRect place = choice.text | choice.mark;
        if (place.left() > row.nameBox.left())
            right = std::min(right, place.left());
    }
    return right - row.nameBox.left();
}

} // namespace

QFont fittingFont(QFont font, const QString& text, int width) {
    const int needed = QFontMetrics(font).horizontalAdvance(text);
    if (needed <= width)
        return font;
    // Start with the size that should fit, since every size tried loads a font.
    const int smallest = fontPixels(kSmallestPoints);
    int size = std::max(smallest, font.pixelSize() * width / needed);
    font.setPixelSize(size);
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
    QRect choices;
    for (const Choice& choice : row.choices)
        choices |= boundsOf(choice);
    QRect name = row.nameBox;
    // A name beside its choices ends where they end; its box may extend under other widgets.
    if (choices.right() > name.left() && choices.top() < name.bottom() && choices.bottom() > name.top())
        name.setRight(std::min(name.right(), choices.right()));
    return name | choices;
}

int roomForName(const OptionRow& row, const QFontMetrics& metrics) {
    int right = row.nameBox.right() + 1;
    for (const Choice& choice : row.choices) {
        const QRect place = choice.text | choice.mark;
        if (place.top() > row.nameBox.bottom() || place.bottom() < row.nameBox.top() || place.left() >= right)
            continue;
        const int text = choice.text.right() + 1 - metrics.horizontalAdvance(choice.name.text());
        const int left = choice.text.isNull() ? choice.mark.left() : text;
        if (left > row.nameBox.left())
            right = std::min(right, left - kGap);
    }
    return right - row.nameBox.left();
}

void paintLabels(QPainter& painter, std::span<const PageLabel> labels) {
    for (const PageLabel& label : labels)
        paintText(painter, label.box, label.align, label.text.text(),
                  label.room > 0 ? label.room : label.box.width());
}

void paintRowTexts(QPainter& painter, const OptionRow& row) {
    if (!row.nameBox.isNull()) {
        const QString name = row.name.text();
        const bool isShort = surelyFits(painter.font(), name, widthToChoices(row));
        paintText(painter, row.nameBox, Qt::AlignLeft, name,
                  isShort ? row.nameBox.width() : roomForName(row, painter.fontMetrics()));
    }
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
