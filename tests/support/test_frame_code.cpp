// A damaged bar code must not pass as another frame's number: the playback tests rest on it.
#include <QtTest/QTest>

#include "support/frame_code.h"

using namespace ql240;

class TestFrameCode : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void unreadablePicturesGiveNoNumber() {
        QByteArray luma(320 * 180, 0);
        QImage image(reinterpret_cast<uchar*>(luma.data()), 320, 180, 320, QImage::Format_Grayscale8);
        QCOMPARE(readFrameNumber(image), -1);
        paintFrameLuma({reinterpret_cast<uchar*>(luma.data()), size_t(luma.size())}, 320, 180, {16383, 1},
                       true);
        QCOMPARE(readFrameMark(image), std::optional(FrameMark{16383, 1}));
        // One cell turned round: the check bits must notice, or a damaged picture passes as another frame.
        for (int cell = 2; cell < 22; ++cell) {
            QImage damaged = image.copy();
            for (int y = 0; y < 180 / 2; ++y)
                for (int x = 320 * cell / 24 + 1; x < 320 * (cell + 1) / 24; ++x)
                    damaged.scanLine(y)[x] = uchar(255 - damaged.scanLine(y)[x]);
            QCOMPARE(readFrameNumber(damaged), -1);
        }
        QCOMPARE(readFrameNumber(image.mirrored(true, false)), -1);
        QCOMPARE(readFrameNumber(QImage()), -1);
    }
};

QTEST_GUILESS_MAIN(TestFrameCode)
#include "test_frame_code.moc"
