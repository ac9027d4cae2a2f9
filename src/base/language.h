// The interface language, one for the whole process, by its code in kInterfaceLanguages. Interface thread
// only. Texts on screen do not follow a change of language by themselves: widgets ask again.
#pragma once

#include <QString>

#include "base/ui_texts.h"

namespace ql240 {

// For users whose language isn't among them.
inline constexpr QLatin1StringView kUsualLanguage("en");

void setCurrentLanguage(const QString& code);

// Empty until start-up has set one.
QString currentLanguage();

// Whether the texts are Korean, as they are for an unknown code.
bool interfaceIsKorean();

// A text in the current language. Chinese and Spanish fall back to English, an unknown code to Korean.
QString uiText(UiText text);

// The interface language for a user whose system language is `language`.
QString languageCodeFor(QLocale::Language language);

} // namespace ql240
