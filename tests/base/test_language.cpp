#include <QTest>

#include "base/language.h"

using namespace ql240;

class TestLanguage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void column_data() {
        QTest::addColumn<QString>("code");
        QTest::addColumn<int>("id");
        QTest::addColumn<QString>("text");
        QTest::newRow("korean") << "kr" << 13 << "현재 시간 가져오기";
        QTest::newRow("english") << "en" << 4
                                 << "Viewer (The below items will only affect the viewer display.)";
        QTest::newRow("russian") << "ru" << 16 << "движения";
        QTest::newRow("chinese reads english") << "ch" << 48 << "Play";
        QTest::newRow("spanish reads english") << "es" << 63 << "× 1.0";
        QTest::newRow("multiplication sign") << "kr" << 63 << "× 1.0";
        QTest::newRow("letter x") << "ru" << 63 << "x 1.0";
        QTest::newRow("unknown reads korean") << "de" << 0 << "설정";
        QTest::newRow("empty reads korean") << "" << 23 << "확인";
        QTest::newRow("codes respect case") << "EN" << 23 << "확인";
    }
    void column() {
        QFETCH(QString, code);
        QFETCH(int, id);
        setCurrentLanguage(code);
        QCOMPARE(currentLanguage(), code);
        QTEST(uiText(static_cast<UiText>(id)), "text");
    }

    void everyTextIsThere() {
        for (const char* code : {"kr", "en", "ru"}) {
            setCurrentLanguage(QLatin1String(code));
            for (int id = 0; id < kUiTextCount; ++id) {
                const QString text = uiText(static_cast<UiText>(id));
                QVERIFY2(!text.isEmpty(), qPrintable(QStringLiteral("%1 %2").arg(code).arg(id)));
                QVERIFY(!text.contains(QChar::ReplacementCharacter));
            }
        }
    }

    void systemLanguage_data() {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("code");
        QTest::newRow("Korea") << "ko_KR"
                               << "kr";
        QTest::newRow("Russia") << "ru_RU"
                                << "ru";
        QTest::newRow("Kikuyu") << "ki_KE"
                                << "ru";
        QTest::newRow("China") << "zh_CN"
                               << "ch";
        QTest::newRow("Taiwan") << "zh_TW"
                                << "ch";
        QTest::newRow("Mexico") << "es_MX"
                                << "es";
        QTest::newRow("Germany") << "de_DE"
                                 << "en";
        QTest::newRow("Croatia") << "hr_HR"
                                 << "en";
        QTest::newRow("no locale") << "C"
                                   << "en";
    }
    void systemLanguage() {
        QFETCH(QString, locale);
        QTEST(languageCodeFor(QLocale(locale).language()), "code");
    }
};

QTEST_GUILESS_MAIN(TestLanguage)
#include "test_language.moc"
