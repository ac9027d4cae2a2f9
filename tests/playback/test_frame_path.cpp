// A decoded frame's way from the grabber: the handler's answers, and adjusted frames shown twice.
#include <QTest>

#include <vector>

#include "playback/frame_adjuster.h"
#include "playback/sample_handler.h"

using namespace ql240;
using Bytes = std::vector<std::uint8_t>;

namespace {

struct Recorder final : SampleFilter {
    void filterSample(std::int32_t index, double time, std::uint8_t* buffer, std::int32_t length) override {
        calls += QStringLiteral("%1 %2 %3 %4").arg(index).arg(time).arg(buffer[0]).arg(length);
    }
    QStringList calls;
};

} // namespace

class TestFramePath : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void handlerAnswersForItselfOnly() {
        SampleHandler handler(nullptr);
        void* object = &handler;
        QCOMPARE(handler.QueryInterface(guid("{0579154A-2B53-4994-B0D0-E773148EFF85}"), &object), kStatusOk);
        QCOMPARE(object, static_cast<ISampleGrabberCB*>(&handler));
        QCOMPARE(handler.QueryInterface(IUnknown::kIid, &object), static_cast<Status>(0x80004002));
        QCOMPARE(object, nullptr);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(handler.Release(), 1U);
            QCOMPARE(handler.AddRef(), 2U);
        }
    }

    void handlerPassesFramesOn() {
        std::uint8_t frame[] = {9, 8, 7, 6};
        SampleHandler idle(nullptr);
        QCOMPARE(idle.BufferCB(1.0, frame, 4), kStatusOk);
        Recorder recorder;
        SampleHandler handler(&recorder);
        QCOMPARE(handler.SampleCB(1.0, frame), kStatusOk);
        QCOMPARE(handler.BufferCB(0.5, frame, 4), kStatusOk);
        handler.setIndex(1);
        QCOMPARE(handler.BufferCB(2.5, frame, 3), kStatusOk);
        QCOMPARE(recorder.calls, QStringList({"-1 0.5 9 4", "1 2.5 9 3"}));
    }

    // Each step: the adjustment, a frame (its luma, length and size), and the luma that comes out.
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
            {brighter, 60, 16, size, 80},   {{}, 99, 16, size, 99}, // neutral forgets the frame to repeat
            {brighter, 16, 16, size, 36},   {brighter, 60, 16, turned, 80}, {brighter, 60, 12, turned, 80},
            {brighter, 99, 12, turned, 80},
        };
        FrameAdjuster adjuster;
        for (const Step& step : steps) {
            Bytes frame(step.length, 128);
            for (std::size_t i = 0; i < frame.size(); i += 2)
                frame[i] = step.luma;
            adjuster.setAdjust(step.adjust);
            adjuster.filter(frame.data(), frame.size(), step.size);
            for (std::size_t i = 0; i < frame.size(); i += 2)
                QCOMPARE(frame[i], step.result);
        }
    }
};

QTEST_GUILESS_MAIN(TestFramePath)
#include "test_frame_path.moc"
