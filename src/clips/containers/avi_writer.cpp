#include "clips/containers/avi_writer.h"

#include <QtEndian>
#include <algorithm>

namespace ql240::containers {
namespace {

constexpr std::uint32_t kKeyFlag = 0x10;
constexpr std::uint32_t kNotKeyBit = 0x80000000U;
constexpr std::int64_t kIndexHeadBytes = 24;
constexpr std::int64_t kSuperEntryBytes = 16;

template <typename T>
void append(QByteArray& bytes, T value) {
    const T swapped = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char*>(&swapped), sizeof swapped);
}

QByteArray nameBytes(std::uint32_t name) {
    QByteArray bytes(4, '\0');
    qToBigEndian(name, bytes.data());
    return bytes;
}

QByteArray listHead(std::uint32_t name, std::uint32_t kind) {
    return nameBytes(name) + QByteArray(4, '\0') + nameBytes(kind);
}

// Words per entry, types of index and entry, number of entries, stream.
QByteArray indexHead(std::uint16_t words, std::uint8_t type, std::size_t count, std::uint32_t chunkName) {
    QByteArray bytes;
    append(bytes, words);
    append<std::uint8_t>(bytes, 0);
    append(bytes, type);
    append(bytes, static_cast<std::uint32_t>(count));
    return bytes + nameBytes(chunkName);
}

constexpr std::uint32_t withDigits(std::uint32_t chunkName, std::size_t number) {
    const auto digits = static_cast<std::uint32_t>(('0' + number / 10) << 8 | ('0' + number % 10));
    return digits << 16 | (chunkName & 0xFFFF);
}

} // namespace

AviWriter::AviWriter(const AviMovie& pattern, std::int64_t mostBytes, Copier& output, std::int64_t listBytes)
    : m_headers(pattern.headers), m_output(output), m_listBytes(listBytes), m_mostSegments(0) {
    // All lists but the last are more than half full.
    if (mostBytes > listBytes)
        m_mostSegments = static_cast<std::size_t>(mostBytes / (listBytes / 2)) + 1;
    for (const AviStream& format : pattern.streams) {
        Stream stream;
        stream.format = format;
        m_streams.push_back(stream);
    }
}

void AviWriter::leaveOut(std::size_t stream) {
    m_streams[stream].isLeftOut = true;
}

void AviWriter::numberStreams() {
    std::size_t number = 0;
    for (Stream& stream : m_streams) {
        if (!stream.isLeftOut)
            stream.format.chunkName = withDigits(stream.format.chunkName, number++);
    }
}

// Without the omitted streams, with room for the super indexes.
AviChunk AviWriter::preparedHeaders() const {
    AviChunk headers = m_headers;
    std::size_t number = 0;
    std::erase_if(headers.inner, [&](const AviChunk& chunk) {
        return chunk.kind == fourCc("strl") && m_streams[number++].isLeftOut;
    });
    if (m_mostSegments == 0)
        return headers;
    const auto room = kIndexHeadBytes + kSuperEntryBytes * static_cast<std::int64_t>(m_mostSegments);
    for (AviChunk& list : headers.inner) {
        if (list.kind == fourCc("strl"))
            list.inner.push_back(newChunk(fourCc("indx"), QByteArray(room, '\0')));
    }
    if (headers.find(fourCc("odml")) == nullptr) {
        AviChunk extended = newChunk(fourCc("LIST"), {});
        extended.kind = fourCc("odml");
        extended.inner.push_back(newChunk(fourCc("dmlh"), QByteArray(248, '\0')));
        headers.inner.push_back(extended);
    }
    return headers;
}

// Finds the offsets of the fields that are filled in at the end. Other lists may contain chunks of the same
// names.
void AviWriter::locate(const AviChunk& chunk, std::uint32_t parent, std::int64_t start) {
    std::int64_t at = start + (chunk.isList() ? 12 : 8);
    const bool isInHeaders = parent == fourCc("hdrl");
    const bool isInStream = parent == fourCc("strl");
    const auto stream = [this]() -> Stream& { return m_streams[static_cast<std::size_t>(m_located)]; };
    if (isInHeaders && chunk.kind == fourCc("strl")) {
        do
            ++m_located;
        while (stream().isLeftOut);
    }
    if (isInHeaders && chunk.name == fourCc("avih") && m_headerAt == 0)
        m_headerAt = at;
    else if (parent == fourCc("odml") && chunk.name == fourCc("dmlh") && chunk.bodySize() >= 4)
        m_extendedAt = at;
    else if (isInStream && chunk.name == fourCc("strh") && stream().headerAt == 0)
        stream().headerAt = at;
    else if (isInStream && chunk.name == fourCc("indx"))
        stream().indexAt = at;
    for (const AviChunk& inner : chunk.inner) {
        locate(inner, chunk.kind, at);
        at += inner.size();
    }
}

void AviWriter::begin(const std::vector<AviChunk>& others) {
    numberStreams();
    m_output.add(listHead(fourCc("RIFF"), fourCc("AVI ")));
    const AviChunk headers = preparedHeaders();
    locate(headers, 0, m_output.position());
    writeChunk(headers, m_output);
    for (const AviChunk& chunk : others)
        writeChunk(chunk, m_output);
    openList();
}

void AviWriter::openList() {
    if (m_lists > 0) {
        m_listAt = m_output.position();
        m_output.add(listHead(fourCc("RIFF"), fourCc("AVIX")));
    }
    ++m_lists;
    m_mediaAt = m_output.position();
    m_output.add(listHead(fourCc("LIST"), fourCc("movi")));
}

void AviWriter::beginChunk(std::size_t stream, std::int64_t size, bool isKey) {
    const std::int64_t index = 24 * static_cast<std::int64_t>(m_entries.size() + 2);
    if (m_mostSegments > 0 && m_output.position() - m_listAt + size + index > m_listBytes &&
        !m_entries.empty()) {
        closeMedia();
        closeList();
        openList();
    }
    Stream& to = m_streams[stream];
    QByteArray head = nameBytes(to.format.chunkName);
    append(head, static_cast<std::uint32_t>(size));
    m_output.add(QByteArrayView(head));
    m_entries.push_back({stream, m_output.position(), static_cast<std::uint32_t>(size), isKey});
    to.units += to.format.unitsIn(size);
}

void AviWriter::endChunk(std::int64_t size) {
    if (size % 2 == 1)
        m_output.add(QByteArrayView("\0", 1));
}

void AviWriter::add(std::size_t stream, ByteRange body, bool isKey) {
    beginChunk(stream, body.size, isKey);
    m_output.add(body);
    endChunk(body.size);
}

void AviWriter::add(std::size_t stream, QByteArrayView bytes, bool isKey) {
    beginChunk(stream, bytes.size(), isKey);
    m_output.add(bytes);
    endChunk(bytes.size());
}

void AviWriter::writeSegment(std::size_t stream) {
    Stream& to = m_streams[stream];
    const std::uint32_t chunkName = to.format.chunkName;
    QByteArray entries;
    for (const Entry& entry : m_entries) {
        if (entry.stream != stream)
            continue;
        append(entries, static_cast<std::uint32_t>(entry.body - m_mediaAt));
        append(entries, entry.size | (entry.isKey ? 0 : kNotKeyBit));
    }
    QByteArray body = indexHead(2, 1, static_cast<std::size_t>(entries.size()) / 8, chunkName);
    append(body, static_cast<std::uint64_t>(m_mediaAt));
    append<std::uint32_t>(body, 0);
    const AviChunk chunk = newChunk(fourCc("ix\0\0") | chunkName >> 16, body + entries);
    const auto units = static_cast<std::uint32_t>(to.units - to.unitsBefore);
    to.segments.push_back({m_output.position(), static_cast<std::uint32_t>(chunk.size()), units});
    to.unitsBefore = to.units;
    writeChunk(chunk, m_output);
}

void AviWriter::writeOldIndex() {
    AviChunk chunk = newChunk(fourCc("idx1"), {});
    QByteArray body;
    for (const Entry& entry : m_entries) {
        body += nameBytes(m_streams[entry.stream].format.chunkName);
        append(body, entry.isKey ? kKeyFlag : 0U);
        append(body, static_cast<std::uint32_t>(entry.body - 8 - (m_mediaAt + 8)));
        append(body, entry.size);
    }
    chunk.content = std::move(body);
    writeChunk(chunk, m_output);
}

// Closes the list "movi" and writes the index after it.
void AviWriter::closeMedia() {
    for (std::size_t i = 0; i < m_streams.size() && m_mostSegments > 0; ++i) {
        if (!m_streams[i].isLeftOut && m_streams[i].segments.size() < m_mostSegments)
            writeSegment(i);
    }
    patch32(m_mediaAt + 4, m_output.position() - m_mediaAt - 8);
    if (m_lists == 1) {
        writeOldIndex();
        m_firstListPictures = pictures();
    }
    m_entries.clear();
}

void AviWriter::closeList() {
    patch32(m_listAt + 4, m_output.position() - m_listAt - 8);
}

void AviWriter::finish(const std::vector<AviChunk>& others) {
    closeMedia();
    for (const AviChunk& chunk : others)
        writeChunk(chunk, m_output);
    closeList();
    patchHeaders();
}

std::int64_t AviWriter::pictures() const {
    const auto video = std::find_if(m_streams.begin(), m_streams.end(), [](const Stream& stream) {
        return stream.format.isVideo() && !stream.isLeftOut;
    });
    return video != m_streams.end() ? video->units : 0;
}

void AviWriter::patchHeaders() {
    std::int64_t count = 0;
    for (const Stream& stream : m_streams) {
        if (stream.isLeftOut)
            continue;
        ++count;
        patch32(stream.headerAt + 32, stream.units);
        if (stream.indexAt > 0)
            patchSuperIndex(stream);
    }
    patch32(m_headerAt + 16, m_firstListPictures);
    patch32(m_headerAt + 24, count);
    if (m_extendedAt > 0)
        patch32(m_extendedAt, pictures());
}

void AviWriter::patchSuperIndex(const Stream& stream) {
    QByteArray bytes =
        indexHead(4, 0, stream.segments.size(), stream.format.chunkName) + QByteArray(12, '\0');
    for (const Segment& segment : stream.segments) {
        append(bytes, static_cast<std::uint64_t>(segment.offset));
        append(bytes, segment.size);
        append(bytes, segment.units);
    }
    m_output.patch(stream.indexAt, bytes);
}

void AviWriter::patch32(std::int64_t position, std::int64_t value) {
    QByteArray bytes;
    append(bytes, static_cast<std::uint32_t>(value));
    m_output.patch(position, bytes);
}

} // namespace ql240::containers
