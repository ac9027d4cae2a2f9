// A text of the settings windows: either an entry of the interface's text table, or one that is the same in
// every language.
#pragma once

#include <QString>

#include "base/language.h"

namespace ql240 {

struct PageText {
    const char16_t* words = u""; // null: the table's entry
    UiText entry = {};

    QString text() const { return words ? QString::fromUtf16(words) : uiText(entry); }
};

constexpr PageText fixedText(const char16_t* words) {
    return {words, {}};
}
constexpr PageText languageText(UiText entry) {
    return {nullptr, entry};
}

} // namespace ql240
