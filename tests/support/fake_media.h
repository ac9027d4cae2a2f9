// A media pipeline that plays nothing: logs every call in order, returns preset results, and keeps the state
// of the clip, also after it was closed. One clip at a time. Interface thread, except deliver().
#pragma once

#include <QRect>
#include <QSize>
#include <QStringList>

#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/media_graph.h"
#include "platform/media_platform.h"

namespace ql240 {

// What the splitters find in every clip opened from now on, whatever its file.
struct FakeClip {
    std::vector<std::u16string> mp4Pins{u"vide", u"soun"};
    std::vector<std::u16string> aviPins{u"Stream 00", u"Stream 01"};
    std::array<QSize, 2> sizes{QSize(640, 360), QSize(480, 270)};
    std::int64_t durationMs = 10000;

    static FakeClip twoStreams() { return {.mp4Pins = {u"vide", u"vide", u"soun"}}; }
};

// The clip as the graph plays it, in units of 100 ns. Tests set the position, the program everything else.
struct FakeTransport {
    GraphState state = GraphState::Stopped;
    std::int64_t position = 0;
    std::int64_t duration = 0;
};

struct FakeWindow {
    WindowToken owner = WindowToken::None;
    WindowToken drain = WindowToken::None;
    QRect rect;
    bool visible = false;
};

struct FakeGrabber {
    ISampleGrabberCB* callback = nullptr;
    MediaType type; // accepted and connected
    std::vector<std::uint8_t> kept;
};

class FakeMedia : public MediaPlatform {
public:
    FakeClip clip;

    // The calls in order, such as "add AVI Splitter", "run", "seek 10000", "window 0 visible 1"; queries
    // aren't logged. A second filter with the same name gets the suffix " 2".
    QStringList log;
    QStringList takeLog() { return std::exchange(log, {}); }

    // Results by the start of a call's log text, or of queries: "size 0", "graph size", "type 0", "buffer 0",
    // "fetch 0", "positions", "position", "duration", "state", "pins". A failed call changes nothing.
    std::map<QString, Status> answers;
    // The index of one logged call that fails, counted from 0 since the log was last cleared.
    int failsAt = -1;

    // Of the open clip, or of the last one.
    FakeTransport transport;
    std::array<FakeWindow, 2> windows;
    std::array<FakeGrabber, 2> grabbers;
    std::array<std::size_t, 2> made{}; // grabbers, renderers

    void setPositionMs(std::int64_t ms) { transport.position = ms * 10000; }
    void playToEnd() { transport.position = transport.duration; }
    // Passes a YUY2 frame through a stream's grabber; returns what the renderer gets. Any thread.
    std::vector<std::uint8_t> deliver(int stream, std::vector<std::uint8_t> frame);

    // Graphs, filters and enumerators that are still referenced.
    int liveObjects = 0;

    Status CoCreateInstance(const Guid& classId, IUnknown* outer, ClassContext context, const Guid& iid,
                            void** object) override;
    bool opensSeveral() const override { return false; }
    void warmUp() override {}
    void setOutputVolume(std::uint16_t, std::uint16_t) override {}

    // Called by the objects of the graph.
    Status call(const QString& text, Status usual = kStatusOk);
    Status query(const QString& text, Status usual = kStatusOk) const;
};

} // namespace ql240
