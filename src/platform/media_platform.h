// The factory of the media pipeline: creates filters and graphs by class identifier. Owned by `app/`;
// interface thread.
#pragma once

#include <cstdint>

#include "platform/com.h"

namespace ql240 {

namespace class_id {

constexpr Guid kFilterGraph = guid("{E436EBB3-524F-11CE-9F53-0020AF0BA770}");
constexpr Guid kFileSource = guid("{E436EBB5-524F-11CE-9F53-0020AF0BA770}");
constexpr Guid kAviSplitter = guid("{1B544C20-FD0B-11CE-8C63-00AA0044B51E}");
constexpr Guid kMp4Splitter = guid("{25462A40-E574-4A61-A715-18EADC6B650C}");
constexpr Guid kVideoDecoder = guid("{EC00D4BF-FEC2-40F8-AE73-AE0798E15C73}");
constexpr Guid kSampleGrabber = guid("{C1F400A0-3F08-11D3-9F0B-006008039E37}");
constexpr Guid kColourConverter = guid("{CF49D4E0-1115-11CE-B03A-0020AF0BA770}");
constexpr Guid kVideoRenderer = guid("{B87BEB7B-8D29-423F-AE4D-6582C10175AC}");
constexpr Guid kAudioDecoder = guid("{2EEB4ADF-4578-4D10-BCA7-BB955F56320A}");
constexpr Guid kAudioRenderer = guid("{79376820-07D0-11CF-A24D-0020AFD79767}");

} // namespace class_id

enum class ClassContext : std::uint32_t { InprocServer = 0x1, All = 0x17 };

class MediaPlatform {
public:
    virtual ~MediaPlatform() = default;

    // Creates an object of the class and stores its interface `iid` in *object with a reference for the
    // caller. On failure (kStatusClassNotRegistered, kStatusNoInterface) *object is null.
    virtual Status CoCreateInstance(const Guid& classId, IUnknown* outer, ClassContext context,
                                    const Guid& iid, void** object) = 0;

    // Whether a second clip can be open beside the first one.
    virtual bool opensSeveral() const { return true; }

    // Loads what the first clip will need, on a thread of its own.
    virtual void warmUp() = 0;

    // The volume of all present and future clips: 0 silent to 0xFFFF loudest.
    virtual void setOutputVolume(std::uint16_t left, std::uint16_t right) = 0;
};

// Exported by the media module: `extern "C" ql240::MediaPlatform* ql240CreateMediaPlatform()`; the caller
// owns the result.
using CreateMediaPlatform = MediaPlatform* (*)();
inline constexpr char kCreateMediaPlatform[] = "ql240CreateMediaPlatform";

} // namespace ql240
