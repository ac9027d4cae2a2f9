// Reading the sensor data of a clip of one gigabyte: time, bytes read from the file and memory, measured in a
// process that has read a short clip before. Prints "figure<TAB>value<TAB>limit" lines.
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>

#include "clips/formats/sensor_file_library.h"
#include "clips/record_reader.h"
#include "support/sensor_clips.h"

namespace {

using namespace ql240;

constexpr std::int64_t kGigabyte = 1 << 30;
constexpr int kSamples = 6000;

// `samples` records each of acceleration and position, a hundred per second.
madeclips::Mp4 motionClip(std::int64_t picture, int samples) {
    madeclips::Track track;
    track.durations = {10};
    track.samplesPerChunk = 100;
    for (int i = 0; i < samples; ++i) {
        track.samples.append(madeclips::motionAcceleration(0, 0, 9.8F) +
                             madeclips::motionFix(3, 37.5, 127.0 + i * 1e-6, 20, 0));
    }
    return madeclips::mp4Around(picture, {track});
}

QString writeClip(const QString& path, const madeclips::Mp4& clip) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write(clip.before);
    file.seek(clip.before.size() + clip.picture);
    file.write(clip.after);
    return path;
}

// A number from one of this process's tables in /proc.
std::int64_t processNumber(const char* table, QByteArrayView name) {
    QFile file(QStringLiteral("/proc/self/%1").arg(QLatin1StringView(table)));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith(name))
            return line.mid(name.size() + 1).replace("kB", "").trimmed().toLongLong();
    }
    return 0;
}

std::int64_t bytesRead() {
    return processNumber("io", "rchar");
}
std::int64_t peakMemory() {
    return processNumber("status", "VmHWM");
}

// Whether the clip had any sensor data.
bool readForDashboard(const char* clip) {
    static SensorFileLibrary library;
    return library.getInformationData(clip) != 0;
}

bool readWhole(const char* clip) {
    static ClipContents contents; // kept, so that its memory counts
    QFile file(QString::fromLocal8Bit(clip));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    contents = readClipContents(file, {});
    return !contents.record.fixes.empty();
}

int measure(const char* title, bool (*read)(const char*), const char* shortClip, const char* clip,
            std::int64_t trackAndIndex) {
    read(shortClip);
    const std::int64_t memory = peakMemory();
    const std::int64_t before = bytesRead();
    QElapsedTimer timer;
    timer.start();
    const bool isRead = read(clip);
    const double elapsedMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    const auto bytes = static_cast<double>(bytesRead() - before - trackAndIndex) / 1024;
    const double kept =
        static_cast<double>(peakMemory() - memory) - static_cast<double>(trackAndIndex) / 1024;
    if (!isRead) {
        std::fprintf(stderr, "the clip was not read\n");
        return 1;
    }
    std::printf("%s of a 1 GB clip, ms\t%.1f\t\n", title, elapsedMs);
    std::printf("%s of a 1 GB clip, KiB read beyond its track and index\t%.1f\t64\n", title, bytes);
    std::printf("%s of a 1 GB clip, KiB of memory beyond its track and index\t%.1f\t64\n", title, kept);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 5) {
        const bool isWhole = QByteArray(argv[4]) == "record";
        return measure(isWhole ? "whole record" : "sensor data", isWhole ? readWhole : readForDashboard,
                       argv[1], argv[2], QByteArray(argv[3]).toLongLong());
    }
    const QTemporaryDir folder;
    const madeclips::Mp4 clip = motionClip(kGigabyte, kSamples);
    const QString shortClip = writeClip(folder.filePath(QStringLiteral("short.mp4")), motionClip(64, 10));
    const QString longClip = writeClip(folder.filePath(QStringLiteral("long.mp4")), clip);
    const QStringList clips{shortClip, longClip, QString::number(clip.after.size())};
    int failed = 0;
    for (const QString& kind : {QStringLiteral("dashboard"), QStringLiteral("record")})
        failed |= QProcess::execute(QString::fromLocal8Bit(argv[0]), clips + QStringList(kind));
    return failed;
}
