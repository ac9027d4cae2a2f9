#include <QtEndian>
#include <algorithm>

#include "clips/formats/clip_layout.h"

namespace ql240::sensorfiles {
namespace {

bool isList(std::uint32_t name) {
    return name == fourCc("RIFF") || name == fourCc("LIST");
}

void readChunks(ByteSource& source, ByteRange area, ClipLayout& clip) {
    while (const std::optional<RiffChunk> chunk = nextChunk(source, area)) {
        if (chunk->name == fourCc("gps0")) {
            clip.gps0 = chunk->body;
        } else if (chunk->name == fourCc("gsen")) {
            clip.gsen = chunk->body;
        } else if (chunk->kind == fourCc("hdrl")) {
            clip.headers = chunk->body;
            clip.hasIndex = true;
        } else if (chunk->kind == fourCc("INFO")) {
            clip.information = chunk->body;
        }
    }
}

} // namespace

std::optional<RiffChunk> nextChunk(ByteSource& source, ByteRange& rest) {
    std::array<char, 12> head{};
    const qsizetype wanted = std::min<std::int64_t>(rest.size, 12);
    if (wanted < 8 || source.read(rest.start, std::span(head).first(wanted)) < 8)
        return std::nullopt;
    RiffChunk chunk{qFromBigEndian<std::uint32_t>(head.data()), 0, {rest.start + 8, 0}};
    std::int64_t size = qFromLittleEndian<std::uint32_t>(head.data() + 4);
    if (isList(chunk.name) && wanted == 12) {
        chunk.kind = qFromBigEndian<std::uint32_t>(head.data() + 8);
        size = std::max<std::int64_t>(size, 4);
        chunk.body.start += 4;
    }
    const std::int64_t end = std::min(rest.start + 8 + size, rest.end());
    chunk.offset = rest.start;
    chunk.missing = static_cast<std::uint64_t>(rest.start + 8 + size - end);
    chunk.body.size = std::max<std::int64_t>(0, end - chunk.body.start);
    const std::int64_t next = std::min(end + (size & 1), rest.end()); // chunks start at even offsets
    rest = {next, rest.end() - next};
    return chunk;
}

void readRiffLayout(ByteSource& source, ClipLayout& clip) {
    clip.isRiff = true;
    ByteRange rest{0, source.size()};
    while (const std::optional<RiffChunk> chunk = nextChunk(source, rest)) {
        if (chunk->name != fourCc("RIFF") || (chunk->kind != fourCc("AVI ") && chunk->kind != fourCc("AVIX")))
            continue;
        if (chunk->missing > 0 && !clip.cut)
            clip.cut = CutBox{chunk->name, chunk->offset, chunk->missing};
        readChunks(source, chunk->body, clip);
    }
}

ClipLayout readClipLayout(ByteSource& source) {
    ClipLayout clip;
    std::array<char, 12> head{};
    source.read(0, head);
    const auto isAt = [&head](qsizetype at, std::uint32_t name) {
        return qFromBigEndian<std::uint32_t>(head.data() + at) == name;
    };
    if (!isAt(0, fourCc("RIFF")))
        readMp4Layout(source, clip);
    else if (isAt(8, fourCc("AVI ")))
        readRiffLayout(source, clip);
    return clip;
}

} // namespace ql240::sensorfiles
