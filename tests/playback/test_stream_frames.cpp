// Frames on the pipeline's threads: which one a clipper lets through, and that a slot never turns back.
#include <QTest>

#include <memory>
#include <vector>

#include <gst/app/gstappsrc.h>

#include "platform/gstreamer/frame_allocator.h"
#include "platform/gstreamer/frame_clipper.h"
#include "platform/gstreamer/frame_slot.h"
#include "platform/gstreamer/yuy2_packer.h"
#include "platform/limits.h"

using namespace ql240::gstreamer;

namespace {

// A clipper around something that decodes nothing; times in ms.
class ClippedStream {
public:
    ClippedStream() : m_decoder(makeElement("identity")) {
        gst_pad_set_element_private(m_out.get(), this);
        gst_pad_set_chain_function(m_out.get(), [](GstPad* pad, GstObject*, GstBuffer* frame) {
            auto* stream = static_cast<ClippedStream*>(gst_pad_get_element_private(pad));
            stream->passed += static_cast<int>(GST_BUFFER_PTS(frame) / GST_MSECOND);
            gst_buffer_unref(frame);
            return GST_FLOW_OK;
        });
        const PadHandle sink = staticPad(m_decoder.get(), "sink");
        const PadHandle source = staticPad(m_decoder.get(), "src");
        gst_pad_link(m_in.get(), sink.get());
        gst_pad_link(source.get(), m_out.get());
        gst_pad_set_active(m_out.get(), TRUE);
        gst_pad_set_active(m_in.get(), TRUE);
        clipper.attach(m_decoder.get());
        gst_element_set_state(m_decoder.get(), GST_STATE_PLAYING);
        send(gst_event_new_stream_start("frames"));
    }
    ~ClippedStream() { gst_element_set_state(m_decoder.get(), GST_STATE_NULL); }

    void send(GstEvent* event) { gst_pad_push_event(m_in.get(), event); }
    void beginAt(int start, int stop, int time) {
        send(gst_event_new_flush_start());
        send(gst_event_new_flush_stop(TRUE));
        GstSegment segment;
        gst_segment_init(&segment, GST_FORMAT_TIME);
        segment.start = segment.position = start * GST_MSECOND;
        segment.stop = stop * GST_MSECOND;
        segment.time = time * GST_MSECOND;
        send(gst_event_new_segment(&segment));
    }
    void decode(int begin) {
        GstBuffer* frame = gst_buffer_new();
        GST_BUFFER_PTS(frame) = begin * GST_MSECOND;
        GST_BUFFER_DURATION(frame) = 100 * GST_MSECOND;
        gst_pad_push(m_in.get(), frame);
    }

    FrameClipper clipper;
    QList<int> passed;

private:
    static PadHandle pad(GstPadDirection direction) {
        return PadHandle(GST_PAD(gst_object_ref_sink(gst_pad_new(nullptr, direction))));
    }
    ElementHandle m_decoder;
    PadHandle m_in = pad(GST_PAD_SRC);
    PadHandle m_out = pad(GST_PAD_SINK);
};

// A black frame and a white one, as fast as the slot takes them.
class TwoFrames {
public:
    TwoFrames()
        : m_pipeline(GST_ELEMENT(gst_object_ref_sink(
              gst_parse_launch("appsrc name=in format=time caps=video/x-raw,format=YUY2,width=640,height=360,"
                               "framerate=30/1 ! appsink name=out sync=false",
                               nullptr)))) {
        const ElementHandle out(gst_bin_get_by_name(GST_BIN(m_pipeline.get()), "out"));
        FrameSlot::connectTo(slot, GST_APP_SINK(out.get()));
    }
    ~TwoFrames() { gst_element_set_state(m_pipeline.get(), GST_STATE_NULL); }

    void deliver() {
        const ElementHandle in(gst_bin_get_by_name(GST_BIN(m_pipeline.get()), "in"));
        gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING);
        for (const int luma : {16, 235}) {
            const std::vector<std::uint16_t> pixels(640 * 360, static_cast<std::uint16_t>(128 << 8 | luma));
            gst_app_src_push_buffer(GST_APP_SRC(in.get()),
                                    gst_buffer_new_memdup(pixels.data(), 2 * pixels.size()));
        }
    }

    const std::shared_ptr<FrameSlot> slot = std::make_shared<FrameSlot>();

private:
    ElementHandle m_pipeline;
};

} // namespace

class TestStreamFrames : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { gst_init(nullptr, nullptr); }

    // An edit list shifts the time stamps by 1000 ms.
    void clipTimeIsNoTimeStamp() {
        ClippedStream stream;
        stream.clipper.cutAt(1500 * GST_MSECOND);
        stream.beginAt(2000, 3000, 1000);
        for (int begin = 1500; begin < 2900; begin += 100)
            stream.decode(begin);
        QCOMPARE(stream.passed.value(0), 2500);

        stream.beginAt(3000, 3000, 7500); // behind the stream's end
        stream.send(gst_event_new_eos());
        QCOMPARE(stream.clipper.starvedAtEnd(), 2000 * GST_MSECOND);
    }

    void tooLargePicturesAreRefused() {
        const QByteArray line = QByteArray(
                                    "appsrc name=in caps=video/x-raw,format=I420,width=16000,height=16000,"
                                    "framerate=30/1 ! ") +
                                yuy2PackerFactory() + " ! fakesink";
        const ElementHandle pipeline(GST_ELEMENT(gst_object_ref_sink(gst_parse_launch(line, nullptr))));
        const ElementHandle in(gst_bin_get_by_name(GST_BIN(pipeline.get()), "in"));
        const BusHandle bus(gst_element_get_bus(pipeline.get()));
        gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
        gst_app_src_push_buffer(GST_APP_SRC(in.get()), gst_buffer_new());
        gst_app_src_end_of_stream(GST_APP_SRC(in.get()));
        const auto either = static_cast<GstMessageType>(GST_MESSAGE_ERROR | GST_MESSAGE_EOS);
        const MessageHandle message(gst_bus_timed_pop_filtered(bus.get(), 10 * GST_SECOND, either));
        QVERIFY(message && GST_MESSAGE_TYPE(message.get()) == GST_MESSAGE_ERROR);
        gst_element_set_state(pipeline.get(), GST_STATE_NULL);
    }

    // What isn't granted is null, and what comes back is granted again.
    void decodedFramesAreBounded() {
        const auto allocator = newFrameAllocator();
        const auto allocate = [&](gsize size) { return gst_allocator_alloc(allocator.get(), size, nullptr); };
        for (const gsize tooLarge : {G_MAXSIZE - 64, gsize(ql240::limits::kDecodedBytes + 1)})
            QVERIFY(!allocate(tooLarge));
        std::vector<GstMemory*> frames;
        while (GstMemory* frame = allocate(ql240::limits::kDecodedBytes / 5))
            frames.push_back(frame);
        QCOMPARE(frames.size(), std::size_t(5));
        for (GstMemory* frame : frames)
            gst_memory_unref(frame);
        GstMemory* other = allocate(ql240::limits::kDecodedBytes);
        QVERIFY(other);
        gst_memory_unref(other);
    }

    // The window changes its size while a frame is converted and the next one waits.
    void newerPictureStays() {
        const auto target = [](int width) {
            return PictureTarget{QSize(width, 1080), QRect(0, 0, width, 1080)};
        };
        for (int i = 0; i < 60; ++i) {
            QObject window;
            TwoFrames frames;
            frames.slot->setTarget(&window, target(1920));
            frames.deliver();
            QTRY_VERIFY(!frames.slot->frameSize().isEmpty());
            frames.slot->setTarget(&window, target(1900));
            QTRY_COMPARE(qGray(frames.slot->takePicture().pixel(9, 9)), 255);
            frames.slot->setTarget(nullptr, {});
        }
    }
};

QTEST_GUILESS_MAIN(TestStreamFrames)
#include "test_stream_frames.moc"
