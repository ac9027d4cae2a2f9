#include "base/language.h"

#include <algorithm>

#include "base/ui_texts.h"

namespace ql240 {
namespace {

static_assert(kUiTexts.size() == kUiTextCount);

QString& languageSlot() {
    static QString code;
    return code;
}

// Kikuyu selecting Russian is intended.
constexpr std::array kLanguages = std::to_array<InterfaceLanguage>({
    {"kr", UiText::Korean, &UiTextRow::korean, QLocale::Korean, {}},
    {"en", UiText::English, &UiTextRow::english, QLocale::English, {}},
    {"ru", UiText::Russian, &UiTextRow::russian, QLocale::Russian, QLocale::Kikuyu},
    {"ch", UiText::Chinese, &UiTextRow::english, QLocale::Chinese, {}},
    {"es", UiText::Spanish, &UiTextRow::english, QLocale::Spanish, {}},
});

// An unknown code selects Korean.
const char* UiTextRow::*columnOf(const QString& code) {
    const auto* found = std::ranges::find_if(
        kLanguages, [&](const InterfaceLanguage& each) { return code == QLatin1String(each.code); });
    return found == kLanguages.end() ? &UiTextRow::korean : found->texts;
}

} // namespace

void setCurrentLanguage(const QString& code) {
    languageSlot() = code;
}

QString currentLanguage() {
    return languageSlot();
}

QString uiText(UiText text) {
    const UiTextRow& row = kUiTexts[static_cast<std::size_t>(text)];
    return QString::fromUtf8(row.*columnOf(languageSlot()));
}

QString languageCodeFor(QLocale::Language language) {
    const auto* found = std::ranges::find_if(kLanguages, [=](const InterfaceLanguage& each) {
        return each.system == language || each.alsoFor == language;
    });
    return found == kLanguages.end() ? kUsualLanguage : QLatin1StringView(found->code);
}

std::span<const InterfaceLanguage> interfaceLanguages() {
    return kLanguages;
}

} // namespace ql240
