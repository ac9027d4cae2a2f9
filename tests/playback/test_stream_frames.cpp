// Frames on the pipeline's threads: clipper, slot and rows, shrinking, and the guards against extreme clips.
#include <QTest>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include <gst/app/gstappsrc.h>

#include "platform/gstreamer/frame_allocator.h"
#include "platform/gstreamer/frame_clipper.h"
#include "platform/gstreamer/frame_row.h"
#include "platform/gstreamer/frame_slot.h"
#include "platform/gstreamer/index_guard.h"
#include "platform/gstreamer/picture_gate.h"
#include "platform/gstreamer/shrink_row.h"
#include "platform/gstreamer/yuy2_packer.h"
#include "platform/limits.h"
#include "support/sensor_clips.h"

using namespace ql240::gstreamer;
using ql240::madeclips::bigEndian;
using ql240::madeclips::box;

namespace {

// A clipper around an element that only passes frames on; times in ms.
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

// Times in ms.
struct Row : FrameRow {
    void put(int begin, int duration = 100, int wanted = 0, gsize size = 4) {
        static std::uint8_t bytes[4]; // never read
        GstBuffer* frame =
            gst_buffer_new_wrapped_full(GST_MEMORY_FLAG_READONLY, bytes, size, 0, size, nullptr, nullptr);
        GST_BUFFER_PTS(frame) = begin * GST_MSECOND;
        GST_BUFFER_DURATION(frame) = duration * GST_MSECOND;
        add(BufferHandle(frame), wanted * GST_MSECOND);
    }
    QString shownAt(int ms) const {
        const auto shown = at(ms * GST_MSECOND);
        return shown
                   ? QStringLiteral("%1 to %2").arg(shown->begin / GST_MSECOND).arg(shown->end / GST_MSECOND)
                   : QStringLiteral("to come");
    }
    bool reaches(int ms) const { return reachesBackTo(ms * GST_MSECOND); }
};

// The gate's result for one buffer of a stream.
GstFlowReturn passGate(const QByteArray& caps, const QByteArray& bytes) {
    const ElementHandle decoder = makeElement("identity");
    const ElementHandle sink = makeElement("fakesink");
    gst_element_link(decoder.get(), sink.get());
    PictureGate gate;
    gate.attach(decoder.get(), decoder.get());
    for (GstElement* element : {sink.get(), decoder.get()})
        gst_element_set_state(element, GST_STATE_PLAYING);
    const PadHandle pad = staticPad(decoder.get(), "sink");
    const CapsHandle said(gst_caps_from_string(caps.constData()));
    GstSegment time;
    gst_segment_init(&time, GST_FORMAT_TIME);
    gst_pad_send_event(pad.get(), gst_event_new_stream_start("pictures"));
    gst_pad_send_event(pad.get(), gst_event_new_caps(said.get()));
    gst_pad_send_event(pad.get(), gst_event_new_segment(&time));
    const GstFlowReturn flow = gst_pad_chain(pad.get(), gst_buffer_new_memdup(bytes.data(), bytes.size()));
    for (GstElement* element : {decoder.get(), sink.get()})
        gst_element_set_state(element, GST_STATE_NULL);
    return flow;
}

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

        stream.beginAt(3000, 3000, 7500); // after the stream's end
        stream.send(gst_event_new_eos());
        QCOMPARE(stream.clipper.starvedAtEnd(), 2000 * GST_MSECOND);
    }

    // A pause may find the clip up to one frame before or after the last one passed.
    void isOffByMoreThanOneFrame() {
        ClippedStream stream;
        stream.beginAt(0, 3000, 0);
        for (int begin = 0; begin < 500; begin += 100)
            stream.decode(begin);
        for (int ms = 0; ms < 1000; ms += 100)
            QCOMPARE(stream.clipper.isOff(static_cast<GstClockTime>(ms) * GST_MSECOND + 50),
                     ms < 300 || ms >= 600);
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

    // A decoder may use any of several parameter sets, whatever the parser reports.
    void largestParameterSetCounts() {
        const QByteArray start = "00000001";
        const QByteArray small = "674200335680a03d90";
        const QByteArray large = "67420033da003e8007d190";
        const QByteArray listed = "67640033ada492492492490211519198e800fa003e8480"; // with scaling lists
        const QByteArray wide = "42010101600000030090000003000003005da0007d02000fa059657924c020";
        const QByteArray narrow = "42010101600000030090000003000003005da0050201e16595e4930080";
        const QByteArray layered =
            "42010501600000030090000003000003005dd00001600000030090000003000003005d5da0007d02000fa05960";
        const QByteArray slice = "65884b56ad5ac0";
        const QByteArray h264 = "video/x-h264,stream-format=byte-stream";
        const QByteArray h265 = "video/x-h265,stream-format=byte-stream";
        const QByteArray avc = "video/x-h264,stream-format=avc,codec_data=(buffer)01420033";
        const QByteArray hvc =
            "video/x-h265,stream-format=hvc1,codec_data=(buffer)01" + QByteArray(40, '0') + "0f01210001";
        const auto sized = [](const QByteArray& nal, int digits) {
            return QByteArray::number(nal.size() / 2, 16).rightJustified(digits, '0') + nal;
        };
        const auto row = [](const char* name, const QByteArray& caps, const QByteArray& hex, bool passes) {
            const GstFlowReturn expected = passes ? GST_FLOW_OK : GST_FLOW_ERROR;
            QVERIFY2(passGate(caps, QByteArray::fromHex(hex)) == expected, name);
        };
        row("H.264, small", h264, start + small + start + slice, true);
        row("H.264, small and large", h264, start + small + start + large + start + slice, false);
        row("H.264, large and small", h264, start + large + start + small + start + slice, false);
        row("H.264 with scaling lists", h264, "000001" + listed, false);
        row("H.264, cut off", h264, start + "67420033", true);
        row("H.265, small", h265, start + narrow, true);
        row("H.265, large behind its small", h265, start + narrow + start + "4001" + start + wide, false);
        row("H.265 of three layers", h265, start + layered, false);
        row("avc, small", avc + "ffe000", sized(small, 8) + sized(slice, 8), true);
        row("avc, small and large", avc + "ffe000", sized(small, 8) + sized(large, 8), false);
        row("avc, lengths of two bytes", avc + "fde000", sized(small, 4) + sized(large, 4), false);
        row("avc, a start within a length", avc + "ffe000", sized(slice + start + large, 8), false);
        row("avc, a length like a start code", avc + "ffe000",
            "00000127419a24f8000312345600049abc" + QByteArray("55").repeated(282), true);
        row("avc, two in the head", avc + "ffe2" + sized(small, 4) + sized(large, 4) + "00", sized(slice, 8),
            false);
        row("avc, among the head's others", avc + "ffe1" + sized(small, 4) + "01" + sized(large, 4),
            sized(slice, 8), false);
        row("hvc1, large in the head", hvc + sized(wide, 4), sized("2601af", 8), false);
        row("hvc1, small in the head", hvc + sized(narrow, 4), sized("2601af", 8), true);
        const QByteArray picture = "ffd8ffc0000b0810e01c2001011100"; // 7,200 x 4,320
        const QByteArray scan = "ffda0008010100003f00";
        row("JPEG, and padding behind it", "image/jpeg",
            picture + scan + "ffd911ffc1303132f000e00000ffda0008", true);
        row("JPEG, the second field too large", "image/jpeg",
            picture + scan + "ffd911ffd8ffc0000b08ffffffff01011100ffda0008010100003f00", false);
        row("JPEG of 51 scans", "image/jpeg", picture + scan.repeated(51), true);
        row("JPEG of 52 scans", "image/jpeg", picture + scan.repeated(52), false);
        row("H.264 of 500 slices", h264, start + small + (start + slice).repeated(500), true);
        row("H.264 of 9000 slices", h264, start + small + (start + slice).repeated(9000), false);
        row("avc of 9000 slices", avc + "ffe1" + sized(small, 4) + "00", sized(slice, 8).repeated(9000),
            false);
        row("hvc1 of 9000 slices", hvc + sized(narrow, 4), sized("2601af", 8).repeated(9000), false);
        row("hvc1, large", hvc + sized(narrow, 4), sized("2601af", 8) + sized(wide, 8), false);
    }

    // Past the limit the allocator returns null; freed memory is available again.
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

        const ElementHandle clip = makeElement("identity");
        const auto first = newFrameAllocator(GST_OBJECT(clip.get()));
        const auto second = newFrameAllocator(GST_OBJECT(clip.get()));
        GstMemory* most = gst_allocator_alloc(first.get(), ql240::limits::kDecodedBytes / 5 * 4, nullptr);
        QVERIFY(most);
        QVERIFY(!gst_allocator_alloc(second.get(), ql240::limits::kDecodedBytes / 5 * 2, nullptr));
        gst_memory_unref(most);
    }

    // In any order in which the splitter reads the index: its end first, a header alone, the same box twice.
    void indexIsCountedWhereverItStands() {
        const auto number = [](quint64 value) { return bigEndian(value, 4); };
        const QByteArray run = number(0) + number(ql240::limits::kClipSamples / 2 + 1) + number(0);
        const QByteArray fragment = box("moof", box("traf", box("trun", run)));
        const QByteArray track = box("trak", box("tkhd", QByteArray(4, '\0')));
        QByteArray index = box("moov", track.repeated(qsizetype(ql240::limits::kTracks) + 10));
        IndexGuard guard;
        const auto tidy = [&guard](std::uint64_t place, QByteArray bytes, qsizetype size) {
            return guard.tidy(place, {reinterpret_cast<std::uint8_t*>(bytes.data()), std::size_t(size)});
        };
        QVERIFY(guard.tidy(1'000'000,
                           {reinterpret_cast<std::uint8_t*>(index.data()), std::size_t(index.size())}));
        QCOMPARE(std::size_t(index.count("trak")), ql240::limits::kTracks);
        QVERIFY(tidy(100, fragment, 16));
        QVERIFY(tidy(100, fragment, fragment.size()));
        QVERIFY(tidy(100, fragment, fragment.size()));
        QVERIFY(!tidy(500, fragment, fragment.size()));

        // An hour of raw sound, whose table of sizes counts single values; of other sound each is a sample.
        const auto sound = [&number](const char* format, quint32 chunkCount) {
            const QByteArray handler = box("hdlr", number(0) + number(0) + "soun" + number(0));
            const QByteArray formats = box("stsd", number(0) + number(1) + box(format, QByteArray(28, '\0')));
            const QByteArray sizes = box("stsz", number(0) + number(2) + number(3600 * 48000));
            const QByteArray chunks = box("stco", number(0) + number(chunkCount));
            return box(
                "moov",
                box("trak", box("mdia", handler + box("minf", box("stbl", formats + sizes + chunks)))));
        };
        for (const auto& [format, chunks, fits] :
             {std::tuple("sowt", 3600U, true),
              {"mp4a", 3600U, false},
              {"sowt", quint32(ql240::limits::kClipSamples + 1), false}}) {
            guard = IndexGuard();
            const QByteArray clip = sound(format, chunks);
            QCOMPARE(tidy(100, clip, clip.size()), fits);
        }
    }

    // The window is resized while a frame is converted and the next one waits.
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

    void frameLastsUntilTheNextOne() {
        Row row;
        QCOMPARE(row.shownAt(0), "to come");
        for (const int begin : {100, 200, 301, 600})
            row.put(begin);
        const std::pair<int, const char*> shown[] = {
            {50, "100 to 200"},  {100, "100 to 200"}, {199, "100 to 200"}, {300, "301 to 401"},
            {450, "301 to 600"}, {600, "600 to 700"}, {700, "to come"}};
        for (const auto& [ms, expected] : shown)
            QCOMPARE(row.shownAt(ms), QLatin1String(expected));
        QCOMPARE(row.last(9).begin, GstClockTime(600 * GST_MSECOND));
        QCOMPARE(row.last(9).end, GstClockTime(9));
    }

    void oldestGoFirst() {
        Row row;
        QVERIFY(!row.reaches(1000));
        for (int i = 0; i < 10; ++i)
            row.put(100 * i);
        QVERIFY(row.reaches(200) && !row.reaches(199));
        for (const int begin : {1000, 1100, 1200}) // each as large as the limit of the row
            row.put(begin, 100, 0, ql240::limits::kFrameRowBytes);
        QVERIFY(row.reaches(1100) && !row.reaches(1099));
    }

    void onlyTheNewestStaysFarBeforeWhatIsWanted() {
        Row row;
        row.put(0, 100, 900);
        row.put(100, 100, 900);
        QVERIFY(row.reaches(0));
        row.put(200, 100, 1101);
        QVERIFY(row.reaches(200) && !row.reaches(199));
    }

    void shrunkRowIsTheScalarOne() {
        std::mt19937 random(5);
        std::vector<std::uint8_t> upper(800);
        std::vector<std::uint8_t> lower(upper.size());
        for (auto* row : {&upper, &lower})
            std::generate(row->begin(), row->end(), [&] { return static_cast<std::uint8_t>(random()); });
        for (const RgbMatrix& matrix : {kStudio601, kStudio709, kFull601, kFull709}) {
            for (int width = 1; width < 70; ++width) {
                std::vector<std::int32_t> pairs(static_cast<std::size_t>(width));
                std::generate(pairs.begin(), pairs.end(), [&] { return static_cast<int>(random() % 200); });
                std::vector<std::uint32_t> vector(pairs.size() + 1, 7); // one more, which must not change
                std::vector<std::uint32_t> scalar = vector;
                shrinkRow(upper.data(), lower.data(), pairs.data(), width, matrix, vector.data());
                shrinkRowScalar(upper.data(), lower.data(), pairs.data(), width, matrix, scalar.data());
                QCOMPARE(vector, scalar);
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestStreamFrames)
#include "test_stream_frames.moc"
