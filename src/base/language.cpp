#include "base/language.h"

#include "base/ui_texts.h"

namespace ql240 {
namespace {

static_assert(kUiTexts.size() == kUiTextCount);

QString& languageSlot() {
    static QString code;
    return code;
}

const char* UiTextRow::*columnOf(const QString& code) {
    if (code == QLatin1String("ru"))
        return &UiTextRow::russian;
    for (const char* english : {"ch", "es", "en"}) {
        if (code == QLatin1String(english))
            return &UiTextRow::english;
    }
    return &UiTextRow::korean;
}

} // namespace

void setCurrentLanguage(const QString& code) {
    languageSlot() = code;
}

QString currentLanguage() {
    return languageSlot();
}

QString uiText(int id) {
    if (id < 0 || id >= kUiTextCount)
        return {};
    return QString::fromUtf8(kUiTexts[id].*columnOf(languageSlot()));
}

QString languageCodeFor(QLocale::Language language) {
    switch (language) {
        case QLocale::Korean:
            return QStringLiteral("kr");
        case QLocale::Russian:
        case QLocale::Kikuyu:
            return QStringLiteral("ru");
        case QLocale::Chinese:
            return QStringLiteral("ch");
        case QLocale::Spanish:
            return QStringLiteral("es");
        default:
            return QStringLiteral("en");
    }
}

} // namespace ql240
