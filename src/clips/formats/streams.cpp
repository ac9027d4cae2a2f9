#include "clips/formats/streams.h"

#include <QtEndian>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <span>

#include "platform/limits.h"

namespace ql240::sensorfiles {
namespace {

struct CodecName {
    std::uint32_t id;
    const char* name;
};

constexpr CodecName kFourCcs[] = {
    {fourCc("avc1"), "H.264"},       {fourCc("avc3"), "H.264"},       {fourCc("H264"), "H.264"},
    {fourCc("hvc1"), "H.265"},       {fourCc("hev1"), "H.265"},       {fourCc("mp4v"), "MPEG-4"},
    {fourCc("mp4a"), "AAC"},         {fourCc("ac-3"), "AC-3"},        {fourCc("sowt"), "PCM"},
    {fourCc("twos"), "PCM"},         {fourCc("MJPG"), "Motion-JPEG"}, {fourCc("mjpg"), "Motion-JPEG"},
    {fourCc("jpeg"), "Motion-JPEG"}, {fourCc("camm"), "motion data"}, {fourCc("text"), "text"},
    {fourCc("tx3g"), "text"},
};
// wFormatTag of WAVEFORMATEX.
constexpr CodecName kWaveFormats[] = {{1, "PCM"},    {6, "A-law"},  {7, "µ-law"},    {0x11, "ADPCM"},
                                      {0x55, "MP3"}, {0xFF, "AAC"}, {0x2000, "AC-3"}};

QString codecName(std::span<const CodecName> names, std::uint32_t id) {
    const auto found =
        std::find_if(names.begin(), names.end(), [id](const CodecName& n) { return n.id == id; });
    return found != names.end() ? QString::fromUtf8(found->name) : QString();
}

QString fourCcName(std::uint32_t id) {
    const QString name = codecName(kFourCcs, id);
    return name.isEmpty() ? typeText(id) : name;
}

template <std::size_t Size>
std::array<char, Size> bytesAt(ByteSource& source, ByteRange range) {
    std::array<char, Size> bytes{};
    const std::int64_t there = std::clamp<std::int64_t>(range.size, 0, Size);
    source.read(range.start, std::span(bytes).first(there));
    return bytes;
}

std::int64_t scaled(std::uint64_t count, std::uint64_t unit, std::uint64_t perSecond) {
    constexpr double kMost = 1e15;
    const double ms = perSecond > 0 ? static_cast<double>(count) * static_cast<double>(unit) * 1000 /
                                          static_cast<double>(perSecond)
                                    : 0;
    return static_cast<std::int64_t>(std::min(ms, kMost));
}

// The first sample description follows 8 bytes of stsd and has a 16-byte header.
ClipStream streamOf(ByteSource& source, const TrackLayout& track) {
    const auto stsd = bytesAt<48>(source, track.description);
    const auto u16 = [&](std::size_t at) { return qFromBigEndian<std::uint16_t>(stsd.data() + 8 + at); };
    ClipStream stream;
    stream.codec = fourCcName(track.format);
    stream.lengthMs = scaled(track.length, 1, track.timescale);
    if (track.handler == fourCc("vide")) {
        stream.kind = ClipStream::Kind::Video;
        stream.width = u16(32);
        stream.height = u16(34);
        if (track.length > 0) {
            stream.framesASecond =
                static_cast<double>(track.sampleCount) * track.timescale / static_cast<double>(track.length);
        }
    } else if (track.handler == fourCc("soun")) {
        stream.kind = ClipStream::Kind::Sound;
        stream.channels = u16(24);
        stream.samplesASecond = u16(32);
    }
    return stream;
}

void readStreamHeader(ByteSource& source, ByteRange body, ClipStream& stream) {
    const auto strh = bytesAt<48>(source, body);
    const auto u32 = [&](std::size_t at) { return qFromLittleEndian<std::uint32_t>(strh.data() + at); };
    const std::uint32_t type = qFromBigEndian<std::uint32_t>(strh.data());
    stream.kind = type == fourCc("vids")   ? ClipStream::Kind::Video
                  : type == fourCc("auds") ? ClipStream::Kind::Sound
                                           : ClipStream::Kind::Data;
    const std::uint32_t scale = u32(20);
    const std::uint32_t rate = u32(24);
    stream.lengthMs = scaled(u32(32), scale, rate);
    if (stream.kind == ClipStream::Kind::Video && scale > 0)
        stream.framesASecond = static_cast<double>(rate) / scale;
}

void readStreamFormat(ByteSource& source, ByteRange body, ClipStream& stream) {
    const auto strf = bytesAt<20>(source, body);
    const auto u16 = [&](std::size_t at) { return qFromLittleEndian<std::uint16_t>(strf.data() + at); };
    const auto i32 = [&](std::size_t at) { return qFromLittleEndian<std::int32_t>(strf.data() + at); };
    if (stream.kind == ClipStream::Kind::Video) {
        stream.width = i32(4);
        const std::int64_t height = i32(8); // negative: top line first
        stream.height = static_cast<int>(std::min<std::int64_t>(std::abs(height), 1 << 30));
        stream.codec = fourCcName(qFromBigEndian<std::uint32_t>(strf.data() + 16));
    } else if (stream.kind == ClipStream::Kind::Sound) {
        const QString name = codecName(kWaveFormats, u16(0));
        stream.codec = name.isEmpty() ? QStringLiteral("format %1").arg(u16(0)) : name;
        stream.channels = u16(2);
        stream.samplesASecond = i32(4);
    }
}

std::vector<ClipStream> readAviStreams(ByteSource& source, ByteRange headers) {
    std::vector<ClipStream> streams;
    while (const std::optional<RiffChunk> list = nextChunk(source, headers)) {
        if (list->kind != fourCc("strl") || streams.size() >= limits::kTracks)
            continue;
        ClipStream stream;
        ByteRange rest = list->body;
        while (const std::optional<RiffChunk> chunk = nextChunk(source, rest)) {
            if (chunk->name == fourCc("strh"))
                readStreamHeader(source, chunk->body, stream);
            else if (chunk->name == fourCc("strf"))
                readStreamFormat(source, chunk->body, stream);
        }
        streams.push_back(stream);
    }
    return streams;
}

// Text alone, or preceded by its length and language.
QString textIn(ByteSource& source, ByteRange body, bool hasLanguage) {
    QByteArray bytes(std::clamp<std::int64_t>(body.size, 0, limits::kShownNameLetters), '\0');
    bytes.truncate(source.read(body.start, bytes));
    if (hasLanguage && bytes.size() >= 4) {
        const auto length = qFromBigEndian<std::uint16_t>(bytes.constData());
        if (length <= bytes.size() - 4)
            bytes = bytes.mid(4, length);
    }
    if (const auto end = bytes.indexOf('\0'); end >= 0)
        bytes.truncate(end);
    return QString::fromUtf8(bytes).trimmed();
}

CameraText readUserData(ByteSource& source, ByteRange area) {
    // These types begin with the copyright sign in Latin-1.
    constexpr std::uint32_t kSign = 0xA9000000;
    constexpr std::uint32_t kLetters = 0x00FFFFFF;
    CameraText text;
    QString maker;
    BoxCursor boxes(source, area);
    while (const std::optional<Box> box = boxes.next()) {
        if (box->type == (kSign | (fourCc(" mak") & kLetters)))
            maker = textIn(source, box->body, true);
        else if (box->type == (kSign | (fourCc(" mod") & kLetters)))
            text.camera = textIn(source, box->body, true);
        else if (box->type == (kSign | (fourCc(" swr") & kLetters)))
            text.firmware = textIn(source, box->body, true);
    }
    text.camera = QStringLiteral("%1 %2").arg(maker, text.camera).trimmed();
    return text;
}

} // namespace

QString typeText(std::uint32_t type) {
    QString text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto letter = static_cast<char>(type >> shift & 0xFF);
        text += letter >= 0x20 && letter < 0x7F ? QLatin1Char(letter) : QLatin1Char('?');
    }
    return text;
}

std::vector<ClipStream> readStreams(ByteSource& source, const ClipLayout& clip) {
    if (clip.isRiff)
        return readAviStreams(source, clip.headers);
    std::vector<ClipStream> streams;
    for (const TrackLayout& track : clip.tracks)
        streams.push_back(streamOf(source, track));
    return streams;
}

CameraText readCameraText(ByteSource& source, const ClipLayout& clip) {
    if (!clip.isRiff)
        return readUserData(source, clip.userData);
    CameraText text;
    ByteRange rest = clip.information;
    while (const std::optional<RiffChunk> chunk = nextChunk(source, rest)) {
        if (chunk->name == fourCc("IPRD"))
            text.camera = textIn(source, chunk->body, false);
        else if (chunk->name == fourCc("ISFT"))
            text.firmware = textIn(source, chunk->body, false);
    }
    return text;
}

} // namespace ql240::sensorfiles
