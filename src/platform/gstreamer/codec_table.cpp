#include "platform/gstreamer/codec_table.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <span>

#include "platform/logging.h"

namespace ql240::gstreamer {

namespace {

constexpr int kAnyVersion = -1;

struct Codec {
    const char* mediaType;
    int mpegVersion;
    std::array<const char*, 2> factories; // null: none
};

// Software decoders by name: a hardware decoder may have a higher rank without being faster on clips of this
// size.
constexpr Codec kPictureCodecs[] = {
    {"video/x-h264", kAnyVersion, {"h264parse", "avdec_h264"}},
    {"video/x-h265", kAnyVersion, {"h265parse", "avdec_h265"}},
    {"image/jpeg", kAnyVersion, {"jpegdec", nullptr}},
    {"video/mpeg", 4, {"mpeg4videoparse", "avdec_mpeg4"}},
};

constexpr Codec kSoundCodecs[] = {
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

QString textOf(const GstCaps* caps) {
    const std::unique_ptr<gchar, decltype(&g_free)> text(gst_caps_to_string(caps), g_free);
    return QString::fromUtf8(text.get());
}

} // namespace

std::optional<std::vector<const char*>> decoderChain(StreamKind kind, const GstCaps* caps) {
    if (!caps)
        return std::nullopt;
    const GstStructure* stream = gst_caps_get_structure(caps, 0);
    const auto codecs = kind == StreamKind::Pictures ? std::span<const Codec>(kPictureCodecs) : kSoundCodecs;
    const auto codec = std::find_if(codecs.begin(), codecs.end(),
                                    [stream](const Codec& known) { return matches(known, stream); });
    if (codec == codecs.end()) {
        qCWarning(lcMedia) << "no decoder for" << textOf(caps);
        return std::nullopt;
    }
    std::vector<const char*> chain(codec->factories.begin(), codec->factories.end());
    chain.erase(std::remove(chain.begin(), chain.end(), nullptr), chain.end());
    qCDebug(lcMedia) << "decoder of" << textOf(caps) << chain;
    return chain;
}

} // namespace ql240::gstreamer
