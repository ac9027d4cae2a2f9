// The rows of choices that the settings windows paint: a row is a label and its choices; a choice is a text,
// the rectangle of its mark, and the hit box for clicks. One table drives painting, clicks, keyboard and
// accessible names. Positions in window pixels.
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

// The rows' values: the camera's settings, and values that only the dialog holds.
struct RowValues : SettingValues {
    int viewerSpeedUnit = 1; // a SpeedUnit
    int setsClock = 0;       // 1: set the camera's clock

    bool operator==(const RowValues&) const = default;
};

// How a choice shows whether it is chosen: by its mark, or always the same in rows that are only shown.
enum class MarkRule { IfChosen, AlwaysChosen, AlwaysDisabled };

struct Choice {
    int value = 0;
    PageText name;
    QRect text; // where the name is painted; null if the background shows it
    QRect mark;
    QRect hit; // null: can't be clicked
    MarkRule rule = MarkRule::IfChosen;
};

enum class RowKind {
    Choices,
    TickBox,   // one choice, on or off
    ShownOnly, // neither mouse nor keyboard changes it
};

struct OptionRow {
    PageText name;
    QRect nameBox; // null if the name isn't painted
    int RowValues::*value = nullptr;
    std::span<const Choice> choices;
    RowKind kind = RowKind::Choices;
    QRect strayMark = {}; // where a value that no choice has is marked; null: nowhere
    Qt::Alignment choiceAlign = Qt::AlignRight;
};

// A text outside of any row.
struct PageLabel {
    PageText text;
    QRect box;
    Qt::Alignment align = Qt::AlignLeft;
    int room = 0; // maximum width before its font shrinks; 0: the box's width
};

struct MarkImages {
    QPixmap chosen;
    QPixmap disabled;
    QPixmap ticked;
};

// `font`, or the largest smaller size, down to 8 points, in which `text` is at most `width` wide.
QFont fittingFont(QFont font, const QString& text, int width);

// The choice whose hit box contains `point`, or null.
const Choice* choiceAt(const OptionRow& row, QPoint point);
const Choice* chosenChoice(const OptionRow& row, const RowValues& values);
// The bounding rectangle of everything in the row.
QRect boundsOf(const OptionRow& row);
QRect boundsOf(const Choice& choice);

// How wide a row's name can get before it overlaps the choices, whose texts use the font of `metrics`.
int roomForName(const OptionRow& row, const QFontMetrics& metrics);

// Texts are painted in the painter's font and pen, in a smaller font, down to 8 points, if the box is too
// narrow.
void paintLabels(QPainter& painter, std::span<const PageLabel> labels);
void paintRowTexts(QPainter& painter, const OptionRow& row);
// With `operable` false, the chosen mark looks disabled.
void paintRowMarks(QPainter& painter, const OptionRow& row, const RowValues& values, const MarkImages& images,
                   bool operable = true);

} // namespace ql240
