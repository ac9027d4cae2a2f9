#include "platform/gstreamer/sound_output.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include <gst/app/gstappsrc.h>

#include "platform/gstreamer/c_border.h"
#include "platform/gstreamer/gst_log.h"
#include "platform/limits.h"

namespace ql240::gstreamer {

namespace {

constexpr std::size_t kMaxPieces = 100; // queued while the server doesn't answer
constexpr std::chrono::milliseconds kSlowAnswer(500);
constexpr std::chrono::seconds kHanging(5); // no answer takes that long
constexpr int kMaxThreads = 8;
constexpr GstClockTime kMostAhead = GST_SECOND;

std::atomic<double> outputVolume{1.0};

} // namespace

// One output: the requests, from any thread, and the pipeline that serves them, used by the sound thread
// only.
class SoundOutput::Line : public std::enable_shared_from_this<Line> {
public:
    template <typename Change>
    void ask(Change&& change) {
        const std::scoped_lock lock(m_mutex);
        change(m_asked);
        if (!std::exchange(m_isQueued, true))
            queue(shared_from_this());
    }

    struct Asked {
        void add(SampleHandle piece);
        void dropPieces();

        std::deque<SampleHandle> pieces;
        std::size_t bytes = 0; // of all pieces
        bool flush = false;
        bool close = false;
    };

private:
    static void queue(std::shared_ptr<Line> line);
    void serve();
    void serve(const Asked& asked);
    void open();
    void close();
    bool flush() const;
    bool isBehind() const;
    static GstBusSyncReply messagePosted(GstBus* bus, GstMessage* message, gpointer self);

    std::mutex m_mutex;
    Asked m_asked;
    bool m_isQueued = false;
    bool m_isServed = false;

    std::atomic<bool> m_hasFailed{false};

    // Sound thread.
    bool m_isOpen = false;
    ElementHandle m_pipeline;
    ElementHandle m_source;
    ElementHandle m_volume;
};

namespace {

std::size_t bytesOf(const SampleHandle& piece) {
    return gst_buffer_get_size(gst_sample_get_buffer(piece.get()));
}

} // namespace

// Drops the oldest pieces if there are too many.
void SoundOutput::Line::Asked::add(SampleHandle piece) {
    bytes += bytesOf(piece);
    pieces.push_back(std::move(piece));
    while (pieces.size() > kMaxPieces || (pieces.size() > 1 && bytes > limits::kQueuedSoundBytes)) {
        bytes -= bytesOf(pieces.front());
        pieces.pop_front();
    }
}

void SoundOutput::Line::Asked::dropPieces() {
    pieces.clear();
    bytes = 0;
}

namespace {

// The thread that serves the lines, until the process ends. One that hangs in GStreamer or in the server's
// library is replaced, so that later clips are heard.
class SoundThread {
public:
    using Job = std::function<void()>;

    static SoundThread& instance() {
        static auto* const only = new SoundThread;
        return *only;
    }

    void add(Job job) {
        const std::scoped_lock lock(m_mutex);
        m_jobs.push_back(std::move(job));
        const bool hangs = m_since && std::chrono::steady_clock::now() - *m_since > kHanging;
        if (m_thread == 0 || (hangs && m_thread < kMaxThreads)) {
            m_since.reset();
            std::thread([this, number = ++m_thread] { run(number); }).detach();
        }
        m_changed.notify_all();
    }

private:
    void run(int number) {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_changed.wait(lock, [&] { return number != m_thread || !m_jobs.empty(); });
            if (number != m_thread)
                return;
            Job job = std::move(m_jobs.front());
            m_jobs.pop_front();
            m_since = std::chrono::steady_clock::now();
            lock.unlock();
            job();
            job = nullptr; // a line's last owner frees it, which add() mustn't wait for
            lock.lock();
            if (number == m_thread)
                m_since.reset();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Job> m_jobs;
    int m_thread = 0; // the number of the current one; 0: none yet
    std::optional<std::chrono::steady_clock::time_point> m_since; // of the job that it does
};

} // namespace

void SoundOutput::Line::queue(std::shared_ptr<Line> line) {
    SoundThread::instance().add([line = std::move(line)] { line->serve(); });
}

// A thread that hangs here keeps the line to itself.
void SoundOutput::Line::serve() {
    Asked asked;
    {
        const std::scoped_lock lock(m_mutex);
        if (std::exchange(m_isServed, true))
            return;
        asked = std::exchange(m_asked, {});
        m_isQueued = false;
    }
    serve(asked);
    const std::scoped_lock lock(m_mutex);
    m_isServed = false;
    if (m_isQueued)
        queue(shared_from_this());
}

void SoundOutput::Line::serve(const Asked& asked) {
    if (asked.close || m_hasFailed) {
        close();
        return;
    }
    if (!std::exchange(m_isOpen, true))
        open();
    if (!m_source)
        return;
    if (asked.flush ? !flush() : isBehind()) {
        close();
        open();
    }
    if (!m_source)
        return;
    g_object_set(m_volume.get(), "volume", outputVolume.load(), nullptr);
    for (const SampleHandle& piece : asked.pieces)
        gst_app_src_push_sample(GST_APP_SRC(m_source.get()), piece.get());
}

// With base time 0 and the system clock, running time equals the system clock's time.
void SoundOutput::Line::open() {
    ElementHandle source = makeElement("appsrc");
    ElementHandle volume = makeElement("volume");
    ElementHandle convert = makeElement("audioconvert");
    ElementHandle resample = makeElement("audioresample");
    ElementHandle sink = makeElement("autoaudiosink");
    if (!source || !volume || !convert || !resample || !sink)
        return;
    g_object_set(source.get(), "format", GST_FORMAT_TIME, "max-bytes", guint64{limits::kQueuedSoundBytes},
                 "leaky-type", GST_APP_LEAKY_TYPE_UPSTREAM, nullptr);
    m_pipeline.reset(GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr))));
    const BusHandle bus(gst_element_get_bus(m_pipeline.get()));
    gst_bus_set_sync_handler(bus.get(), messagePosted, this, nullptr);
    gst_bin_add_many(GST_BIN(m_pipeline.get()), source.get(), convert.get(), resample.get(), volume.get(),
                     sink.get(), nullptr);
    gst_element_link_many(source.get(), convert.get(), resample.get(), volume.get(), sink.get(), nullptr);
    GstClock* clock = gst_system_clock_obtain();
    gst_pipeline_use_clock(GST_PIPELINE(m_pipeline.get()), clock);
    gst_object_unref(clock);
    gst_element_set_start_time(m_pipeline.get(), GST_CLOCK_TIME_NONE);
    gst_element_set_base_time(m_pipeline.get(), 0);
    gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING);
    m_source = std::move(source);
    m_volume = std::move(volume);
}

void SoundOutput::Line::close() {
    if (!m_pipeline)
        return;
    gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
    const BusHandle bus(gst_element_get_bus(m_pipeline.get()));
    gst_bus_set_sync_handler(bus.get(), nullptr, nullptr, nullptr);
    m_source.reset();
    m_volume.reset();
    m_pipeline.reset();
}

// False if the server blocked the flush for long: the times that it reports are unreliable then.
bool SoundOutput::Line::flush() const {
    const auto begin = std::chrono::steady_clock::now();
    gst_element_send_event(m_source.get(), gst_event_new_flush_start());
    gst_element_send_event(m_source.get(), gst_event_new_flush_stop(FALSE));
    return std::chrono::steady_clock::now() - begin < kSlowAnswer;
}

// Whether far more is queued than is ever sent ahead of its time.
bool SoundOutput::Line::isBehind() const {
    return gst_app_src_get_current_level_time(GST_APP_SRC(m_source.get())) > kMostAhead;
}

// The output's streaming thread. When the server dies, only the sound ends.
GstBusSyncReply SoundOutput::Line::messagePosted(GstBus*, GstMessage* message, gpointer self) {
    auto* line = static_cast<Line*>(self);
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR && !line->m_hasFailed.exchange(true)) {
        answerToC(true, [line, message] {
            logError("sound:", message);
            line->ask([](Asked&) {});
            return true;
        });
    }
    gst_message_unref(message);
    return GST_BUS_DROP;
}

SoundOutput::SoundOutput() : m_line(std::make_shared<Line>()) {
    m_line->ask([](Line::Asked&) {});
}

SoundOutput::~SoundOutput() {
    m_line->ask([](Line::Asked& asked) {
        asked = {};
        asked.close = true;
    });
}

void SoundOutput::play(SampleHandle piece) {
    m_line->ask([&piece](Line::Asked& asked) { asked.add(std::move(piece)); });
}

void SoundOutput::flush() {
    m_line->ask([](Line::Asked& asked) {
        asked.flush = true;
        asked.dropPieces();
    });
}

void SoundOutput::setVolume(double volume) {
    outputVolume = volume;
}

} // namespace ql240::gstreamer
