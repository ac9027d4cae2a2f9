#include <QtEndian>
#include <algorithm>

#include "clips/formats/clip_layout.h"

namespace ql240::sensorfiles {
namespace {

// A chunk's name, its little-endian size and, for "RIFF" and "LIST", the kind of the list.
struct Chunk {
    quint32 name = 0;
    quint32 kind = 0;
    ByteRange body;
};

bool isList(quint32 name) {
    return name == fourCc("RIFF") || name == fourCc("LIST");
}

std::optional<Chunk> readChunk(ByteSource& source, ByteRange& rest) {
    std::array<char, 12> head{};
    const qsizetype wanted = std::min<qint64>(rest.size, 12);
    if (wanted < 8 || source.read(rest.start, std::span(head).first(wanted)) < 8) {
        return std::nullopt;
    }
    Chunk chunk{qFromBigEndian<quint32>(head.data()), 0, {rest.start + 8, 0}};
    qint64 size = qFromLittleEndian<quint32>(head.data() + 4);
    if (isList(chunk.name) && wanted == 12) {
        chunk.kind = qFromBigEndian<quint32>(head.data() + 8);
        size = std::max<qint64>(size, 4);
        chunk.body.start += 4;
    }
    const qint64 end = std::min(rest.start + 8 + size, rest.end());
    chunk.body.size = std::max<qint64>(0, end - chunk.body.start);
    const qint64 next = std::min(end + (size & 1), rest.end()); // chunks begin at even places
    rest = {next, rest.end() - next};
    return chunk;
}

void readChunks(ByteSource& source, ByteRange area, ClipLayout& clip) {
    while (const std::optional<Chunk> chunk = readChunk(source, area)) {
        if (chunk->name == fourCc("gps0")) {
            clip.gps0 = chunk->body;
        } else if (chunk->name == fourCc("gsen")) {
            clip.gsen = chunk->body;
        }
    }
}

} // namespace

void readRiffLayout(ByteSource& source, ClipLayout& clip) {
    ByteRange rest{0, source.size()};
    while (const std::optional<Chunk> chunk = readChunk(source, rest)) {
        if (chunk->name == fourCc("RIFF")) {
            readChunks(source, chunk->body, clip);
        }
    }
}

ClipLayout readClipLayout(ByteSource& source) {
    ClipLayout clip;
    std::array<char, 12> head{};
    source.read(0, head);
    if (qFromBigEndian<quint32>(head.data()) == fourCc("RIFF")) {
        readRiffLayout(source, clip);
    } else {
        readMp4Layout(source, clip);
    }
    return clip;
}

} // namespace ql240::sensorfiles
