// Makes clips with sensor data, byte by byte and independently of the readers. For tests and benchmarks.
#pragma once

#include <QByteArray>
#include <QList>

namespace ql240::madeclips {

QByteArray bigEndian(quint64 value, int bytes);
QByteArray littleEndian(quint64 value, int bytes);
QByteArray float32(float value);
QByteArray float64(double value);

QByteArray box(const char* type, const QByteArray& body);
QByteArray riffChunk(const char* name, const QByteArray& body);

// A track of timed samples.
struct Track {
    QByteArray handler = "camm";
    QByteArray format = "camm";
    quint32 timescale = 1000;
    QList<QByteArray> samples;
    QList<quint32> durations; // ticks, one per sample; the last applies to all further ones
    int samplesPerChunk = 1;
    bool wideOffsets = false;
    int sizeBits = 32;      // 8 and 16 use the compact table
    quint32 emptyEdit = 0;  // ms
    qint32 mediaStart = -1; // ticks; negative: no such edit
};

// An MP4 file; its picture data belongs between `before` and `after`.
struct Mp4 {
    QByteArray before;
    qint64 picture;
    QByteArray after;

    QByteArray whole() const { return before + QByteArray(picture, 'p') + after; }
};
Mp4 mp4Around(qint64 picture, const QList<Track>& tracks, const QByteArray& movieExtras = {},
              const QByteArray& fileExtras = {});
QByteArray mp4(const QList<Track>& tracks, const QByteArray& movieExtras = {},
               const QByteArray& fileExtras = {});

// Adds tracks, and blocks of a "gps " index, to a complete file whose index comes last.
QByteArray withSensorData(const QByteArray& clip, const QList<Track>& tracks,
                          const QList<QByteArray>& gpsBlocks = {});

// Camera motion records.
QByteArray motionAcceleration(float x, float y, float z);
QByteArray motionPlace(double latitude, double longitude);
QByteArray motionFix(int fix, double latitude, double longitude, float east, float north,
                     double clock = 1365165000);
QByteArray motionTurn(); // a turning rate, which the viewer doesn't show

// A block of the "gps " index, and a file with such an index. Clock: h, m, s, y, m, d.
QByteArray gpsBlock(const QList<int>& clock, const QByteArray& letters, float latitude, float longitude,
                    float knots, qsizetype before = 40);
QByteArray gpsIndexClip(const QList<QByteArray>& blocks);

// "$" + words + "*" + checksum.
QByteArray sentence(const QByteArray& words);
QByteArray textSample(const QByteArray& text);

QByteArray gps0Record(double latitude, double longitude, int kmh, const QList<int>& clock);

// A few seconds of a drive in each format, with everything that it can store: the fuzzer's corpus.
struct NamedClip {
    QByteArray name;
    QByteArray bytes;
};
QList<NamedClip> clipsOfAllFormats();

} // namespace ql240::madeclips
