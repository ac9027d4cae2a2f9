// The arithmetic on YUY2 frames: worked values, and the vector code against the plain one bit for bit.
#include <QTest>

#include <array>
#include <numeric>
#include <vector>

#include "playback/image_adjust.h"

using namespace ql240;

using Pair = std::array<std::uint8_t, 4>;
Q_DECLARE_METATYPE(Pair)
Q_DECLARE_METATYPE(ql240::ImageAdjust)

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kChromaStride = 15;
#else
constexpr int kChromaStride = 1;
#endif

constexpr int kPairs = 128;

// Every luma once with one U and V: half of them as a pair's first, the other half, in another order, as its
// second.
void fillPairs(std::uint8_t* pairs, int u, int v) {
    const int half = (u + v) % 2 * 128;
    for (int i = 0; i < kPairs; ++i) {
        *pairs++ = static_cast<std::uint8_t>(half + i);
        *pairs++ = static_cast<std::uint8_t>(u);
        *pairs++ = static_cast<std::uint8_t>(128 - half + (7 * i + u + 3 * v) % 128);
        *pairs++ = static_cast<std::uint8_t>(v);
    }
}

} // namespace

class TestImageAdjust : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void workedPairs_data() {
        QTest::addColumn<Pair>("pair");
        QTest::addColumn<ImageAdjust>("adjust");
        QTest::addColumn<Pair>("result");
        const auto row = [](const char* name, const Pair& pair, const ImageAdjust& adjust,
                            const Pair& result) { QTest::newRow(name) << pair << adjust << result; };
        row("brighter black", {16, 128, 16, 128}, {20, 100}, {36, 128, 36, 128});
        row("red below black, in white", {0, 90, 235, 240}, {0, 60}, {59, 102, 127, 204});
        row("dark pair", {12, 140, 13, 110}, {15, 80}, {32, 138, 32, 116});
        row("clipped", {200, 30, 90, 220}, {-40, 160}, {220, 68, 105, 176});
        row("red", {81, 90, 81, 240}, {60, 40}, {96, 94, 96, 229});
    }
    void workedPairs() {
        QFETCH(Pair, pair);
        QFETCH(ImageAdjust, adjust);
        adjustYuy2Scalar(pair.data(), pair.size(), adjust);
        QTEST(pair, "result");
    }

    void lumaIsScaledTowardsZero() {
        QCOMPARE(scaledLuma(235, {0, 60}), 131);
        QCOMPARE(scaledLuma(0, {0, 60}), -9);
        QCOMPARE(scaledLuma(0, {5, 160}), -20);
    }

    void rgbOfPairs() {
        const std::vector<std::uint8_t> yuy2{16, 128, 235, 128, 126, 128, 255, 128, 81, 90,
                                             81, 240, 145, 54,  145, 34,  41,  240, 0,  110};
        const std::vector<std::uint8_t> expected{0,   0,   0,   255, 255, 255, 128, 128, 128, 255,
                                                 255, 255, 255, 0,   0,   255, 0,   0,   0,   255,
                                                 1,   0,   255, 1,   0,   0,   255, 0,   0,   207};
        std::vector<std::uint8_t> rgb(expected.size());
        yuy2ToRgb(yuy2.data(), yuy2.size() / 4, rgb.data());
        QCOMPARE(rgb, expected);
    }

    void vectorEqualsScalar_data() {
        QTest::addColumn<ImageAdjust>("adjust");
        QTest::addColumn<int>("stride");
        for (const int brightness : {0, -60, -40, -20, 20, 40, 60}) {
            for (const int contrast : {60, 40, 80, 100, 120, 140, 160})
                QTest::addRow("%d %d", brightness, contrast)
                    << ImageAdjust{brightness, contrast} << kChromaStride;
        }
        for (const int brightness : {-100000, -1001, -1000, 1000, 1001}) {
            for (const int contrast : {-100, -1, 0, 170, 171, 1000})
                QTest::addRow("%d %d", brightness, contrast) << ImageAdjust{brightness, contrast} << 15;
        }
    }
    void vectorEqualsScalar() {
        QFETCH(ImageAdjust, adjust);
        QFETCH(int, stride);
        std::vector<std::uint8_t> vector(256 * 4 * kPairs);
        for (int u = 0; u < 256; u += stride) {
            for (int v = 0; v < 256; v += stride)
                fillPairs(vector.data() + v * 4 * kPairs, u, v);
            std::vector<std::uint8_t> scalar = vector;
            adjustYuy2(vector.data(), vector.size(), adjust);
            adjustYuy2Scalar(scalar.data(), scalar.size(), adjust);
            QVERIFY2(vector == scalar, qPrintable(QStringLiteral("U %1").arg(u)));
        }
    }

    void bytesBehindTheLastPairStay() {
        for (std::size_t length = 0; length < 140; ++length) {
            std::vector<std::uint8_t> frame(160);
            std::iota(frame.begin(), frame.end(), std::uint8_t{40});
            std::vector<std::uint8_t> expected = frame;
            adjustYuy2Scalar(expected.data(), length / 4 * 4, {20, 80});
            adjustYuy2(frame.data(), length, {20, 80});
            QCOMPARE(frame, expected);
        }
    }
};

QTEST_GUILESS_MAIN(TestImageAdjust)
#include "test_image_adjust.moc"
