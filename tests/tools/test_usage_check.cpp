// Missing and unused pictures that the build would overlook; what it reports wrongly shows there.
#include <QTest>

#include "skin_compiler/usage_check.h"

using namespace ql240::skin;

namespace {

const QString kTable = QStringLiteral(
    "buttons a_ 2x2 key x\n"
    "picture s1 2x2\n"
    "picture s12 2x2\n"
    "picture one_bg 2x2\n"
    "picture splash/splash 2x2\n"
    "picture icon/icon.ico 2x2\n"
    "picture desktop 2x2\n"
    "outside desktop ghost\n");

} // namespace

class TestUsageCheck : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void report(); // not defined here: moc doesn't read all raw strings
};

void TestUsageCheck::report() {
    const char* const all = "a_1 a_2 a_3 s1 s12 one_bg splash icon";
    const struct {
        const char *source, *missing, *unused;
    } rows[] = {
        {R"(load(":/gfx_r/2012/b.png"); ":/gfx_r/2012/" + name; text("s3"))", "b ghost", all},
        {R"__(R"(url(:/gfx_r/2012/s1.png) url(:/gfx_r/2012/s2.png))")__", "s2 ghost",
         "a_1 a_2 a_3 s12 one_bg splash icon"},
        {R"({1, 2, "two_bg"}, {"b_", 4})", "two_bg b_ ghost", all},
        {R"(skinPath(QStringLiteral("t%1").arg(i)))", "t%1 ghost", all},
        {R"(skinPath("s3"); controlImages(QStringLiteral("b")))", "s3 b ghost", all},
        {R"(skinPath(QStringLiteral("s%1")); text("\"", "a_1"))", "ghost", "a_2 a_3 one_bg splash icon"},
        {"// \"s1\" \n /* \"s12\"\n\"one_bg\" */ char c = '\"'; // \"a_\"", "ghost", all}};
    QString error;
    const auto table = parsePictureTable(kTable, error);
    QVERIFY2(table, qPrintable(error));
    for (const auto& row : rows) {
        const UsageReport report = checkUsage(*table, namedPictures(row.source));
        QStringList unused;
        for (const QString& path : report.unused)
            unused << path.section('/', -1).section('.', 0, 0);
        QCOMPARE(report.missing.join(' '), row.missing);
        QCOMPARE(unused.join(' '), row.unused);
    }
}

QTEST_APPLESS_MAIN(TestUsageCheck)
#include "test_usage_check.moc"
