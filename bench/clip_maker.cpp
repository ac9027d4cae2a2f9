// Makes the clips for clip_program.py: clip_maker FOLDER COUNT. Sparse files of 120 MB with real tables, one
// clip a minute: a fix and ten accelerations a second. With a hundred a second, ExifTool takes an hour for
// the folder.
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTimeZone>

#include "support/sensor_clips.h"

namespace {

using namespace ql240;

constexpr std::int64_t kPicture = 120 * 1000 * 1000;

madeclips::Mp4 minuteFrom(double clock) {
    madeclips::Track track;
    track.durations = {100};
    track.samplesPerChunk = 50;
    for (int i = 0; i < 600; ++i) {
        QByteArray sample = madeclips::motionAcceleration(0, 0.1F, 9.8F);
        if (i % 10 == 0)
            sample += madeclips::motionFix(3, 37.5 + i * 1e-5, 127.0, 0, 12, clock + i / 10.0);
        track.samples.append(sample);
    }
    return madeclips::mp4Around(kPicture, {track});
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3)
        return 2;
    const QDateTime start(QDate(2013, 4, 5), QTime(0, 0), QTimeZone::utc());
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    for (int i = 0; i < QByteArray(argv[2]).toInt(); ++i) {
        const QDateTime begun = start.addSecs(60LL * i);
        const madeclips::Mp4 clip = minuteFrom(static_cast<double>(begun.toSecsSinceEpoch()));
        QFile file(folder.filePath(begun.toString(QStringLiteral("'REC_'yyyy_MM_dd_hh_mm_ss'.mp4'"))));
        if (!file.open(QIODevice::WriteOnly) || file.write(clip.before) < 0 ||
            !file.seek(clip.before.size() + clip.picture) || file.write(clip.after) != clip.after.size())
            return 1;
    }
    return 0;
}
