// The arithmetic on YUY2 frames: worked examples, vector code against scalar code, and repeated frames.
#include <QTest>

#include <array>
#include <numeric>
#include <vector>

#include "playback/frame_adjuster.h"

using namespace ql240;

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kChromaStride = 15;
#else
constexpr int kChromaStride = 1;
#endif

constexpr int kPairs = 128;

// Every luma once with one U and V: half of them first in a pair, the others, shuffled, second.
void fillPairs(std::uint8_t* pairs, int u, int v) {
    const int half = (u + v) % 2 * 128;
    for (int i = 0; i < kPairs; ++i) {
        *pairs++ = static_cast<std::uint8_t>(half + i);
        *pairs++ = static_cast<std::uint8_t>(u);
        *pairs++ = static_cast<std::uint8_t>(128 - half + (7 * i + u + 3 * v) % 128);
        *pairs++ = static_cast<std::uint8_t>(v);
    }
}

void compareWithScalar(const ImageAdjust& adjust, int stride) {
    std::vector<std::uint8_t> vector(256 * 4 * kPairs);
    for (int u = 0; u < 256; u += stride) {
        for (int v = 0; v < 256; v += stride)
            fillPairs(vector.data() + v * 4 * kPairs, u, v);
        std::vector<std::uint8_t> scalar = vector;
        adjustYuy2(vector.data(), vector.size(), adjust);
        adjustYuy2Scalar(scalar.data(), scalar.size(), adjust);
        QVERIFY2(vector == scalar, qPrintable(QStringLiteral("brightness %1, contrast %2, U %3")
                                                  .arg(adjust.brightness)
                                                  .arg(adjust.contrast)
                                                  .arg(u)));
    }
}

} // namespace

class TestImageAdjust : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void workedPairs() {
        using Pair = std::array<std::uint8_t, 4>;
        const std::tuple<Pair, ImageAdjust, Pair> rows[] = {
            {{16, 128, 16, 128}, {20, 100}, {36, 128, 36, 128}},
            {{0, 90, 235, 240}, {0, 60}, {59, 102, 127, 204}}, // below black, and white
            {{12, 140, 13, 110}, {15, 80}, {32, 138, 32, 116}},
            {{200, 30, 90, 220}, {-40, 160}, {220, 68, 105, 176}}, // clipped
        };
        for (auto [pair, adjust, result] : rows) {
            adjustYuy2Scalar(pair.data(), pair.size(), adjust);
            QCOMPARE(pair, result);
        }
        QCOMPARE(scaledLuma(0, {0, 60}), -9); // towards zero
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

    // The settings' values, and values that overflow the vector code's lanes.
    void vectorEqualsScalar() {
        for (const int brightness : {0, -60, 20, 60}) {
            for (const int contrast : {60, 40, 100, 160})
                compareWithScalar({brightness, contrast}, kChromaStride);
        }
        for (const int brightness : {-100000, -1001, -1000, 1000, 1001}) {
            for (const int contrast : {-100, -1, 0, 170, 171, 1000})
                compareWithScalar({brightness, contrast}, 15);
        }
    }

    void bytesAfterTheLastPairStay() {
        for (std::size_t length = 0; length < 140; ++length) {
            std::vector<std::uint8_t> frame(160);
            std::iota(frame.begin(), frame.end(), std::uint8_t{40});
            std::vector<std::uint8_t> expected = frame;
            adjustYuy2Scalar(expected.data(), length / 4 * 4, {20, 80});
            adjustYuy2(frame.data(), length, {20, 80});
            QCOMPARE(frame, expected);
        }
    }

    void adjustedFramesAreShownTwice() {
        struct Step {
            ImageAdjust adjust;
            std::uint8_t luma;
            std::size_t length;
            QSize size;
            std::uint8_t result;
        };
        const ImageAdjust brighter{20, 100};
        const QSize size(4, 2);
        const QSize turned(2, 4);
        const Step steps[] = {
            {{}, 16, 16, size, 16},         {brighter, 16, 16, size, 36},   {brighter, 60, 16, size, 36},
            {brighter, 60, 16, size, 80},   {{}, 99, 16, size, 99}, // neutral: drops the frame to repeat
            {brighter, 16, 16, size, 36},   {brighter, 60, 16, turned, 80}, {brighter, 60, 12, turned, 80},
            {brighter, 99, 12, turned, 80},
        };
        FrameAdjuster adjuster;
        for (const Step& step : steps) {
            std::vector<std::uint8_t> frame(step.length, 128);
            for (std::size_t i = 0; i < frame.size(); i += 2)
                frame[i] = step.luma;
            adjuster.setAdjust(step.adjust);
            adjuster.filter(frame.data(), frame.size(), step.size);
            for (std::size_t i = 0; i < frame.size(); i += 2)
                QCOMPARE(frame[i], step.result);
        }
    }
};

QTEST_GUILESS_MAIN(TestImageAdjust)
#include "test_image_adjust.moc"
