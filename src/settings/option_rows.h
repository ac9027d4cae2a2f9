// The rows of choices that the settings windows paint: a row is a label and its choices, a choice a text, the
// place of its mark, and the box that a click is tested against. One table of them drives painting, clicks,
// keyboard and accessible names. Positions are pixels of the window.
#pragma once

#include <QFont>
#include <QPixmap>
#include <QRect>
#include <span>

#include "settings/page_text.h"
#include "settings/setting_values.h"

class QFontMetrics;
class QPainter;

namespace ql240 {

// What the rows show: the camera's settings, and what the dialog alone holds.
struct RowValues : SettingValues {
    int viewerSpeedUnit = 1; // a SpeedUnit
    int setsClock = 0;       // 1: the camera's clock is to be set

    bool operator==(const RowValues&) const = default;
};

// How a choice shows whether it is the chosen one: by its mark, or, in rows that are only shown, always
// alike.
enum class MarkRule { IfChosen, AlwaysChosen, AlwaysDisabled };

struct Choice {
    int value = 0;
    PageText name;
    QRect text; // where the name is painted; null where the background shows it
    QRect mark;
    QRect hit; // null: no click chooses it
    MarkRule rule = MarkRule::IfChosen;
};

enum class RowKind {
    Choices,
    TickBox,   // one choice, on or off
    ShownOnly, // neither click nor key changes it
};

struct OptionRow {
    PageText name;
    QRect nameBox; // null where the name isn't painted
    int RowValues::*value = nullptr;
    std::span<const Choice> choices;
    RowKind kind = RowKind::Choices;
    QRect strayMark = {}; // where a value that no choice has is marked; null: nowhere
    Qt::Alignment choiceAlign = Qt::AlignRight;
};

// A text that belongs to no row's choices.
struct PageLabel {
    PageText text;
    QRect box;
    Qt::Alignment align = Qt::AlignLeft;
    int room = 0; // how wide it may get before its font shrinks; 0: as wide as the box
};

struct MarkImages {
    QPixmap chosen;
    QPixmap disabled;
    QPixmap ticked;
};

// `font`, or its next smaller size, down to 8 points, in which `text` is at most `width` wide.
QFont fittingFont(QFont font, const QString& text, int width);

// The choice whose hit box holds `point`, or null.
const Choice* choiceAt(const OptionRow& row, QPoint point);
const Choice* chosenChoice(const OptionRow& row, const RowValues& values);
// Everything that belongs to the row.
QRect boundsOf(const OptionRow& row);
QRect boundsOf(const Choice& choice);

// How wide a row's name may get before it runs into the choices, whose texts are in the font of `metrics`.
int roomForName(const OptionRow& row, const QFontMetrics& metrics);

// Texts are painted in the painter's font and pen, in a smaller font, down to 8 points, where the box is too
// narrow.
void paintLabels(QPainter& painter, std::span<const PageLabel> labels);
void paintRowTexts(QPainter& painter, const OptionRow& row);
// `operable` false: the chosen mark in its disabled look.
void paintRowMarks(QPainter& painter, const OptionRow& row, const RowValues& values, const MarkImages& images,
                   bool operable = true);

} // namespace ql240
