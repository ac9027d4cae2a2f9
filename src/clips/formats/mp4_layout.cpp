#include <QtEndian>
#include <algorithm>

#include "clips/formats/clip_layout.h"
#include "platform/limits.h"

namespace ql240::sensorfiles {
namespace {

constexpr qint64 kSecondsFrom1904To1970 = 2082844800;

// A full box's version and flags, then the rest.
struct FullBox {
    int version;
    RangeReader reader;
};

std::optional<FullBox> openFullBox(ByteSource& source, const Box& box) {
    FullBox full{0, RangeReader(source, box.body)};
    const std::optional<quint32> head = full.reader.u32();
    if (!head) {
        return std::nullopt;
    }
    full.version = static_cast<int>(*head >> 24);
    return full;
}

quint64 number(RangeReader& reader, bool wide) {
    return wide ? reader.u64().value_or(0) : reader.u32().value_or(0);
}

// The entries behind a table's 8 byte header, no more than the header counts and the box holds.
ByteRange tableEntries(ByteSource& source, const Box& box, qint64 entrySize) {
    std::array<char, 8> head{};
    if (box.body.size < 8 || source.read(box.body.start, head) != 8) {
        return {};
    }
    const qint64 count = qFromBigEndian<quint32>(head.data() + 4);
    return {box.body.start + 8, std::min(count, (box.body.size - 8) / entrySize) * entrySize};
}

void readSizes(ByteSource& source, const Box& box, TrackLayout& track) {
    std::array<char, 12> head{};
    if (box.body.size < 12 || source.read(box.body.start, head) != 12) {
        return;
    }
    const quint32 field = qFromBigEndian<quint32>(head.data() + 4);
    track.sampleCount = qFromBigEndian<quint32>(head.data() + 8);
    track.sizes = {box.body.start + 12, box.body.size - 12};
    if (box.type == fourCc("stsz")) {
        track.constantSize = field;
    } else {
        track.sizeBits = static_cast<int>(field & 0xFF);
    }
}

void readSampleTables(ByteSource& source, ByteRange area, TrackLayout& track) {
    BoxCursor boxes(source, area);
    while (const std::optional<Box> box = boxes.next()) {
        switch (box->type) {
            case fourCc("stsd"): {
                std::array<char, 16> head{};
                if (box->body.size >= 16 && source.read(box->body.start, head) == 16) {
                    track.format = qFromBigEndian<quint32>(head.data() + 12);
                }
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
                number(full->reader, full->version == 1); // creation and change
                number(full->reader, full->version == 1);
                track.timescale = full->reader.u32().value_or(0);
            }
        } else if (box->type == fourCc("hdlr")) {
            if (auto full = openFullBox(source, *box)) {
                full->reader.u32();
                track.handler = full->reader.u32().value_or(0);
            }
        } else if (box->type == fourCc("minf")) {
            BoxCursor information(source, box->body);
            while (const std::optional<Box> inner = information.next()) {
                if (inner->type == fourCc("stbl")) {
                    readSampleTables(source, inner->body, track);
                }
            }
        }
    }
}

void readEdits(ByteSource& source, const Box& box, TrackLayout& track) {
    auto full = openFullBox(source, box);
    if (!full) {
        return;
    }
    const bool wide = full->version == 1;
    const quint32 count = full->reader.u32().value_or(0);
    for (quint32 i = 0; i < std::min(count, limits::kEdits); ++i) {
        const quint64 duration = number(full->reader, wide);
        const quint64 raw = number(full->reader, wide);
        const qint64 mediaTime = wide ? static_cast<qint64>(raw) : static_cast<qint32>(raw);
        full->reader.u32(); // rate
        if (mediaTime >= 0) {
            track.mediaStart = mediaTime;
            return;
        }
        track.emptyEdit += duration;
    }
}

TrackLayout readTrack(ByteSource& source, ByteRange area) {
    TrackLayout track;
    BoxCursor boxes(source, area);
    while (const std::optional<Box> box = boxes.next()) {
        if (box->type == fourCc("mdia")) {
            readMedia(source, box->body, track);
        } else if (box->type == fourCc("edts")) {
            BoxCursor edits(source, box->body);
            while (const std::optional<Box> edit = edits.next()) {
                if (edit->type == fourCc("elst")) {
                    readEdits(source, *edit, track);
                }
            }
        }
    }
    return track;
}

void readMovieHeader(ByteSource& source, const Box& box, ClipLayout& clip) {
    if (auto full = openFullBox(source, box)) {
        const quint64 created = number(full->reader, full->version == 1);
        number(full->reader, full->version == 1);
        clip.timescale = full->reader.u32().value_or(0);
        const quint64 length = number(full->reader, full->version == 1);
        if (clip.timescale > 0 && length > 0 && length <= std::numeric_limits<quint32>::max()) {
            clip.lengthMs = static_cast<qint64>(length) * 1000 / clip.timescale;
        }
        if (created > quint64(kSecondsFrom1904To1970) && created <= std::numeric_limits<quint32>::max()) {
            clip.createdAt = static_cast<qint64>(created) - kSecondsFrom1904To1970;
        }
    }
}

void readMovie(ByteSource& source, ByteRange area, ClipLayout& clip) {
    BoxCursor boxes(source, area);
    while (const std::optional<Box> box = boxes.next()) {
        if (box->type == fourCc("mvhd")) {
            readMovieHeader(source, *box, clip);
        } else if (box->type == fourCc("trak") && clip.tracks.size() < limits::kTracks) {
            clip.tracks.push_back(readTrack(source, box->body));
        } else if (box->type == fourCc("gps ")) {
            clip.gpsIndex = box->body;
        }
    }
}

} // namespace

std::optional<Box> BoxCursor::next() {
    std::array<char, 16> head{};
    const qsizetype wanted = std::min<qint64>(m_rest.size, 16);
    if (wanted < 8 || m_source.read(m_rest.start, std::span(head).first(wanted)) < 8) {
        return std::nullopt;
    }
    quint64 size = qFromBigEndian<quint32>(head.data());
    qint64 headSize = 8;
    if (size == 0) {
        size = static_cast<quint64>(m_rest.size); // the last one, up to the end
    } else if (size == 1) {
        headSize = 16;
        size = wanted == 16 ? qFromBigEndian<quint64>(head.data() + 8) : 0;
    }
    if (size < static_cast<quint64>(headSize)) {
        return std::nullopt;
    }
    const auto whole = static_cast<qint64>(std::min(size, static_cast<quint64>(m_rest.size)));
    const Box box{qFromBigEndian<quint32>(head.data() + 4), {m_rest.start + headSize, whole - headSize}};
    m_rest = {m_rest.start + whole, m_rest.size - whole};
    return box;
}

void readMp4Layout(ByteSource& source, ClipLayout& clip) {
    BoxCursor boxes(source, {0, source.size()});
    while (const std::optional<Box> box = boxes.next()) {
        if (box->type == fourCc("moov")) {
            readMovie(source, box->body, clip);
        } else if (box->type == fourCc("free") && clip.freeBoxes.size() < limits::kFreeBoxes) {
            clip.freeBoxes.push_back(box->body);
        } else if (box->type == fourCc("gps0")) {
            clip.gps0 = box->body;
        } else if (box->type == fourCc("gsen")) {
            clip.gsen = box->body;
        }
    }
}

} // namespace ql240::sensorfiles
