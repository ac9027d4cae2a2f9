#include "demo_card/clip_maker.h"

#include <QFile>
#include <memory>
#include <vector>

#include "demo_card/camm_track.h"
#include "demo_card/caption.h"
#include "demo_card/scene/scene.h"
#include "demo_card/sensor_data.h"

namespace ql240::demo {
namespace {

QString encodeClip(const ClipPlan& plan, const Drive& drive, const QString& path, Progress& progress) {
    ClipEncoder encoder(path, plan.format);
    if (plan.format.soundRate > 0)
        encoder.addSound(driveSound(drive, plan.span, plan.format.soundRate, plan.indicator));
    std::vector<std::unique_ptr<Scene>> scenes;
    for (const ClipFormat::Video& video : plan.format.videos)
        scenes.push_back(std::make_unique<Scene>(drive, plan.world, video.size, !scenes.empty()));
    for (int frame = 0; frame < plan.frames(); ++frame) {
        if (progress.cancelled)
            return QStringLiteral("interrupted");
        for (std::size_t video = 0; video < scenes.size(); ++video) {
            const double time = plan.span.from + static_cast<double>(frame) / plan.format.frameRate;
            QImage& picture = scenes[video]->paint(time);
            burnCaption(picture, drive.plan(), drive.at(time),
                        video == 0 ? QStringLiteral("FRONT") : QStringLiteral("REAR"), frame);
            if (!encoder.addFrame(static_cast<int>(video), picture))
                return encoder.errorText();
        }
        ++progress.framesDone;
    }
    return encoder.finish() ? QString() : encoder.errorText();
}

bool addSensorData(const ClipPlan& plan, const Drive& drive, const QString& path) {
    if (plan.format.container == ClipFormat::Container::Mp4)
        return addCammTrack(path, cammSamples(drive, plan.span), kCammSampleMs, plan.start());
    QFile file(path);
    const QByteArray trailer = sensorTrailer(drive, plan.span);
    return file.open(QIODevice::Append) && file.write(trailer) == trailer.size();
}

} // namespace

QString makeClip(const ClipPlan& plan, const QString& path, Progress& progress) {
    const Drive drive(plan.drive);
    const QString problem = encodeClip(plan, drive, path, progress);
    if (!problem.isEmpty())
        return problem;
    return addSensorData(plan, drive, path) ? QString()
                                            : QStringLiteral("the sensor data could not be added");
}

} // namespace ql240::demo
