#include "demo_card/camm_track.h"

#include <QFile>
#include <QSaveFile>
#include <QtEndian>

namespace ql240::demo {
namespace {

constexpr std::int64_t kMacEpochSeconds = -2082844800; // 1904-01-01 in Unix time
constexpr int kHeader = 8;
constexpr int kMovieHeader = 108; // of version 0, with 32-bit times

struct Box {
    qsizetype offset = 0; // of the header
    qsizetype size = 0;
    bool isValid() const { return size >= kHeader; }
};

QByteArray u16(std::uint16_t value) {
    QByteArray bytes(2, 0);
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray u32(std::uint32_t value) {
    QByteArray bytes(4, 0);
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray box(const char* type, const QByteArray& body) {
    return u32(static_cast<std::uint32_t>(body.size() + kHeader)) + QByteArray(type, 4) + body;
}

QByteArray fullBox(const char* type, std::uint32_t flags, const QByteArray& body) {
    return box(type, u32(flags) + body);
}

std::uint32_t u32At(const QByteArray& bytes, qsizetype offset) {
    return qFromBigEndian<std::uint32_t>(bytes.constData() + offset);
}

// The first box of this type between two offsets.
Box findBox(const QByteArray& bytes, const char* type, qsizetype from, qsizetype to) {
    while (from + kHeader <= to) {
        const Box found{from, static_cast<qsizetype>(u32At(bytes, from))};
        if (!found.isValid() || from + found.size > to)
            return {};
        if (bytes.mid(from + 4, 4) == type)
            return found;
        from += found.size;
    }
    return {};
}

std::uint32_t macTime(const QDateTime& time) {
    return static_cast<std::uint32_t>(time.toSecsSinceEpoch() - kMacEpochSeconds);
}

// In mvhd, tkhd and mdhd, the creation and modification times follow the version and flags.
void setTimes(QByteArray& moov, const QDateTime& created) {
    for (const char* type : {"mvhd", "tkhd", "mdhd"})
        for (auto at = moov.indexOf(type); at >= 0; at = moov.indexOf(type, at + 4)) {
            const bool wide = moov[at + 4] == 1;
            for (int field = 0; field < 2; ++field)
                moov.replace(at + 8 + field * (wide ? 8 : 4) + (wide ? 4 : 0), 4, u32(macTime(created)));
        }
}

QByteArray sampleTable(const QList<QByteArray>& samples, int sampleMs, std::uint32_t offset) {
    const std::uint32_t count = static_cast<std::uint32_t>(samples.size());
    QByteArray sizes = u32(0) + u32(count);
    for (const QByteArray& sample : samples)
        sizes += u32(static_cast<std::uint32_t>(sample.size()));
    const QByteArray entry = box("camm", QByteArray(6, 0) + u16(1));
    return box("stbl",
               fullBox("stsd", 0, u32(1) + entry) +
                   fullBox("stts", 0, u32(1) + u32(count) + u32(static_cast<std::uint32_t>(sampleMs))) +
                   fullBox("stsc", 0, u32(1) + u32(1) + u32(count) + u32(1)) + fullBox("stsz", 0, sizes) +
                   fullBox("stco", 0, u32(1) + u32(offset)));
}

QByteArray media(const QList<QByteArray>& samples, int sampleMs, std::uint32_t offset,
                 const QByteArray& times) {
    constexpr std::uint16_t undefinedLanguage = 0x55c4;
    const std::uint32_t milliseconds = static_cast<std::uint32_t>(samples.size() * sampleMs);
    const QByteArray references = box("dinf", fullBox("dref", 0, u32(1) + fullBox("url ", 1, {})));
    return box(
        "mdia",
        fullBox("mdhd", 0, times + u32(1000) + u32(milliseconds) + u16(undefinedLanguage) + u16(0)) +
            fullBox("hdlr", 0, u32(0) + "camm" + QByteArray(12, 0) + "CameraMetadataMotionHandler" + '\0') +
            box("minf", fullBox("nmhd", 0, {}) + references + sampleTable(samples, sampleMs, offset)));
}

QByteArray track(std::uint32_t id, std::uint32_t duration, const QByteArray& times,
                 const QByteArray& mediaBox) {
    const QByteArray matrix =
        u32(0x10000) + QByteArray(12, 0) + u32(0x10000) + QByteArray(12, 0) + u32(0x40000000);
    return box("trak", fullBox("tkhd", 3,
                               times + u32(id) + u32(0) + u32(duration) + QByteArray(16, 0) + matrix +
                                   QByteArray(8, 0)) +
                           mediaBox);
}

QByteArray withTrack(QByteArray moov, const QList<QByteArray>& samples, int sampleMs, std::uint32_t offset,
                     const QDateTime& created) {
    const Box header = findBox(moov, "mvhd", kHeader, moov.size());
    if (header.size < kMovieHeader || moov[header.offset + kHeader] != 0)
        return {};
    const std::uint32_t timescale = u32At(moov, header.offset + 20);
    const qsizetype nextId = header.offset + header.size - 4;
    const std::uint32_t id = u32At(moov, nextId);
    const std::uint32_t duration = static_cast<std::uint32_t>(
        static_cast<std::uint64_t>(samples.size()) * static_cast<std::uint64_t>(sampleMs) * timescale / 1000);
    const QByteArray times = u32(macTime(created)) + u32(macTime(created));
    moov.replace(nextId, 4, u32(id + 1));
    setTimes(moov, created);
    moov += track(id, duration, times, media(samples, sampleMs, offset, times));
    return moov.replace(0, 4, u32(static_cast<std::uint32_t>(moov.size())));
}

} // namespace

bool addCammTrack(const QString& path, const QList<QByteArray>& samples, int sampleMs,
                  const QDateTime& created) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.readAll();
    const Box moov = findBox(bytes, "moov", 0, bytes.size());
    if (!moov.isValid() || moov.offset + moov.size != bytes.size())
        return false;
    const QByteArray index = withTrack(bytes.mid(moov.offset), samples, sampleMs,
                                       static_cast<std::uint32_t>(moov.offset + kHeader), created);
    if (index.isEmpty())
        return false;
    QSaveFile result(path);
    return result.open(QIODevice::WriteOnly) &&
           result.write(bytes.first(moov.offset) + box("mdat", samples.join()) + index) > 0 &&
           result.commit();
}

} // namespace ql240::demo
