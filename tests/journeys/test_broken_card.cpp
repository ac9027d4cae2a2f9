// A card that was pulled out while the camera was writing: damaged clips between good ones. The user lets it
// play and presses Next File where it stops.
#include "mainwindow/viewer.h"
#include "support/frame_code.h"

using namespace ql240;
using layout::ButtonId;

namespace {

constexpr int kBoundMs = 20000;
const QString kMessage = QStringLiteral("QL240 Viewer: Failed to open clip file");

enum Row { Good, ZerosMp4, HalfMp4, ZerosAvi, GoodAvi, IndexLost, GoodAgain, kRows };

QString pathOf(int row) {
    return QStringLiteral("VIDEO/REC_2013_04_05_12_0%1_00.%2")
        .arg(row)
        .arg(QLatin1String(row == ZerosAvi || row == GoodAvi ? "avi" : "mp4"));
}

QByteArray firstHalf(const TestClipSpec& spec) {
    QFile file(makeTestClip(spec));
    return file.open(QFile::ReadOnly) ? file.read(file.size() / 2) : QByteArray();
}

} // namespace

// Each function continues where the previous one stopped.
class TestBrokenCard : public QObject {
    Q_OBJECT

private:
    Viewer m_viewer;

    void write(int row, const QByteArray& bytes) {
        QFile file(m_viewer.path(pathOf(row)));
        QVERIFY(file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size());
    }
    bool isAt(Row row) const { return m_viewer.list()->currentRow() == row; }
    bool plays(Row row) const { return isAt(row) && m_viewer.player()->positionMs() > 0; }
    qsizetype messages() const { return m_viewer.answers.warnings.count(kMessage); }

private Q_SLOTS:
    void initTestCase() {
        TestClipSpec avi = aviTestClip();
        avi.frames = 15;
        TestClipSpec indexLast = Viewer::shortClip();
        indexLast.faststart = false;
        m_viewer.addClip(pathOf(Good));
        m_viewer.addClip(pathOf(GoodAvi), avi);
        m_viewer.addClip(pathOf(GoodAgain));
        write(ZerosMp4, QByteArray(50000, '\0'));
        write(HalfMp4, firstHalf(Viewer::shortClip(60)));
        write(ZerosAvi, QByteArray(50000, '\0'));
        write(IndexLost, firstHalf(indexLast));
        write(kRows, {}); // not listed
        m_viewer.show();
        m_viewer.folderDialogs.choice = m_viewer.path(QStringLiteral("VIDEO"));
        m_viewer.click(ButtonId::OpenFolder);
        QCOMPARE(m_viewer.list()->count(), int(kRows));
    }

    void clipOfZerosSaysSo() {
        QTRY_VERIFY_WITH_TIMEOUT(plays(Good), kBoundMs);
        QTRY_VERIFY_WITH_TIMEOUT(isAt(ZerosMp4), kBoundMs);
        QCOMPARE(messages(), 1);
        QCOMPARE(m_viewer.player()->clip(), nullptr);
        QCOMPARE(m_viewer.panel()->state().dateText, QStringLiteral("2013.04.05"));
        QTRY_COMPARE(m_viewer.panel()->state().progressMaximum, 0);
        m_viewer.click(ButtonId::NextFile);
    }

    void halfAClipPlaysAsFarAsItGoes() {
        QVERIFY(isAt(HalfMp4));
        int furthest = -1;
        const auto isOver = [&] {
            furthest = std::max(furthest, readFrameNumber(m_viewer.player()->frame(0, true)));
            return !isAt(HalfMp4);
        };
        QTRY_VERIFY_WITH_TIMEOUT(isOver(), kBoundMs);
        QVERIFY2(furthest > 10 && furthest < 50, qPrintable(QString::number(furthest)));
    }

    void emptyAviIsPassedOver() {
        QTRY_VERIFY_WITH_TIMEOUT(plays(GoodAvi), kBoundMs);
        QCOMPARE(messages(), 1);
        QTRY_VERIFY_WITH_TIMEOUT(isAt(IndexLost), kBoundMs);
        QCOMPARE(messages(), 2);
        QCOMPARE(m_viewer.player()->clip(), nullptr);
        m_viewer.key(Qt::Key_PageDown);
    }

    void lastGoodClipLeadsToTheFirst() {
        QTRY_VERIFY_WITH_TIMEOUT(plays(GoodAgain), kBoundMs);
        QTRY_VERIFY_WITH_TIMEOUT(plays(Good), kBoundMs);
        QCOMPARE(m_viewer.answers.warnings.size(), 2);
    }
};

QTEST_MAIN(TestBrokenCard)
#include "test_broken_card.moc"
