#include "support/sensor_clips.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <cstring>

namespace ql240::madeclips {
namespace {

QByteArray fullBox(const char* type, const QByteArray& body) {
    return box(type, QByteArray(4, '\0') + body);
}

QByteArray table(const char* type, const QList<QByteArray>& entries) {
    return fullBox(type, bigEndian(entries.size(), 4) + entries.join());
}

QByteArray timeTable(const Track& track) {
    QList<QByteArray> entries;
    for (qsizetype i = 0; i < track.samples.size(); ++i) {
        const quint32 ticks =
            track.durations.value(i, track.durations.isEmpty() ? 100 : track.durations.last());
        entries.append(bigEndian(1, 4) + bigEndian(ticks, 4));
    }
    return table("stts", entries);
}

QByteArray sizeTable(const Track& track) {
    QByteArray sizes;
    for (const QByteArray& sample : track.samples)
        sizes += bigEndian(sample.size(), track.sizeBits / 8);
    const QByteArray count = bigEndian(track.samples.size(), 4);
    return track.sizeBits == 32 ? fullBox("stsz", bigEndian(0, 4) + count + sizes)
                                : fullBox("stz2", bigEndian(track.sizeBits, 4) + count + sizes);
}

// The chunks of a track that starts at `offset`, each followed by a padding byte.
struct Chunks {
    QByteArray bytes;
    QByteArray offsets;
    QByteArray runs;
};

Chunks chunksOf(const Track& track, qint64 offset) {
    QList<QByteArray> offsets;
    QList<QByteArray> runs;
    Chunks made;
    for (qsizetype i = 0; i < track.samples.size(); i += track.samplesPerChunk) {
        const QList<QByteArray> samples = track.samples.mid(i, track.samplesPerChunk);
        offsets.append(bigEndian(offset + made.bytes.size(), track.wideOffsets ? 8 : 4));
        if (runs.isEmpty() || samples.size() != track.samplesPerChunk)
            runs.append(bigEndian(offsets.size(), 4) + bigEndian(samples.size(), 4) + bigEndian(1, 4));
        made.bytes += samples.join() + '\x55';
    }
    made.offsets = table(track.wideOffsets ? "co64" : "stco", offsets);
    made.runs = table("stsc", runs);
    return made;
}

QByteArray editBox(const Track& track) {
    QList<QByteArray> edits;
    if (track.emptyEdit > 0)
        edits.append(bigEndian(track.emptyEdit, 4) + bigEndian(0xFFFFFFFF, 4) + bigEndian(0x10000, 4));
    if (track.mediaStart >= 0)
        edits.append(bigEndian(60000, 4) + bigEndian(track.mediaStart, 4) + bigEndian(0x10000, 4));
    return edits.isEmpty() ? QByteArray() : box("edts", table("elst", edits));
}

QByteArray trackBox(const Track& track, const Chunks& chunks) {
    const QByteArray description =
        table("stsd", {box(track.format.constData(), QByteArray(6, '\0') + bigEndian(1, 2))});
    const QByteArray stbl =
        box("stbl", description + timeTable(track) + chunks.runs + sizeTable(track) + chunks.offsets);
    const QByteArray mdhd = fullBox("mdhd", bigEndian(0, 8) + bigEndian(track.timescale, 4) +
                                                bigEndian(60, 4) + bigEndian(0x55C40000, 4));
    const QByteArray hdlr = fullBox("hdlr", bigEndian(0, 4) + track.handler + QByteArray(13, '\0'));
    const QByteArray tkhd = fullBox("tkhd", QByteArray(80, '\0'));
    return box("trak", tkhd + editBox(track) + box("mdia", mdhd + hdlr + box("minf", stbl)));
}

QByteArray movieHeader() {
    return fullBox("mvhd", bigEndian(2082844800ULL + 1365165000ULL, 4) + bigEndian(0, 4) +
                               bigEndian(1000, 4) + bigEndian(60000, 4) + QByteArray(80, '\0'));
}

QByteArray fileStart() {
    return box("ftyp", "mp42" + bigEndian(0, 4) + "isom");
}

QByteArray motionRecord(int type, const QByteArray& fields) {
    return bigEndian(0, 2) + littleEndian(type, 2) + fields;
}

} // namespace

QByteArray bigEndian(quint64 value, int bytes) {
    QByteArray made = littleEndian(value, bytes);
    std::reverse(made.begin(), made.end());
    return made;
}

QByteArray littleEndian(quint64 value, int bytes) {
    QByteArray made;
    for (int i = 0; i < bytes; ++i)
        made += static_cast<char>(value >> (8 * i) & 0xFF);
    return made;
}

QByteArray float32(float value) {
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return littleEndian(bits, 4);
}

QByteArray float64(double value) {
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return littleEndian(bits, 8);
}

QByteArray box(const char* type, const QByteArray& body) {
    return bigEndian(body.size() + 8, 4) + type + body;
}

QByteArray riffChunk(const char* name, const QByteArray& body) {
    return name + littleEndian(body.size(), 4) + body + QByteArray(body.size() % 2, '\0');
}

Mp4 mp4Around(qint64 picture, const QList<Track>& tracks, const QByteArray& movieExtras,
              const QByteArray& fileExtras) {
    const QByteArray start = fileStart();
    const qint64 firstSample = start.size() + 16 + picture;
    QByteArray samples;
    QByteArray movie = movieHeader();
    for (const Track& track : tracks) {
        const Chunks chunks = chunksOf(track, firstSample + samples.size());
        samples += chunks.bytes;
        movie += trackBox(track, chunks);
    }
    const QByteArray data = bigEndian(1, 4) + "mdat" + bigEndian(16 + picture + samples.size(), 8);
    return {start + data, picture, samples + box("moov", movie + movieExtras) + fileExtras};
}

QByteArray mp4(const QList<Track>& tracks, const QByteArray& movieExtras, const QByteArray& fileExtras) {
    return mp4Around(64, tracks, movieExtras, fileExtras).whole();
}

QByteArray withSensorData(const QByteArray& clip, const QList<Track>& tracks,
                          const QList<QByteArray>& gpsBlocks) {
    const qsizetype indexAt = clip.lastIndexOf("moov") - 4;
    QByteArray media;
    QByteArray index = clip.mid(indexAt + 8);
    QByteArray entries;
    for (const QByteArray& block : gpsBlocks) {
        entries += bigEndian(indexAt + 8 + media.size(), 4) + bigEndian(block.size(), 4);
        media += block;
    }
    // First: after boxes that ffmpeg writes, ExifTool doesn't recognize it.
    if (!gpsBlocks.isEmpty())
        index.prepend(box("gps ", bigEndian(0x101, 4) + bigEndian(gpsBlocks.size(), 4) + entries));
    for (const Track& track : tracks) {
        const Chunks chunks = chunksOf(track, indexAt + 8 + media.size());
        media += chunks.bytes;
        index += trackBox(track, chunks);
    }
    return clip.first(indexAt) + box("mdat", media) + box("moov", index);
}

QByteArray motionAcceleration(float x, float y, float z) {
    return motionRecord(3, float32(x) + float32(y) + float32(z));
}

QByteArray motionPlace(double latitude, double longitude) {
    return motionRecord(5, float64(latitude) + float64(longitude) + float64(21.5));
}

QByteArray motionFix(int fix, double latitude, double longitude, float east, float north, double clock) {
    return motionRecord(6, float64(clock) + littleEndian(quint32(fix), 4) + float64(latitude) +
                               float64(longitude) + float32(21.5F) + float32(3) + float32(4) + float32(east) +
                               float32(north) + float32(-0.5F) + float32(0.25F));
}

QByteArray motionTurn() {
    return motionRecord(2, QByteArray(12, '\0'));
}

QByteArray gpsBlock(const QList<int>& clock, const QByteArray& letters, float latitude, float longitude,
                    float knots, qsizetype before) {
    QByteArray body = "GPS " + littleEndian(0x4C, 4) + QByteArray(before - 8, '\0');
    for (const int part : clock)
        body += littleEndian(quint32(part), 4);
    body += letters + QByteArray(4 - letters.size(), '\0') + float32(latitude) + float32(longitude) +
            float32(knots);
    return box("free", body + QByteArray(512 - body.size(), '\0'));
}

QByteArray gpsIndexClip(const QList<QByteArray>& blocks) {
    QByteArray file = fileStart();
    QByteArray entries;
    for (const QByteArray& block : blocks) {
        entries += bigEndian(file.size(), 4) + bigEndian(block.size(), 4);
        file += block;
    }
    const QByteArray index = box("gps ", bigEndian(0x101, 4) + bigEndian(blocks.size(), 4) + entries);
    return file + box("mdat", QByteArray(64, 'p')) + box("moov", movieHeader() + index);
}

QByteArray sentence(const QByteArray& words) {
    char sum = 0;
    for (const char c : words)
        sum = static_cast<char>(sum ^ c);
    return '$' + words + '*' + QByteArray(1, sum).toHex().toUpper() + "\r\n";
}

QByteArray textSample(const QByteArray& text) {
    return bigEndian(text.size(), 2) + text;
}

QByteArray gps0Record(double latitude, double longitude, int kmh, const QList<int>& clock) {
    QByteArray record = float64(latitude) + float64(longitude) + littleEndian(30, 4) + littleEndian(kmh, 2);
    for (const int part : clock)
        record += static_cast<char>(part);
    return record + QByteArray(3, '\x01');
}

QList<NamedClip> clipsOfAllFormats() {
    QList<NamedClip> clips;
    for (const QFileInfo& entry :
         QDir(QStringLiteral(QL240_CLIPS_OF_ALL_FORMATS)).entryInfoList(QDir::Files)) {
        QFile file(entry.filePath());
        if (!file.open(QIODevice::ReadOnly))
            qFatal("cannot read %s", qPrintable(entry.filePath()));
        clips.append({entry.fileName().toLatin1(), file.readAll()});
    }
    return clips;
}

} // namespace ql240::madeclips
