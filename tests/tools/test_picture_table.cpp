// The table's form: what it may say, and that each mistake is told with its line.
#include <QtTest>

#include "skin_compiler/picture_table.h"
#include "skin_compiler/skin_writer.h"

using namespace ql240::skin;

class TestPictureTable : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void readsPicturesAndButtons();
    void tellsMistakes_data();
    void tellsMistakes();
    void tellsMistakesOfShapes_data();
    void tellsMistakesOfShapes();
    void rendersAtBothScales();
};

void TestPictureTable::readsPicturesAndButtons() {
    QString error;
    const auto table = parsePictureTable(QStringLiteral("# a skin\n"
                                                        "color red 255 0 0 # pure\n"
                                                        "picture ground 4x3\n"
                                                        "    fill 0 0 4 3 red\n"
                                                        "\n"
                                                        "    text 0 0 4 3 left 8 red \"two words\"\n"
                                                        "picture splash/splash.png 5x5 : fill 0 0 5 5 red\n"
                                                        "buttons key_ 6x6 key plain other\n"),
                                         error);
    QVERIFY2(table, qPrintable(error));
    QCOMPARE(table->palette.value(QStringLiteral("red")), QColor(255, 0, 0));
    QStringList paths;
    for (const Picture& picture : table->pictures) {
        paths << picture.path;
    }
    QCOMPARE(paths, QStringList({"2012/ground.png", "splash/splash.png", "2012/key_1.png", "2012/key_2.png",
                                 "2012/key_3.png"}));
    QCOMPARE(table->pictures[0].shapes.size(), size_t(2));
    QCOMPARE(table->pictures[0].shapes[1].arguments.back(), QStringLiteral("two words"));
    QCOMPARE(table->pictures[1].shapes.size(), size_t(1));
    QCOMPARE(table->pictures[2].shapes[0].arguments, QStringList({"key", "0", "plain"}));
    QCOMPARE(table->pictures[4].shapes[0].arguments, QStringList({"key", "2", "other"}));
}

void TestPictureTable::tellsMistakes_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown statement") << "\npaint x"
                                       << "line 2: unknown";
    QTest::newRow("shape without picture") << "  fill 0 0 1 1 red"
                                           << "line 1: a shape";
    QTest::newRow("size") << "picture a 3x0"
                          << "line 1: a picture";
    QTest::newRow("no size") << "picture a"
                             << "line 1: a picture";
    QTest::newRow("no colon") << "picture a 3x3 fill"
                              << "line 1: a shape";
    QTest::newRow("empty colon") << "picture a 3x3 :"
                                 << "line 1: a shape";
    QTest::newRow("channel") << "color a 1 2 256"
                             << "line 1: a channel";
    QTest::newRow("channels") << "color a 1 2"
                              << "line 1: a colour";
    QTest::newRow("style") << "buttons a 3x3"
                           << "line 1: buttons";
    QTest::newRow("twice") << "picture a 3x3\npicture 2012/a.png 3x3"
                           << "line 2: a second";
}

void TestPictureTable::tellsMistakes() {
    QFETCH(QString, text);
    QFETCH(QString, message);
    QString error;
    QVERIFY(!parsePictureTable(text, error));
    QVERIFY2(error.startsWith(message), qPrintable(error));
}

void TestPictureTable::tellsMistakesOfShapes_data() {
    QTest::addColumn<QString>("shape");
    QTest::addColumn<QString>("message");
    QTest::newRow("no such shape") << "fyll 0 0 1 1 red"
                                   << "line 3: fyll: no such shape";
    QTest::newRow("too few") << "fill 0 0 1"
                             << "line 3: fill: too few";
    QTest::newRow("too many") << "fill 0 0 1 1 red 4 5"
                              << "line 3: fill: too many";
    QTest::newRow("no number") << "fill 0 zero 1 1 red"
                               << "line 3: fill: \"zero\"";
    QTest::newRow("no colour") << "fill 0 0 1 1 blue"
                               << "line 3: fill: \"blue\"";
    QTest::newRow("no glyph") << "glyph nothing 0 0 1 1 red"
                              << "line 3: glyph: no glyph";
    QTest::newRow("no style") << "button round 0"
                              << "line 3: button: \"round\"";
}

void TestPictureTable::tellsMistakesOfShapes() {
    QFETCH(QString, shape);
    QFETCH(QString, message);
    QString error;
    const auto table =
        parsePictureTable(QStringLiteral("color red 255 0 0\npicture a 3x3\n  %1").arg(shape), error);
    QVERIFY2(table, qPrintable(error));
    QVERIFY(renderPicture(table->pictures[0], table->palette, QString(), 1, error).isNull());
    QVERIFY2(error.startsWith(message), qPrintable(error));
}

void TestPictureTable::rendersAtBothScales() {
    QString error;
    const auto table =
        parsePictureTable(QStringLiteral("color red 255 0 0\npicture a 4x2\n  fill 1 0 2 1 red"), error);
    QVERIFY2(table, qPrintable(error));
    for (const int scale : {1, 2}) {
        const QImage image = renderPicture(table->pictures[0], table->palette, QString(), scale, error);
        QCOMPARE(image.size(), QSize(4, 2) * scale);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const bool inside = x >= scale && x < 3 * scale && y < scale;
                QCOMPARE(image.pixelColor(x, y), inside ? QColor(255, 0, 0) : QColor(0, 0, 0, 0));
            }
        }
    }
}

QTEST_MAIN(TestPictureTable)
#include "test_picture_table.moc"
