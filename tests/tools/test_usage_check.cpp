// Which pictures a source text asks for, and what is missing or unused.
#include <QtTest>

#include "skin_compiler/usage_check.h"

using namespace ql240::skin;

class TestUsageCheck : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void report_data();
    void report();
};

void TestUsageCheck::report_data() {
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("missing");
    QTest::addColumn<QString>("unused");
    const QString all = QStringLiteral("a_1 a_2 a_3 s1 s12 one_bg splash icon");
    const QString rest = QStringLiteral("s1 s12 one_bg splash icon");
    const auto row = [](const char* name, const char* source, const QString& missing, const QString& unused) {
        QTest::newRow(name) << QString::fromUtf8(source) << missing << unused;
    };
    row("nothing", "int a_1;", "", all);
    row("path", R"(load(":/gfx_r/2012/a_2.png");)", "", "a_1 a_3 " + rest);
    row("path without slash", R"(load(":gfx_r/splash/splash.png");)", "", "a_1 a_2 a_3 s1 s12 one_bg icon");
    row("missing path", R"(load(":/gfx_r/2012/b.png");)", "b", all);
    row("folder alone", R"(return ":/gfx_r/2012/" + name;)", "", all);
    row("two in a style sheet", R"__(R"(url(:/gfx_r/2012/s1.png) url(:/gfx_r/2012/s2.png))")__", "s2",
        "a_1 a_2 a_3 s12 one_bg splash icon");
    row("name in a table", R"({1, 2, "one_bg"})", "", "a_1 a_2 a_3 s1 s12 splash icon");
    row("missing ground in a table", R"({1, 2, "two_bg"})", "two_bg", all);
    row("stem", R"({"a_", 4})", "", rest);
    row("missing stem", R"({"b_", 4})", "b_", all);
    row("pattern", R"(skinPath(QStringLiteral("s%1").arg(i)))", "", "a_1 a_2 a_3 one_bg splash icon");
    row("missing pattern", R"(skinPath(QStringLiteral("t%1").arg(i)))", "t%1", all);
    row("call", R"(skinPath("s3"); controlImages(QStringLiteral("b")))", "s3 b", all);
    row("other literal", R"(text("s3"))", "", all);
    row("comments", "// \"s1\" \n /* \"s12\"\n\"one_bg\" */ char c = '\"'; // \"a_\"", "", all);
    row("unknown outside", "", "ghost", all);
    row("escaped quote", R"(text("\"", "s1"))", "", "a_1 a_2 a_3 s12 one_bg splash icon");
}

void TestUsageCheck::report() {
    QFETCH(QString, source);
    QString error;
    const auto table = parsePictureTable(
        QStringLiteral("buttons a_ 2x2 key x\n"
                       "picture s1 2x2\n"
                       "picture s12 2x2\n"
                       "picture one_bg 2x2\n"
                       "picture splash/splash 2x2\n"
                       "picture icon/icon.ico 2x2\n"
                       "picture desktop 2x2\n"
                       "outside desktop%1\n")
            .arg(QString::fromLatin1(QTest::currentDataTag()) == QLatin1String("unknown outside")
                     ? QStringLiteral(" ghost")
                     : QString()),
        error);
    QVERIFY2(table, qPrintable(error));
    const UsageReport report = checkUsage(*table, namedPictures(source));
    QStringList unused;
    for (const QString& path : report.unused)
        unused << path.section(QLatin1Char('/'), -1).section(QLatin1Char('.'), 0, 0);
    QTEST(report.missing.join(QLatin1Char(' ')), "missing");
    QTEST(unused.join(QLatin1Char(' ')), "unused");
}

QTEST_APPLESS_MAIN(TestUsageCheck)
#include "test_usage_check.moc"
