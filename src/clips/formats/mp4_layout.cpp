#include <QtEndian>
#include <algorithm>

#include "clips/formats/clip_layout.h"
#include "platform/limits.h"

namespace ql240::sensorfiles {
namespace {

constexpr std::uint64_t kSecondsFrom1904To1970 = 2082844800;

// A full box; the reader is behind its version and flags.
struct FullBox {
    int version;
    RangeReader reader;
};

std::optional<FullBox> openFullBox(ByteSource& source, const Box& box) {
    FullBox full{0, RangeReader(source, box.body)};
    const std::optional<std::uint32_t> head = full.reader.u32();
    if (!head)
        return std::nullopt;
    full.version = static_cast<int>(*head >> 24);
    return full;
}

std::uint64_t number(RangeReader& reader, bool wide) {
    return wide ? reader.u64().value_or(0) : reader.u32().value_or(0);
}

// 0 if it is unknown, which all ones stand for.
std::uint64_t readLength(RangeReader& reader, bool wide) {
    const std::uint64_t length = number(reader, wide);
    return length == (wide ? UINT64_MAX : UINT32_MAX) ? 0 : length;
}

// The entries after a table's 8-byte header: as many as its count says, or as the box holds if that is fewer.
ByteRange tableEntries(ByteSource& source, const Box& box, std::int64_t entrySize) {
    std::array<char, 8> head{};
    if (box.body.size < 8 || source.read(box.body.start, head) != 8)
        return {};
    const std::int64_t count = qFromBigEndian<std::uint32_t>(head.data() + 4);
    return {box.body.start + 8, std::min(count, (box.body.size - 8) / entrySize) * entrySize};
}

void readSizes(ByteSource& source, const Box& box, TrackLayout& track) {
    std::array<char, 12> head{};
    if (box.body.size < 12 || source.read(box.body.start, head) != 12)
        return;
    const std::uint32_t field = qFromBigEndian<std::uint32_t>(head.data() + 4);
    track.sampleCount = qFromBigEndian<std::uint32_t>(head.data() + 8);
    track.sizes = {box.body.start + 12, box.body.size - 12};
    if (box.type == fourCc("stsz"))
        track.constantSize = field;
    else
        track.sizeBits = static_cast<int>(field & 0xFF);
}

void readSampleTables(ByteSource& source, ByteRange area, TrackLayout& track) {
    BoxCursor boxes(source, area);
    while (const std::optional<Box> box = boxes.next()) {
        switch (box->type) {
            case fourCc("stsd"): {
                track.description = box->body;
                std::array<char, 16> head{};
                if (box->body.size >= 16 && source.read(box->body.start, head) == 16)
                    track.format = qFromBigEndian<std::uint32_t>(head.data() + 12);
                break;
            }
            case fourCc("stts"):
                track.times = tableEntries(source, *box, 8);
                break;
            case fourCc("stsc"):
                track.chunkRuns = tableEntries(source, *box, 12);
                break;
            case fourCc("stsz"):
            case fourCc("stz2"):
                readSizes(source, *box, track);
                break;
            case fourCc("stco"):
            case fourCc("co64"):
                track.wideOffsets = box->type == fourCc("co64");
                track.chunkOffsets = tableEntries(source, *box, track.wideOffsets ? 8 : 4);
                break;
            case fourCc("ctts"):
                track.compositions = tableEntries(source, *box, 8);
                break;
            case fourCc("stss"):
                track.hasSyncTable = true;
                track.syncSamples = tableEntries(source, *box, 4);
                break;
            case fourCc("sdtp"):
                track.dependencies = {box->body.start + 4, box->body.size - 4};
                break;
            default:
                break;
        }
    }
}

void readMedia(ByteSource& source, ByteRange area, TrackLayout& track) {
    BoxCursor boxes(source, area);
    while (const std::optional<Box> box = boxes.next()) {
        if (box->type == fourCc("mdhd")) {
            if (auto full = openFullBox(source, *box)) {
                number(full->reader, full->version == 1); // creation and modification time
                number(full->reader, full->version == 1);
                track.timescale = full->reader.u32().value_or(0);
                track.length = readLength(full->reader, full->version == 1);
            }
        } else if (box->type == fourCc("hdlr")) {
            if (auto full = openFullBox(source, *box)) {
                full->reader.u32();
                track.handler = full->reader.u32().value_or(0);
            }
        } else if (box->type == fourCc("minf")) {
            BoxCursor information(source, box->body);
            while (const std::optional<Box> inner = information.next()) {
                if (inner->type == fourCc("stbl"))
                    readSampleTables(source, inner->body, track);
            }
        }
    }
}

void readEdits(ByteSource& source, const Box& box, TrackLayout& track) {
    auto full = openFullBox(source, box);
    if (!full)
        return;
    const bool wide = full->version == 1;
    const std::uint32_t count = full->reader.u32().value_or(0);
    for (std::uint32_t i = 0; i < std::min(count, limits::kEdits); ++i) {
        const std::uint64_t duration = number(full->reader, wide);
        const std::uint64_t raw = number(full->reader, wide);
        const std::int64_t mediaTime = wide ? static_cast<std::int64_t>(raw) : static_cast<std::int32_t>(raw);
        full->reader.u32(); // rate
        if (mediaTime >= 0 && ++track.mediaEdits == 1) {
            track.mediaStart = mediaTime;
            track.editLength = duration;
        } else if (track.mediaEdits == 0) {
            track.emptyEdit += duration;
        }
    }
}

void readMovieHeader(ByteSource& source, const Box& box, ClipLayout& clip) {
    if (auto full = openFullBox(source, box)) {
        const std::uint64_t created = number(full->reader, full->version == 1);
        number(full->reader, full->version == 1);
        clip.timescale = full->reader.u32().value_or(0);
        const std::uint64_t length = readLength(full->reader, full->version == 1);
        if (clip.timescale > 0 && length > 0 && length <= std::numeric_limits<std::uint32_t>::max())
            clip.lengthMs = static_cast<std::int64_t>(length) * 1000 / clip.timescale;
        if (created > kSecondsFrom1904To1970 && created <= std::numeric_limits<std::uint32_t>::max())
            clip.createdAt = static_cast<std::int64_t>(created - kSecondsFrom1904To1970);
    }
}

void readMovie(ByteSource& source, ByteRange area, ClipLayout& clip) {
    BoxCursor boxes(source, area);
    while (const std::optional<Box> box = boxes.next()) {
        if (box->type == fourCc("mvhd"))
            readMovieHeader(source, *box, clip);
        else if (box->type == fourCc("trak") && clip.tracks.size() < limits::kTracks)
            clip.tracks.push_back(readTrackLayout(source, box->body));
        else if (box->type == fourCc("gps "))
            clip.gpsIndex = box->body;
        else if (box->type == fourCc("udta"))
            clip.userData = box->body;
    }
}

} // namespace

std::optional<Box> BoxCursor::next() {
    std::array<char, 16> head{};
    const qsizetype wanted = std::min<std::int64_t>(m_rest.size, 16);
    if (wanted < 8 || m_source.read(m_rest.start, std::span(head).first(wanted)) < 8)
        return std::nullopt;
    std::uint64_t size = qFromBigEndian<std::uint32_t>(head.data());
    std::int64_t headSize = 8;
    const bool hasNoSize = size == 0;
    if (hasNoSize) {
        size = static_cast<std::uint64_t>(m_rest.size); // extends to the end
    } else if (size == 1) {
        headSize = 16;
        size = wanted == 16 ? qFromBigEndian<std::uint64_t>(head.data() + 8) : 0;
    }
    if (size < static_cast<std::uint64_t>(headSize))
        return std::nullopt;
    const auto whole = static_cast<std::int64_t>(std::min(size, static_cast<std::uint64_t>(m_rest.size)));
    const Box box{qFromBigEndian<std::uint32_t>(head.data() + 4),
                  {m_rest.start + headSize, whole - headSize},
                  m_rest.start,
                  size - static_cast<std::uint64_t>(whole),
                  hasNoSize};
    m_rest = {m_rest.start + whole, m_rest.size - whole};
    return box;
}

TrackLayout readTrackLayout(ByteSource& source, ByteRange area) {
    TrackLayout track;
    BoxCursor boxes(source, area);
    while (const std::optional<Box> box = boxes.next()) {
        if (box->type == fourCc("mdia")) {
            readMedia(source, box->body, track);
        } else if (box->type == fourCc("edts")) {
            BoxCursor edits(source, box->body);
            while (const std::optional<Box> edit = edits.next()) {
                if (edit->type == fourCc("elst"))
                    readEdits(source, *edit, track);
            }
        }
    }
    return track;
}

void readMp4Layout(ByteSource& source, ClipLayout& clip) {
    BoxCursor boxes(source, {0, source.size()});
    while (const std::optional<Box> box = boxes.next()) {
        if (box->missing > 0 && !clip.cut)
            clip.cut = CutBox{box->type, box->offset, box->missing};
        if (box->type == fourCc("moov")) {
            clip.hasIndex = true;
            readMovie(source, box->body, clip);
        } else if (box->type == fourCc("free") && clip.freeBoxes.size() < limits::kFreeBoxes) {
            clip.freeBoxes.push_back(box->body);
        } else if (box->type == fourCc("gps0")) {
            clip.gps0 = box->body;
        } else if (box->type == fourCc("gsen")) {
            clip.gsen = box->body;
        }
    }
    if (!boxes.rest().isEmpty() && !clip.cut)
        clip.cut = CutBox{0, boxes.rest().start, 0};
}

} // namespace ql240::sensorfiles
