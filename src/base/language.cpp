#include "base/language.h"

#include <algorithm>

namespace ql240 {
namespace {

QString& languageSlot() {
    static QString code;
    return code;
}

// An unknown code selects Korean.
const char* UiTextRow::*columnOf(const QString& code) {
    const auto* found = std::ranges::find_if(
        kInterfaceLanguages, [&](const InterfaceLanguage& each) { return code == QLatin1String(each.code); });
    return found == kInterfaceLanguages.end() ? &UiTextRow::korean : found->texts;
}

} // namespace

void setCurrentLanguage(const QString& code) {
    languageSlot() = code;
}

QString currentLanguage() {
    return languageSlot();
}

bool interfaceIsKorean() {
    return columnOf(languageSlot()) == &UiTextRow::korean;
}

QString uiText(UiText text) {
    const UiTextRow& row = kUiTexts[static_cast<std::size_t>(text)];
    return QString::fromUtf8(row.*columnOf(languageSlot()));
}

QString languageCodeFor(QLocale::Language language) {
    const auto* found = std::ranges::find_if(kInterfaceLanguages, [=](const InterfaceLanguage& each) {
        return each.system == language || each.alsoFor == language;
    });
    return found == kInterfaceLanguages.end() ? kUsualLanguage : QLatin1StringView(found->code);
}

} // namespace ql240
