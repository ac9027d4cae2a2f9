#include <QTest>

#include "clips/clip.h"
#include "clips/clip_name.h"

using namespace ql240;

class TestClip : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void names_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("category");
        QTest::addColumn<QString>("date");
        QTest::newRow("driving") << "REC_2013_04_05_12_30_00.mp4" << 1 << "2013.04.05";
        QTest::newRow("event, avi") << "EVS_2013_04_05_12_30_00.avi" << 2 << "2013.04.05";
        QTest::newRow("category ignores case, date doesn't")
            << "rec_2013_04_05_12_30_00.mp4" << 1 << "rec2.01.30";
        QTest::newRow("event for the sensors only") << "EVT_2013_04_05_12_30_00.avi" << 0 << "EVT2.01.30";
        QTest::newRow("no time stamp") << "REC_garbage.mp4" << 1 << "garb.ag.e";
        QTest::newRow("short name is padded") << "clip.mp4" << 0 << "clip.  .";
        QTest::newRow("nothing left") << "REC_.mp4" << 1 << "    .  .";
        QTest::newRow("prefix within the name") << "xREC_1.mp4" << 0 << "x1  .  .";
    }
    void names() {
        QFETCH(QString, name);
        QFETCH(QString, date);
        const bool stamped = name.contains("_2013_");
        QCOMPARE(clipStart(name), stamped ? QDateTime({2013, 4, 5}, {12, 30}) : QDateTime());
        QTEST(int(Clip(QFileInfo("/EVS_card/" + name)).category()), "category");
        QCOMPARE(clipDateText(name), date);
    }
};

QTEST_GUILESS_MAIN(TestClip)
#include "test_clip.moc"
