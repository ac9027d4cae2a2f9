#include "clips/containers/avi_chunks.h"

#include <QtEndian>
#include <limits>

#include "platform/limits.h"

namespace ql240::containers {
namespace {

using sensorfiles::RiffChunk;

// Which lists are parsed, in which parents; this limits the depth.
bool hasInner(std::uint32_t kind, std::uint32_t parent) {
    return (kind == fourCc("hdrl") && parent == fourCc("AVI ")) ||
           ((kind == fourCc("strl") || kind == fourCc("odml")) && parent == fourCc("hdrl"));
}

class TreeReader {
public:
    TreeReader(ByteSource& source, AviFile& file, QString& problem)
        : m_source(source), m_file(file), m_problem(problem) {}

    // Reads adjacent RIFF lists; anything after them isn't part of the container.
    bool readLists() {
        ByteRange rest{0, m_source.size()};
        for (std::uint32_t kind = fourCc("AVI "); !m_file.cut; kind = fourCc("AVIX")) {
            m_file.rest = rest;
            const ByteRange before = rest;
            const std::optional<RiffChunk> list = sensorfiles::nextChunk(m_source, rest);
            if (!list || list->name != fourCc("RIFF") || list->kind != kind)
                break;
            if (!readList(*list, before, rest))
                return false;
        }
        m_file.rest = m_file.cut ? ByteRange{} : m_file.rest;
        if (m_file.lists.empty())
            return fail(0, "no list of an AVI file");
        return true;
    }

private:
    bool readList(const RiffChunk& list, ByteRange before, ByteRange rest) {
        ByteRange body = list.body;
        // The size is 0 until a recording is finished.
        if (body.isEmpty())
            body.size = before.end() - body.start;
        const bool isCut = list.missing > 0 || list.body.isEmpty();
        AviChunk chunk = made(list, before, rest);
        if (!readInner(body, chunk, isCut))
            return false;
        if (isCut && !m_file.cut)
            m_file.cut = sensorfiles::CutBox{list.name, list.offset, list.missing};
        m_file.lists.push_back(std::move(chunk));
        return true;
    }

    bool readInner(ByteRange area, AviChunk& into, bool mayBeCut) {
        into.content = ByteRange{};
        for (;;) {
            const ByteRange before = area;
            const std::optional<RiffChunk> chunk = sensorfiles::nextChunk(m_source, area);
            if (!chunk || isHeadless(*chunk)) {
                into.content = before;
                return true;
            }
            if (++m_count > limits::kIndexBoxes)
                return fail(chunk->offset, "more chunks than a clip can have");
            const bool isUnfinished = chunk->kind == fourCc("movi") && chunk->body.isEmpty() && mayBeCut;
            if (!mayBeCut && (chunk->missing > 0 || isShortList(*chunk)))
                return fail(chunk->offset, "the chunk doesn't fit the list that holds it");
            into.inner.push_back(made(*chunk, before, area));
            if (hasInner(chunk->kind, into.kind) && !readInner(chunk->body, into.inner.back(), mayBeCut))
                return false;
            if (chunk->missing > 0 || isUnfinished) {
                if (isUnfinished)
                    into.inner.back().content =
                        ByteRange{chunk->body.start, before.end() - chunk->body.start};
                m_file.cut = sensorfiles::CutBox{chunk->name, chunk->offset, chunk->missing};
                return true;
            }
        }
    }

    // nextChunk() reads a kind even if the list's size has no room for it.
    bool isShortList(const RiffChunk& chunk) {
        std::array<char, 4> size{};
        return chunk.kind != 0 && chunk.body.isEmpty() &&
               (m_source.read(chunk.offset + 4, size) != 4 || size[0] != 4);
    }

    // A list cut off before its kind.
    static bool isHeadless(const RiffChunk& chunk) {
        const bool isList = chunk.name == fourCc("RIFF") || chunk.name == fourCc("LIST");
        return isList && chunk.body.start - chunk.offset < 12;
    }

    // `before` and `after`: the rest of the area before and after reading the chunk.
    AviChunk made(const RiffChunk& chunk, ByteRange before, ByteRange after) {
        AviChunk made;
        made.name = chunk.name;
        made.kind = chunk.kind;
        made.offset = chunk.offset;
        made.content = chunk.body;
        const std::int64_t end = chunk.body.end();
        std::array<char, 1> pad{};
        if (after.start > end && end < before.end() && m_source.read(end, pad) == 1)
            made.pad = pad[0];
        return made;
    }

    bool fail(std::int64_t offset, const char* reason) {
        m_problem = atByte(offset, reason);
        return false;
    }

    ByteSource& m_source;
    AviFile& m_file;
    QString& m_problem;
    std::size_t m_count = 0;
};

template <typename Chunks>
auto* findIn(Chunks& chunks, std::uint32_t type) {
    return firstOf(
        chunks, [type](const AviChunk& chunk) { return type == (chunk.isList() ? chunk.kind : chunk.name); });
}

} // namespace

std::int64_t AviChunk::bodySize() const {
    std::int64_t size = (isList() ? 4 : 0) + sizeOf(content);
    for (const AviChunk& chunk : inner)
        size += chunk.size();
    return size;
}

std::int64_t AviChunk::size() const {
    return 8 + bodySize() + (pad ? 1 : 0);
}

const AviChunk* AviChunk::find(std::uint32_t nameOrKind) const {
    return findIn(inner, nameOrKind);
}

AviChunk* AviChunk::find(std::uint32_t nameOrKind) {
    return findIn(inner, nameOrKind);
}

const AviChunk* AviFile::find(std::uint32_t nameOrKind) const {
    return lists.empty() ? nullptr : lists.front().find(nameOrKind);
}

bool readAviChunks(ByteSource& source, AviFile& file, QString& problem) {
    return TreeReader(source, file, problem).readLists();
}

bool loadChunk(ByteSource& source, AviChunk& chunk, QString& problem) {
    if (chunk.size() > limits::kHeaderBytes)
        problem = QStringLiteral("more headers than a clip can have");
    else if (!loadContents(source, chunk))
        problem = QStringLiteral("the headers can't be read");
    return problem.isEmpty();
}

AviChunk newChunk(std::uint32_t name, QByteArray content) {
    AviChunk chunk;
    chunk.name = name;
    if (content.size() % 2 == 1)
        chunk.pad = '\0';
    chunk.content = std::move(content);
    return chunk;
}

void writeChunk(const AviChunk& chunk, Copier& to) {
    QByteArray head(chunk.isList() ? 12 : 8, '\0');
    qToBigEndian(chunk.name, head.data());
    qToLittleEndian(static_cast<std::uint32_t>(chunk.bodySize()), head.data() + 4);
    if (chunk.isList())
        qToBigEndian(chunk.kind, head.data() + 8);
    to.add(QByteArrayView(head));
    for (const AviChunk& inner : chunk.inner)
        writeChunk(inner, to);
    to.addContent(chunk.content);
    if (chunk.pad)
        to.add(QByteArrayView(&*chunk.pad, 1));
}

void writeAviChunks(const AviFile& file, Copier& to) {
    for (const AviChunk& list : file.lists)
        writeChunk(list, to);
    to.add(file.rest);
}

} // namespace ql240::containers
