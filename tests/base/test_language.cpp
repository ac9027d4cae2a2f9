#include <QTest>

#include "base/language.h"

using namespace ql240;

class TestLanguage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Chinese and Spanish users get English, an unknown code Korean.
    void column() {
        const std::pair<const char*, const char*> play[] = {{"kr", "재생"}, {"en", "Play"}, {"ch", "Play"},
                                                            {"es", "Play"}, {"de", "재생"}, {"", "재생"},
                                                            {"EN", "재생"}};
        for (const auto& [code, text] : play) {
            setCurrentLanguage(code);
            QCOMPARE(currentLanguage(), code);
            QCOMPARE(uiText(UiText::Play), text);
        }
    }

    void everyTextIsThere() {
        for (const InterfaceLanguage& language : kInterfaceLanguages) {
            for (const UiTextRow& row : kUiTexts) {
                const QString text = QString::fromUtf8(row.*language.texts);
                QVERIFY(!text.isEmpty() && !text.contains(QChar::ReplacementCharacter));
            }
        }
        setCurrentLanguage("ru");
        QCOMPARE(uiText(UiText::MotionSensitivity), "движения");
    }

    void systemLanguage() {
        const std::pair<const char*, const char*> codes[] = {{"ko_KR", "kr"}, {"ru_RU", "ru"},
                                                             {"ki_KE", "ru"}, {"zh_TW", "ch"},
                                                             {"es_MX", "es"}, {"de_DE", "en"}};
        for (const auto& [locale, code] : codes)
            QCOMPARE(languageCodeFor(QLocale(locale).language()), code);
    }
};

QTEST_GUILESS_MAIN(TestLanguage)
#include "test_language.moc"
