// A text of the settings windows: either an entry of the interface language's table or one that is the same
// in every language.
#pragma once

#include <QString>

#include "base/language.h"

namespace ql240 {

struct PageText {
    const char16_t* words = nullptr;
    int id = -1;

    QString text() const { return words ? QString::fromUtf16(words) : uiText(id); }
};

constexpr PageText fixedText(const char16_t* words) {
    return {words, -1};
}
constexpr PageText languageText(int id) {
    return {nullptr, id};
}

} // namespace ql240
