#include "support/test_clips.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <algorithm>

#include "support/frame_code.h"

namespace ql240 {
namespace {

using namespace std::chrono_literals;

constexpr int kProcessTimeoutMs = 60000;
constexpr char kPatternVersion[] = "1"; // increase when the painted pattern changes

// The variable rate's cycle; testClipFrameTimes() has the same.
constexpr char kVariableTimes[] =
    "settb=1/90000,setpts=(floor(N/3)*150+if(eq(mod(N\\,3)\\,1)\\,20\\,if(eq(mod(N\\,3)\\,2)\\,60\\,0)))/"
    "1000/TB,";

bool isFullRange(const TestClipSpec& spec) {
    return spec.fullRange || spec.codec == TestClipSpec::Codec::MotionJpeg;
}

// Both streams come stacked in one raw picture, the first on top.
QSize canvasSize(const TestClipSpec& spec) {
    if (spec.videoStreams < 2)
        return spec.size;
    return {std::max(spec.size.width(), spec.secondSize.width()),
            spec.size.height() + spec.secondSize.height()};
}

QString streamFilter(const TestClipSpec& spec, QSize size, int top) {
    const QString filter = QStringLiteral("crop=%1:%2:0:%3,%4scale=in_range=%5:out_range=%5");
    return filter.arg(size.width())
        .arg(size.height())
        .arg(top)
        .arg(QLatin1String(spec.variableRate ? kVariableTimes : ""),
             QLatin1String(isFullRange(spec) ? "pc" : "tv"));
}

QString filterGraph(const TestClipSpec& spec) {
    const QString first = streamFilter(spec, spec.size, 0);
    const QString second = streamFilter(spec, spec.secondSize, spec.size.height());
    if (spec.videoStreams < 2)
        return QStringLiteral("[0:v]%1[v0]").arg(first);
    return QStringLiteral("[0:v]split[a][b];[a]%1[v0];[b]%2[v1]").arg(first, second);
}

QStringList words(const QString& text) {
    return text.split(QLatin1Char(' '));
}

// A key frame every 30 frames.
QStringList codecArguments(const TestClipSpec& spec) {
    const QString range = QStringLiteral("-color_range %1 ").arg(isFullRange(spec) ? "pc" : "tv");
    const QString h264 = QStringLiteral(
        "-c:v libx264 -preset veryfast -crf 26 -g 30 -bf %1 "
        "-x264-params threads=1:scenecut=0:b-adapt=0:keyint_min=30");
    const QString h265 = QStringLiteral(
        "-c:v libx265 -preset ultrafast -crf 28 -tag:v hvc1 -x265-params log-level=error:pools=1:"
        "frame-threads=1:scenecut=0:b-adapt=0:keyint=30:min-keyint=30:bframes=%1");
    if (spec.codec == TestClipSpec::Codec::MotionJpeg)
        return words(range + QStringLiteral("-c:v mjpeg -q:v 5 -huffman default"));
    const QString& encoder = spec.codec == TestClipSpec::Codec::H264 ? h264 : h265;
    return words(range + encoder.arg(spec.bFrames));
}

double lengthSeconds(const TestClipSpec& spec) {
    const auto times = testClipFrameTimes(spec);
    return std::chrono::duration<double>(times.last() - times.first()).count() + 1.0 / spec.rate;
}

QStringList inputArguments(const TestClipSpec& spec) {
    const QSize canvas = canvasSize(spec);
    QStringList arguments = words(QStringLiteral("-loglevel error -y -fflags +bitexact -filter_threads 1 "
                                                 "-f rawvideo -pix_fmt %1 -s %2x%3 -r %4 -i pipe:0")
                                      .arg(isFullRange(spec) ? "yuvj420p" : "yuv420p")
                                      .arg(canvas.width())
                                      .arg(canvas.height())
                                      .arg(spec.rate));
    if (spec.sound)
        arguments += words(QStringLiteral("-f lavfi -i sine=frequency=440:sample_rate=32000:duration=%1")
                               .arg(lengthSeconds(spec)));
    return arguments;
}

QString containerArguments(const TestClipSpec& spec) {
    if (spec.container == TestClipSpec::Container::Avi)
        return QStringLiteral("-f avi");
    QString arguments = QStringLiteral("-f mp4 -video_track_timescale 90000");
    if (spec.faststart)
        arguments += QLatin1String(" -movflags +faststart");
    if (!spec.editLists)
        arguments += QLatin1String(" -use_editlist 0");
    if (spec.firstTimeMs)
        arguments += QStringLiteral(" -output_ts_offset %1").arg(spec.firstTimeMs / 1000.0);
    return arguments;
}

QString soundArguments(const TestClipSpec& spec) {
    if (!spec.sound)
        return QStringLiteral("-an");
    const bool avi = spec.container == TestClipSpec::Container::Avi;
    const char* const usual = avi ? "pcm_s16le" : "aac -b:a 64k";
    return QLatin1String("-map 1:a -ac 1 -c:a ") +
           (spec.soundCodec.isEmpty() ? QLatin1String(usual) : spec.soundCodec);
}

QStringList ffmpegArguments(const TestClipSpec& spec) {
    QStringList arguments = inputArguments(spec) + QStringList{"-filter_complex", filterGraph(spec)};
    for (int stream = 0; stream < spec.videoStreams; ++stream)
        arguments += {"-map", QStringLiteral("[v%1]").arg(stream)};
    // Newer ffmpeg versions give the last frame no duration, so that it would never be shown.
    if (spec.variableRate)
        arguments +=
            words(QStringLiteral("-fps_mode passthrough -enc_time_base 1:90000 -bsf:v setts=duration=3000"));
    arguments += codecArguments(spec) + words(soundArguments(spec));
    arguments +=
        words(QStringLiteral("-map_metadata -1 -fflags +bitexact -flags:v +bitexact -flags:a +bitexact"));
    return arguments + words(QStringLiteral("-threads 1 ") + containerArguments(spec));
}

QByteArray rawFrame(const TestClipSpec& spec, int number) {
    const QSize canvas = canvasSize(spec);
    const qsizetype area = qsizetype(canvas.width()) * canvas.height();
    QByteArray raw(area * 3 / 2, char(128));
    auto* row = reinterpret_cast<uchar*>(raw.data());
    for (int stream = 0; stream < spec.videoStreams; ++stream) {
        const QSize size = stream == 0 ? spec.size : spec.secondSize;
        std::vector<uchar> luma(size_t(size.width()) * size_t(size.height()));
        paintFrameLuma(luma, size.width(), size.height(), {number, stream}, isFullRange(spec));
        for (auto line = luma.begin(); line != luma.end(); line += size.width(), row += canvas.width())
            std::copy_n(line, size.width(), row);
    }
    return raw;
}

bool feedFrames(QProcess& ffmpeg, const TestClipSpec& spec) {
    for (int number = 0; number < spec.frames; ++number) {
        ffmpeg.write(rawFrame(spec, number));
        while (ffmpeg.bytesToWrite() > 0)
            if (!ffmpeg.waitForBytesWritten(kProcessTimeoutMs))
                return false;
    }
    ffmpeg.closeWriteChannel();
    return ffmpeg.waitForFinished(kProcessTimeoutMs) && ffmpeg.exitStatus() == QProcess::NormalExit &&
           ffmpeg.exitCode() == 0;
}

bool makeClipFile(const TestClipSpec& spec, const QString& path) {
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"), ffmpegArguments(spec) + QStringList{path});
    if (ffmpeg.waitForStarted(kProcessTimeoutMs) && feedFrames(ffmpeg, spec))
        return true;
    qWarning("ffmpeg: %s %s", qPrintable(ffmpeg.errorString()), ffmpeg.readAllStandardError().constData());
    return false;
}

QString clipFolder() {
    const QString folder = qEnvironmentVariable("QL240_TEST_CLIPS", QStringLiteral(QL240_TEST_CLIPS_FOLDER));
    return QDir().mkpath(folder) ? folder : QString();
}

QString clipName(const TestClipSpec& spec) {
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData(kPatternVersion);
    hash.addData(QByteArray::number(spec.frames));
    hash.addData(ffmpegArguments(spec).join(QLatin1Char('\n')).toUtf8());
    const bool avi = spec.container == TestClipSpec::Container::Avi;
    return QString::fromLatin1(hash.result().toHex().first(16)) + QLatin1String(avi ? ".avi" : ".mp4");
}

} // namespace

TestClipSpec aviTestClip() {
    TestClipSpec spec;
    spec.container = TestClipSpec::Container::Avi;
    spec.codec = TestClipSpec::Codec::MotionJpeg;
    spec.rate = 15;
    return spec;
}

QString makeTestClip(const TestClipSpec& spec) {
    const QDir folder(clipFolder());
    const QString path = folder.absoluteFilePath(clipName(spec));
    if (QFile::exists(path))
        return path;
    QTemporaryDir workshop(folder.absoluteFilePath(QStringLiteral("making-XXXXXX")));
    const QString made = workshop.filePath(clipName(spec));
    if (!workshop.isValid() || !makeClipFile(spec, made))
        return {};
    // Another test program may have been faster.
    return QFile::rename(made, path) || QFile::exists(path) ? path : QString();
}

QList<std::chrono::nanoseconds> testClipFrameTimes(const TestClipSpec& spec) {
    constexpr std::array<std::chrono::nanoseconds, 3> variable{0ms, 20ms, 60ms};
    QList<std::chrono::nanoseconds> times;
    for (int n = 0; n < spec.frames; ++n) {
        std::chrono::nanoseconds time = std::chrono::nanoseconds(1s) * n / spec.rate;
        if (spec.variableRate)
            time = 150ms * (n / 3) + variable[size_t(n % 3)];
        if (!spec.editLists)
            time += std::chrono::nanoseconds(1s) * spec.bFrames / spec.rate;
        times.append(time + std::chrono::milliseconds(spec.firstTimeMs));
    }
    return times;
}

} // namespace ql240
