// The media pipeline as the program sees it: a graph of filters connected by pins, its transport, the sample
// grabber and the renderer's window. All calls on the interface thread, except the callbacks of
// ISampleGrabberCB, which come on streaming threads. Media time is in units of 100 ns.
#pragma once

#include <cstdint>
#include <string>

#include "platform/com.h"

class QWidget;

namespace ql240 {

// The host window of a renderer's window, opaque to the platform's users; 0 is no window.
enum class WindowToken : std::uintptr_t { None = 0 };
inline WindowToken windowToken(QWidget* host) {
    return static_cast<WindowToken>(reinterpret_cast<std::uintptr_t>(host));
}

constexpr Guid kMediaTypeVideo = guid("{73646976-0000-0010-8000-00AA00389B71}");
constexpr Guid kMediaSubtypeYuy2 = guid("{32595559-0000-0010-8000-00AA00389B71}");

// A media type; a null identifier matches any.
struct MediaType {
    Guid major;
    Guid subtype;
    Guid format;
};

enum class PinDirection { Input, Output };

struct PinInfo {
    std::u16string name;
    PinDirection direction = PinDirection::Input;
};

class IPin : public IUnknown {
public:
    static constexpr Guid kIid = guid("{56A86891-0AD4-11CE-B03A-0020AF0BA770}");
    virtual Status QueryPinInfo(PinInfo* info) = 0;
};

class IEnumPins : public IUnknown {
public:
    static constexpr Guid kIid = guid("{56A86892-0AD4-11CE-B03A-0020AF0BA770}");
    // Stores up to `count` pins, each with a reference for the caller, in `pins` and their number in
    // *fetched. kStatusOk if `count` pins were left, a positive status if fewer.
    virtual Status Next(std::uint32_t count, IPin** pins, std::uint32_t* fetched) = 0;
};

class IBaseFilter : public IUnknown {
public:
    static constexpr Guid kIid = guid("{56A86895-0AD4-11CE-B03A-0020AF0BA770}");
    virtual Status EnumPins(IEnumPins** pins) = 0;
};

class IFileSourceFilter : public IUnknown {
public:
    static constexpr Guid kIid = guid("{56A868A6-0AD4-11CE-B03A-0020AF0BA770}");
    // Opens a file by its full path; `type` may be null.
    virtual Status Load(const char16_t* path, const MediaType* type) = 0;
};

class ISampleGrabberCB : public IUnknown {
public:
    static constexpr Guid kIid = guid("{0579154A-2B53-4994-B0D0-E773148EFF85}");
    virtual Status SampleCB(double sampleTime, void* sample) = 0;
    // One decoded frame of `length` bytes, modifiable in place: changes to `buffer` go on down the graph.
    // `sampleTime` in seconds.
    virtual Status BufferCB(double sampleTime, std::uint8_t* buffer, std::int32_t length) = 0;
};

enum class GrabberCallback : std::int32_t { Sample = 0, Buffer = 1 };

class ISampleGrabber : public IUnknown {
public:
    static constexpr Guid kIid = guid("{6B652FFF-11FE-4FCE-92AD-0266B5D7C78F}");
    virtual Status SetMediaType(const MediaType* type) = 0;
    virtual Status SetBufferSamples(bool buffer) = 0;
    // Once SetCallback(nullptr, …) has returned, no callback is running and none will come.
    virtual Status SetCallback(ISampleGrabberCB* callback, GrabberCallback kind) = 0;
    virtual Status GetConnectedMediaType(MediaType* type) = 0;
    // With a null `buffer`, stores the size of the kept frame in bytes in *size; otherwise copies the frame,
    // which must fit into *size bytes.
    virtual Status GetCurrentBuffer(std::int32_t* size, std::uint8_t* buffer) = 0;
};

class IBasicVideo : public IUnknown {
public:
    static constexpr Guid kIid = guid("{56A868B5-0AD4-11CE-B03A-0020AF0BA770}");
    // Native frame size in pixels.
    virtual Status GetVideoSize(std::int32_t* width, std::int32_t* height) = 0;
};

constexpr std::uint32_t kWindowStyleChild = 0x46000000; // child, clip siblings, clip children

class IVideoWindow : public IUnknown {
public:
    static constexpr Guid kIid = guid("{56A868B4-0AD4-11CE-B03A-0020AF0BA770}");
    virtual Status put_AutoShow(bool show) = 0;
    virtual Status put_Owner(WindowToken owner) = 0;
    virtual Status put_WindowStyle(std::uint32_t style) = 0;
    virtual Status put_MessageDrain(WindowToken drain) = 0;
    // Position and size in the host's device-independent pixels.
    virtual Status SetWindowPosition(std::int32_t left, std::int32_t top, std::int32_t width,
                                     std::int32_t height) = 0;
    virtual Status put_Left(std::int32_t left) = 0;
    virtual Status put_Top(std::int32_t top) = 0;
    virtual Status put_Width(std::int32_t width) = 0;
    virtual Status put_Height(std::int32_t height) = 0;
    virtual Status put_Visible(bool visible) = 0;
};

enum class GraphState : std::int32_t { Stopped = 0, Paused = 1, Running = 2 };

class IMediaControl : public IUnknown {
public:
    static constexpr Guid kIid = guid("{56A868B1-0AD4-11CE-B03A-0020AF0BA770}");
    virtual Status Run() = 0;
    virtual Status Pause() = 0;
    virtual Status Stop() = 0;
    // kStatusIntermediate while the change to *state is in progress.
    virtual Status GetState(std::int32_t timeoutMs, GraphState* state) = 0;
};

enum class Positioning : std::uint32_t { None = 0, Absolute = 1 };

class IMediaSeeking : public IUnknown {
public:
    static constexpr Guid kIid = guid("{36B73880-C2C8-11CF-8B46-00805F6CEF60}");
    // Clamps the current position: before the start becomes the start; at or past the end becomes the last
    // unit of the clip.
    virtual Status SetPositions(std::int64_t* current, Positioning currentFlags, std::int64_t* stop,
                                Positioning stopFlags) = 0;
    virtual Status GetPositions(std::int64_t* current, std::int64_t* stop) = 0;
    virtual Status GetCurrentPosition(std::int64_t* current) = 0;
    virtual Status GetStopPosition(std::int64_t* stop) = 0;
    virtual Status SetRate(double rate) = 0;
};

class IFilterGraph : public IUnknown {
public:
    static constexpr Guid kIid = guid("{56A8689F-0AD4-11CE-B03A-0020AF0BA770}");
    virtual Status AddFilter(IBaseFilter* filter, const char16_t* name) = 0;
    // Connects two pins directly; `type` may be null.
    virtual Status ConnectDirect(IPin* output, IPin* input, const MediaType* type) = 0;
};

class IGraphBuilder : public IFilterGraph {
public:
    static constexpr Guid kIid = guid("{56A868A9-0AD4-11CE-B03A-0020AF0BA770}");
    // Adds and connects the filters that `output` needs for rendering.
    virtual Status Render(IPin* output) = 0;
};

} // namespace ql240
