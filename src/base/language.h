// The interface language, one for the whole process, and the text table that follows it. Interface thread
// only. Codes: "kr", "en", "ru", "ch", "es". Texts already shown do not change with the language; who shows
// them asks anew.
#pragma once

#include <QLocale>
#include <QString>

namespace ql240 {

inline constexpr int kUiTextCount = 64;

void setCurrentLanguage(const QString& code);

// Empty until start-up has chosen one.
QString currentLanguage();

// The text of `id`, 0 to 63, in the current language; Chinese and Spanish read the English texts, an unknown
// code the Korean ones. Any other id gives an empty text.
QString uiText(int id);

// The interface language for someone whose system speaks `language`.
QString languageCodeFor(QLocale::Language language);

} // namespace ql240
