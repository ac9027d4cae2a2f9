#include "settings/spoken_texts.h"

#include <QHelpEvent>
#include <QToolTip>
#include <algorithm>

#include "settings/config_layout.h"
#include "settings/page_layout.h"
#include "widgets/plain_text.h"

namespace ql240 {
namespace {

constexpr bool isPlain(std::u16string_view text) {
    return std::ranges::all_of(text, [](char16_t letter) { return letter < 0x80; });
}

constexpr bool isKnown(const PageText& text) {
    return text.words == nullptr || isPlain(text.words) ||
           std::ranges::find(kSpokenTexts, std::u16string_view(text.words), &SpokenText::painted) !=
               kSpokenTexts.end();
}

constexpr bool areKnown(std::span<const OptionRow> rows) {
    return std::ranges::all_of(rows, [](const OptionRow& row) {
        return isKnown(row.name) && std::ranges::all_of(row.choices, isKnown, &Choice::name);
    });
}

static_assert(areKnown(config::kRows) &&
                  std::ranges::all_of(pages::kPages,
                                      [](const pages::PageLayout& page) {
                                          return areKnown(page.rows) && isKnown(fixedText(page.title));
                                      }) &&
                  std::ranges::all_of(config::kPageButtons,
                                      [](const config::PageButton& button) {
                                          return isKnown(fixedText(button.text));
                                      }),
              "each Korean text of a row, a choice, a page and a page's button has a meaning");

// The place in the window, or null.
struct Hovered {
    const OptionRow* row = nullptr;
    const Choice* choice = nullptr;
};

Hovered partAt(std::span<const OptionRow> rows, QPoint place) {
    for (const OptionRow& row : rows) {
        for (const Choice& choice : row.choices) {
            if (boundsOf(choice).contains(place))
                return {&row, &choice};
        }
    }
    for (const OptionRow& row : rows) {
        if (boundsOf(row).contains(place))
            return {&row, nullptr};
    }
    return {};
}

QString meaningOf(const Hovered& part) {
    const QString row = spokenText(part.row->name.text());
    return part.choice ? row + QLatin1String(": ") + spokenText(part.choice->name.text()) : row;
}

class RowHoverTexts : public QObject {
public:
    RowHoverTexts(QObject* window, std::span<const OptionRow> rows) : QObject(window), m_rows(rows) {}

    bool eventFilter(QObject* window, QEvent* event) override {
        if (event->type() != QEvent::ToolTip || interfaceIsKorean())
            return false;
        const auto& help = *static_cast<QHelpEvent*>(event);
        const Hovered part = partAt(m_rows, help.pos());
        if (!part.row)
            return false;
        QToolTip::showText(help.globalPos(), hoverText(meaningOf(part)), static_cast<QWidget*>(window));
        return true;
    }

private:
    std::span<const OptionRow> m_rows;
};

} // namespace

QString spokenText(const QString& painted) {
    const auto known = std::ranges::find_if(
        kSpokenTexts, [&painted](const SpokenText& each) { return painted == QStringView(each.painted); });
    if (interfaceIsKorean() || known == kSpokenTexts.end())
        return painted;
    return known->english ? QString::fromLatin1(known->english) : uiText(known->entry);
}

void addRowHoverTexts(QWidget* window, std::span<const OptionRow> rows) {
    window->installEventFilter(new RowHoverTexts(window, rows));
}

void speak(QWidget* widget, const QString& painted) {
    const QString meaning = spokenText(painted);
    if (meaning == painted)
        return;
    widget->setAccessibleName(meaning);
    widget->setToolTip(hoverText(meaning));
}

} // namespace ql240
