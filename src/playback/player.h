// The playback engine for one clip at a time: owns and drives the clip's filter graph. Positions and
// durations in whole milliseconds. Interface thread; frames pass through the SampleHandlers on streaming
// threads.
#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

#include <array>
#include <atomic>
#include <cstdint>

#include "platform/media_graph.h"

namespace ql240 {

class Clip;
class GraphRecipe;
class SampleHandler;

class Player {
public:
    static constexpr int kStreams = 2;
    static constexpr std::int64_t kStep = 666666; // 1/15 s in units of 100 ns
    using Handlers = std::array<SampleHandler*, kStreams>;

    // Number of video streams of the last clip opened in this process, 1 or 2; 0 before the first.
    static std::int32_t videoStreamCount;

    Player();
    ~Player();
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    // Close before opening another clip. `host` is the window that will show the picture.
    [[nodiscard]] bool open(const Clip* clip, const Handlers& handlers, WindowToken host);
    void close();

    // Transport. False while closed, or if the graph refuses.
    bool play();
    bool pause();
    bool stop();
    bool rewind();
    bool stepForward();
    bool stepBack();
    bool seek(std::int32_t ms);
    Status setRate(double rate); // -1 while closed

    std::int64_t positionMs() const;
    std::int64_t durationMs() const;
    bool isRunning() const;
    // Whether no state change or seek is under way.
    bool isSettled() const;
    bool isStopped() const { return m_state & kStopped; }
    bool isPaused() const { return m_state & kPaused; }
    const Clip* clip() const { return m_clip; }
    // Native frame size; 0 x 0 while closed or unknown. Any thread.
    QSize videoSize(int index) const;

    // The stream's frame as 24-bit RGB. With `grab`, takes the last decoded frame first; a null image if
    // there is none or if its rows are padded.
    const QImage& frame(int index, bool grab);

    // The renderer's window inside `host`; `rect` in host coordinates.
    bool attachWindow(WindowToken host, const QRect& rect, bool second);
    void moveWindow(WindowToken host, int x, int y, bool second);
    void resizeWindow(WindowToken host, int width, int height, bool second);
    bool hideWindow(int index);

private:
    enum State : std::uint32_t { kStopping = 1, kStopped = 2, kPaused = 4 };

    [[nodiscard]] bool openMp4(GraphRecipe& recipe, const Clip& clip, const Handlers& handlers);
    [[nodiscard]] bool openAvi(GraphRecipe& recipe, const Clip& clip, const Handlers& handlers,
                               WindowToken host);
    void takeStream(GraphRecipe& recipe, int index);
    void installHandler(int index, const Handlers& handlers);
    void updateVideoSizes();
    void makeBlackFrame(int index, IBasicVideo* video);
    void setVideoSize(int index, const QSize& size);
    bool setPosition(std::int64_t units);
    bool stepBy(std::int64_t units);
    static QImage grabbedFrame(ISampleGrabber& grabber, const QSize& shape);
    ComPtr<IVideoWindow> window(int index) const;
    ComPtr<IVideoWindow> ownedWindow(WindowToken host, bool second) const;

    ComPtr<IGraphBuilder> m_graph;
    std::array<ComPtr<IBaseFilter>, kStreams> m_grabber;
    std::array<ComPtr<IBaseFilter>, kStreams> m_renderer;
    std::array<QImage, kStreams> m_frame;
    std::array<QSize, kStreams> m_frameShape; // of the black image created at open
    const Clip* m_clip = nullptr;
    std::uint32_t m_state = 0;

    // Written by the interface thread, read by streaming threads: width in the high 32 bits, height in the
    // low 32.
    std::array<std::atomic<std::uint64_t>, kStreams> m_videoSize{};
};

} // namespace ql240
