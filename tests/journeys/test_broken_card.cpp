// A card that was pulled out while the camera wrote: damaged clips between good ones. The user lets it play
// and presses the next button where it stands still.
#include "mainwindow/viewer.h"
#include "support/frame_code.h"

using namespace ql240;
using layout::ButtonId;

namespace {

constexpr int kBoundMs = 20000;
const QString kMessage = QStringLiteral("QL240 Viewer: Failed to open clip file");

enum Row { Good, ZerosMp4, HalfMp4, ZerosAvi, GoodAvi, IndexLost, GoodAgain, kRows };
constexpr std::array kNames{"REC_2013_04_05_12_01_00.mp4", "REC_2013_04_05_12_02_00.mp4",
                            "REC_2013_04_05_12_03_00.mp4", "REC_2013_04_05_12_04_00.avi",
                            "REC_2013_04_05_12_05_00.avi", "REC_2013_04_05_12_06_00.mp4",
                            "REC_2013_04_05_12_07_00.mp4"};

TestClipSpec aviClip() {
    TestClipSpec spec = aviTestClip();
    spec.frames = 15;
    return spec;
}

} // namespace

class TestBrokenCard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void goodClipPlaysToItsEnd();
    void clipOfZerosSaysSo();
    void halfAClipPlaysAsFarAsItGoes();
    void emptyAviIsPassedOver();
    void clipWithoutItsIndexSaysSo();
    void lastGoodClipLeadsToTheFirst();

private:
    static QString pathOf(Row row) { return QStringLiteral("VIDEO/") + QLatin1String(kNames[row]); }
    void write(const QString& name, const QByteArray& bytes) const;
    static QByteArray firstHalf(const TestClipSpec& spec);
    bool isAt(Row row) const { return m_viewer.list()->currentRow() == row; }
    bool plays(Row row) const { return isAt(row) && m_viewer.player()->positionMs() > 0; }
    qsizetype messages() const { return m_viewer.answers.warnings.count(kMessage); }

    Viewer m_viewer;
};

void TestBrokenCard::write(const QString& name, const QByteArray& bytes) const {
    QFile file(m_viewer.path(name));
    QVERIFY(file.open(QFile::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray TestBrokenCard::firstHalf(const TestClipSpec& spec) {
    QFile file(makeTestClip(spec));
    return file.open(QFile::ReadOnly) ? file.read(file.size() / 2) : QByteArray();
}

void TestBrokenCard::initTestCase() {
    m_viewer.addClip(pathOf(Good));
    m_viewer.addClip(pathOf(GoodAvi), aviClip());
    m_viewer.addClip(pathOf(GoodAgain));
    TestClipSpec indexLast = Viewer::shortClip();
    indexLast.faststart = false;
    write(pathOf(ZerosMp4), QByteArray(50000, '\0'));
    write(pathOf(HalfMp4), firstHalf(Viewer::shortClip(60)));
    write(pathOf(ZerosAvi), QByteArray(50000, '\0'));
    write(pathOf(IndexLost), firstHalf(indexLast));
    // Nothing was written of this one.
    write(QStringLiteral("VIDEO/REC_2013_04_05_12_08_00.mp4"), QByteArray());
    m_viewer.show();
    m_viewer.folderDialogs.choice = m_viewer.path(QStringLiteral("VIDEO"));
    m_viewer.click(ButtonId::OpenFolder);
    QCOMPARE(m_viewer.list()->count(), int(kRows));
}

void TestBrokenCard::goodClipPlaysToItsEnd() {
    QTRY_VERIFY_WITH_TIMEOUT(plays(Good), kBoundMs);
    QTRY_VERIFY_WITH_TIMEOUT(isAt(ZerosMp4), kBoundMs);
}

void TestBrokenCard::clipOfZerosSaysSo() {
    QCOMPARE(messages(), 1);
    QCOMPARE(m_viewer.player()->clip(), nullptr);
    QCOMPARE(m_viewer.panel()->state().dateText, QStringLiteral("2013.04.05"));
    QTRY_COMPARE(m_viewer.panel()->state().progressMaximum, 0);
    m_viewer.click(ButtonId::NextFile);
}

void TestBrokenCard::halfAClipPlaysAsFarAsItGoes() {
    QVERIFY(isAt(HalfMp4));
    int furthest = -1;
    QTRY_VERIFY_WITH_TIMEOUT(
        (furthest = std::max(furthest, readFrameNumber(m_viewer.player()->frame(0, true))), !isAt(HalfMp4)),
        kBoundMs);
    QVERIFY2(furthest > 10 && furthest < 50, qPrintable(QString::number(furthest)));
}

void TestBrokenCard::emptyAviIsPassedOver() {
    QTRY_VERIFY_WITH_TIMEOUT(plays(GoodAvi), kBoundMs);
    QCOMPARE(messages(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(isAt(IndexLost), kBoundMs);
}

void TestBrokenCard::clipWithoutItsIndexSaysSo() {
    QCOMPARE(messages(), 2);
    QCOMPARE(m_viewer.player()->clip(), nullptr);
    m_viewer.key(Qt::Key_PageDown);
}

void TestBrokenCard::lastGoodClipLeadsToTheFirst() {
    QTRY_VERIFY_WITH_TIMEOUT(plays(GoodAgain), kBoundMs);
    QTRY_VERIFY_WITH_TIMEOUT(plays(Good), kBoundMs);
    QCOMPARE(messages(), 2);
    QCOMPARE(m_viewer.answers.warnings.size(), 2);
}

QTEST_MAIN(TestBrokenCard)
#include "test_broken_card.moc"
