// The first filters of a graph: the file source and the splitter for its container.
#pragma once

#include <atomic>
#include <chrono>
#include <mutex>

#include "platform/gstreamer/gst_filter.h"
#include "platform/gstreamer/index_guard.h"

namespace ql240::gstreamer {

// For a read that exceeds its limit, reports the end of the file to the splitter.
class FileSource final : public FilterWith<IFileSourceFilter> {
public:
    FileSource();
    ~FileSource() override;

    // Opens regular files only.
    Status Load(const char16_t* path, const MediaType* type) override;
    bool isSource() const override { return true; }
    GstElement* element() const { return elements().empty() ? nullptr : elements().front().get(); }
    // Call when the index has been read: further reads are for playing and don't count towards its limit.
    void setOpen() { m_opens = false; }

private:
    bool mayGoOn(std::uint64_t place, GstBuffer* piece);
    static GstFlowReturn read(GstPad* pad, GstObject* parent, guint64 offset, guint length, GstBuffer** to);

    GstPadGetRangeFunction m_readFile = nullptr;
    std::atomic<bool> m_opens{true};
    // The splitter's thread.
    std::int64_t m_opening = 0; // bytes requested while opening
    IndexGuard m_index;
};

enum class Container { Avi, Mp4 };

// Has its output pins as soon as its input is joined: each stream is blocked at its pad until the graph first
// runs.
class Splitter final : public Filter {
public:
    explicit Splitter(Container container);
    ~Splitter() override;

    Status inputJoined(Pin& input) override;
    // Unblocks all streams, including those that the demuxer adds later. Also required before stopping the
    // pipeline: that waits for the demuxer's thread, which must not block at a pad that it adds meanwhile.
    void letGo();

    // The clip's duration in ns from the container; 0 if unknown.
    std::int64_t durationNs() const;
    // Sends a seek to the demuxer; takes ownership of the event.
    bool sendSeek(GstEvent* event) const;

private:
    static constexpr std::chrono::milliseconds kTimeLimit{3000};

    static void padAdded(GstElement* demuxer, GstPad* pad, gpointer self);
    static void noMorePads(GstElement* demuxer, gpointer self);
    void addStream(GstPad* pad);
    bool waitForPads();
    void makeOutputPins();

    struct Stream {
        PadHandle pad;
        gulong blockProbe; // 0: none
    };

    Container m_container;

    // Filled by the demuxer's thread until it has no more pads.
    mutable std::mutex m_mutex;
    std::vector<Stream> m_streams;
    bool m_holds = true;
};

} // namespace ql240::gstreamer
