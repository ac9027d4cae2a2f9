#include "widgets/plain_text.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QLabel>
#include <QToolTip>
#include <algorithm>

namespace ql240 {
namespace {

// Text without spaces gets a line-break opportunity after this many characters.
constexpr int kLettersToBreak = 24;
constexpr QChar kBreak(0x200b);
constexpr QChar kEllipsis(0x2026);

constexpr QLatin1StringView kHoverStart("<p style=\"white-space:pre-wrap\">");
constexpr QLatin1StringView kHoverEnd("</p>");

bool turnsDirection(char16_t letter) {
    return letter == 0x061c || letter == 0x200e || letter == 0x200f ||
           (letter >= 0x202a && letter <= 0x202e) || (letter >= 0x2066 && letter <= 0x2069);
}

bool isRightToLeft(uint letter) {
    const QChar::Direction direction = QChar::direction(letter);
    return direction == QChar::DirR || direction == QChar::DirAL;
}

bool isUnfit(QChar letter) {
    const QChar::Category category = letter.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph || turnsDirection(letter.unicode());
}

QString cut(const QString& text, int letters) {
    if (text.size() <= letters)
        return text;
    const bool splits = text[letters - 1].isLowSurrogate();
    return text.left(letters - (splits ? 2 : 1)) + kEllipsis;
}

QString withBreaks(const QString& text) {
    QString broken;
    int run = 0;
    for (const QChar letter : text) {
        if (run >= kLettersToBreak && !letter.isLowSurrogate() && !letter.isMark()) {
            broken += kBreak;
            run = 0;
        }
        broken += letter;
        run = letter == u'/' ? kLettersToBreak : letter.isSpace() ? 0 : run + 1;
    }
    return broken;
}

// Whether hoverText() made this text, whatever it contains.
bool isHoverText(const QString& text) {
    return text.startsWith(kHoverStart) && text.endsWith(kHoverEnd) &&
           text.indexOf(u'<', kHoverStart.size()) == text.size() - kHoverEnd.size();
}

QString hoverTextAt(const QWidget* widget, QPoint place) {
    const auto* view = qobject_cast<const QAbstractItemView*>(widget->parentWidget());
    return view && view->viewport() == widget ? view->indexAt(place).data(Qt::ToolTipRole).toString()
                                              : widget->toolTip();
}

class PlainTexts : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Polish)
            showLettersOnly(qobject_cast<QLabel*>(object));
        return event->type() == QEvent::ToolTip && object->isWidgetType() &&
               takesHover(static_cast<QWidget*>(object), *static_cast<QHelpEvent*>(event));
    }

private:
    // Runs on Polish, before the size hint is computed: with rich text, computing it would load images that
    // the text names.
    static void showLettersOnly(QLabel* label) {
        if (label && label->textFormat() == Qt::AutoText && !label->inherits("QTipLabel"))
            label->setTextFormat(Qt::PlainText);
    }
    static bool takesHover(QWidget* widget, const QHelpEvent& event) {
        const QString text = hoverTextAt(widget, event.pos());
        if (!Qt::mightBeRichText(text) || isHoverText(text))
            return false;
        QToolTip::showText(event.globalPos(), hoverText(text), widget);
        return true;
    }
};

} // namespace

QString shownText(const QString& text, int letters) {
    QString shown = cut(text, letters);
    if (std::none_of(shown.cbegin(), shown.cend(), isUnfit))
        return shown;
    std::replace_if(
        shown.begin(), shown.end(), [](QChar letter) { return letter.isSpace() && isUnfit(letter); },
        QChar(u' '));
    std::replace_if(shown.begin(), shown.end(), isUnfit, QChar(QChar::ReplacementCharacter));
    return shown;
}

QString isolated(const QString& shown) {
    constexpr QChar kFirstStrong(0x2068);
    constexpr QChar kPop(0x2069);
    const QList<uint> letters = shown.toUcs4();
    return std::any_of(letters.cbegin(), letters.cend(), isRightToLeft) ? kFirstStrong + shown + kPop : shown;
}

QString hoverText(const QString& text) {
    return text.isEmpty() ? QString() : kHoverStart + withBreaks(shownText(text)).toHtmlEscaped() + kHoverEnd;
}

void installPlainTexts(QApplication& application) {
    application.installEventFilter(new PlainTexts(&application));
}

} // namespace ql240
