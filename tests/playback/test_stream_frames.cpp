// Frames on the pipeline's threads: which one a clipper lets through, and that a slot never turns back.
#include <QTest>

#include <atomic>
#include <thread>

#include <gst/app/gstappsrc.h>

#include "platform/gstreamer/frame_clipper.h"
#include "platform/gstreamer/frame_slot.h"

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

// Frames that only get brighter, as fast as the slot takes them.
class BrighteningFrames {
public:
    BrighteningFrames()
        : m_pipeline(GST_ELEMENT(gst_object_ref_sink(
              gst_parse_launch("appsrc name=in format=time block=true max-buffers=2 "
                               "caps=video/x-raw,format=YUY2,width=640,height=360,framerate=30/1 ! appsink "
                               "name=out sync=false",
                               nullptr)))) {
        const ElementHandle out(gst_bin_get_by_name(GST_BIN(m_pipeline.get()), "out"));
        FrameSlot::connectTo(slot, GST_APP_SINK(out.get()));
        gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING);
        m_thread = std::thread([this] { push(); });
    }
    ~BrighteningFrames() {
        gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
        m_thread.join();
    }
    bool isRunning() const { return m_isRunning; }

    const std::shared_ptr<FrameSlot> slot = std::make_shared<FrameSlot>();

private:
    void push() {
        const ElementHandle in(gst_bin_get_by_name(GST_BIN(m_pipeline.get()), "in"));
        for (int i = 0; i < 5 * 220; ++i) {
            std::vector<std::uint16_t> pixels(640 * 360, static_cast<std::uint16_t>(128 << 8 | (16 + i / 5)));
            GstBuffer* frame = gst_buffer_new_memdup(pixels.data(), pixels.size() * sizeof pixels[0]);
            if (gst_app_src_push_buffer(GST_APP_SRC(in.get()), frame) != GST_FLOW_OK)
                break;
        }
        m_isRunning = false;
    }

    ElementHandle m_pipeline;
    std::atomic<bool> m_isRunning{true};
    std::thread m_thread;
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

    void newerPictureStays() {
        BrighteningFrames feed;
        QObject window;
        int shown = 0;
        for (int i = 0; feed.isRunning(); ++i) {
            const QSize size(640 + 2 * (i % 2), 360);
            feed.slot->setTarget(&window, {size, QRect(QPoint(), size)});
            const QImage& picture = feed.slot->takePicture();
            if (picture.isNull())
                continue;
            const int grey = qGray(picture.pixel(8, 8));
            QVERIFY2(grey >= shown, qPrintable(QStringLiteral("%1 after %2").arg(grey).arg(shown)));
            shown = grey;
        }
        QVERIFY(shown > 200);
    }
};

QTEST_GUILESS_MAIN(TestStreamFrames)
#include "test_stream_frames.moc"
