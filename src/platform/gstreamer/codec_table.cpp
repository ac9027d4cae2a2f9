#include "platform/gstreamer/codec_table.h"

#include <array>
#include <cstring>

namespace ql240::gstreamer {

namespace {

constexpr int kAnyVersion = -1;

struct Codec {
    const char* mediaType;
    int mpegVersion;
    std::array<const char*, 2> factories; // null: none
};

// Software decoders by name: a hardware one may outrank them without being faster on clips of this size.
constexpr Codec kCodecs[] = {
    {"video/x-h264", kAnyVersion, {"h264parse", "avdec_h264"}},
    {"video/x-h265", kAnyVersion, {"h265parse", "avdec_h265"}},
    {"image/jpeg", kAnyVersion, {"jpegdec", nullptr}},
    {"video/mpeg", 4, {"mpeg4videoparse", "avdec_mpeg4"}},
    {"audio/mpeg", 4, {"aacparse", "avdec_aac"}},
    {"audio/mpeg", 2, {"aacparse", "avdec_aac"}},
    {"audio/mpeg", 1, {"mpegaudioparse", "avdec_mp3"}},
    {"audio/x-ac3", kAnyVersion, {"ac3parse", "avdec_ac3"}},
    {"audio/x-raw", kAnyVersion, {nullptr, nullptr}},
    {"audio/x-alaw", kAnyVersion, {"alawdec", nullptr}},
    {"audio/x-mulaw", kAnyVersion, {"mulawdec", nullptr}},
    {"audio/x-adpcm", kAnyVersion, {"avdec_adpcm_ima_wav", nullptr}},
};

bool matches(const Codec& codec, const GstStructure* stream) {
    if (std::strcmp(gst_structure_get_name(stream), codec.mediaType) != 0)
        return false;
    int version = 0;
    return codec.mpegVersion == kAnyVersion ||
           (gst_structure_get_int(stream, "mpegversion", &version) && version == codec.mpegVersion);
}

} // namespace

std::vector<const char*> decoderChain(const GstCaps* caps, bool* known) {
    const GstStructure* stream = caps ? gst_caps_get_structure(caps, 0) : nullptr;
    *known = false;
    std::vector<const char*> chain;
    for (const Codec& codec : kCodecs) {
        if (!stream || !matches(codec, stream))
            continue;
        *known = true;
        for (const char* factory : codec.factories) {
            if (factory)
                chain.push_back(factory);
        }
        break;
    }
    return chain;
}

} // namespace ql240::gstreamer
