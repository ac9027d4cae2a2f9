// The filters at the head of a graph: the file and the splitter of its container.
#pragma once

#include <atomic>
#include <chrono>
#include <mutex>

#include "platform/gstreamer/gst_filter.h"
#include "platform/gstreamer/index_guard.h"

namespace ql240::gstreamer {

// Where a read exceeds its limit the file ends, as far as the splitter can see.
class FileSource final : public FilterWith<IFileSourceFilter> {
public:
    FileSource();
    ~FileSource() override;

    // Only regular files are opened.
    Status Load(const char16_t* path, const MediaType* type) override;
    bool isSource() const override { return true; }
    GstElement* element() const { return elements().empty() ? nullptr : elements().front().get(); }
    // What is read from now on is no index any more, but played.
    void setOpen() { m_opens = false; }

private:
    bool mayGoOn(std::uint64_t place, GstBuffer* piece);
    static GstFlowReturn read(GstPad* pad, GstObject* parent, guint64 offset, guint length, GstBuffer** to);

    GstPadGetRangeFunction m_readFile = nullptr;
    std::atomic<bool> m_opens{true};
    // Reader's thread.
    std::int64_t m_opening = 0; // bytes asked for so far
    IndexGuard m_index;
};

enum class Container { Avi, Mp4 };

// Shows its output pins as soon as its input is joined: until the graph first runs, every stream is held back
// at its pad.
class Splitter final : public Filter {
public:
    explicit Splitter(Container container);
    ~Splitter() override;

    Status inputJoined(Pin& input) override;
    // Holds no stream back any more, nor one that is still to come. Before the pipeline ends, too: whoever
    // stops the demuxer's thread waits for it, and it would wait at a pad that it adds meanwhile.
    void letGo();

    // Clip duration in ns as the container has it; 0 if it hasn't.
    std::int64_t durationNs() const;
    // Sends a seek to the demuxer; takes the event over.
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
