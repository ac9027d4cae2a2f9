// The filters of a video chain: decoder, sample grabber, colour converter and renderer.
#pragma once

#include <QPointer>

#include <memory>
#include <mutex>

#include "platform/gstreamer/backlog.h"
#include "platform/gstreamer/frame_clipper.h"
#include "platform/gstreamer/gst_filter.h"
#include "platform/gstreamer/picture_gate.h"
#include "platform/limits.h"

namespace ql240::gstreamer {

class FrameSlot;
class VideoWindow;

// Decodes to YUY2. A queue follows each joined splitter pin, since the streams of one file would otherwise
// wait for each other.
class VideoDecoder final : public Filter {
public:
    VideoDecoder();
    ~VideoDecoder() override;

    // Refuses a stream that is too large by the container's size.
    Status prepareInput(Pin& input, const Pin& upstream) override;
    void beforeFirstRun(int videoStreams) override;

    // The size from the container; false if it has none.
    bool containerSize(std::int32_t* width, std::int32_t* height) const;

    FrameClipper& clipper() { return m_clipper; }

private:
    PictureGate m_gate;
    Backlog m_parsing{{limits::kPieceBytes, limits::kPicturelessPieces}};
    Backlog m_decoding{{limits::kPicturelessBytes, limits::kQueuedBuffers}};
    FrameClipper m_clipper;
};

class SampleGrabber final : public FilterWith<ISampleGrabber> {
public:
    SampleGrabber();
    ~SampleGrabber() override;

    Status SetMediaType(const MediaType* type) override;
    Status SetBufferSamples(bool buffer) override;
    Status SetCallback(ISampleGrabberCB* callback, GrabberCallback kind) override;
    Status GetConnectedMediaType(MediaType* type) override;
    Status GetCurrentBuffer(std::int32_t* size, std::uint8_t* buffer) override;

private:
    static GstPadProbeReturn frameArrived(GstPad* pad, GstPadProbeInfo* info, gpointer self);
    GstBuffer* filtered(GstBuffer* frame);

    gulong m_probe = 0;
    MediaType m_type;

    // Held while the callback runs, so that removing it waits for a running call.
    std::mutex m_callbackMutex;
    ISampleGrabberCB* m_callback = nullptr;

    // Set on the streaming thread, read on the interface thread.
    std::mutex m_keptMutex;
    bool m_keeps = false;
    BufferHandle m_kept;
};

// Passes frames through: the renderer accepts YUY2 and converts and scales in one step.
class ColourConverter final : public Filter {
public:
    ColourConverter();
};

class VideoRenderer final : public FilterWith<IBasicVideo, IVideoWindow> {
public:
    VideoRenderer();
    ~VideoRenderer() override;

    bool isSink() const override { return true; }

    // See FrameSlot::hold().
    void holdPicture(bool on);

    Status GetVideoSize(std::int32_t* width, std::int32_t* height) override;

    Status put_AutoShow(bool show) override;
    Status put_Owner(WindowToken owner) override;
    Status put_WindowStyle(std::uint32_t style) override;
    Status put_MessageDrain(WindowToken drain) override;
    Status SetWindowPosition(std::int32_t left, std::int32_t top, std::int32_t width,
                             std::int32_t height) override;
    Status put_Left(std::int32_t left) override;
    Status put_Top(std::int32_t top) override;
    Status put_Width(std::int32_t width) override;
    Status put_Height(std::int32_t height) override;
    Status put_Visible(bool visible) override;

private:
    bool isJoined() const { return inputPin() && inputPin()->peer(); }
    template <typename Change>
    Status changeWindow(Change&& change);

    std::shared_ptr<FrameSlot> m_slot;
    QPointer<VideoWindow> m_window;
};

} // namespace ql240::gstreamer
