#include "demo_card/sensor_data.h"

#include <QtEndian>
#include <cmath>

#include "platform/sensor_library.h"

namespace ql240::demo {
namespace {

constexpr double kGravity = 9.80665;
constexpr std::int64_t kGpsEpochSeconds = 315964800; // 1980-01-06 in Unix time
constexpr int kLeapSeconds2013 = 16;                 // GPS time is ahead of UTC by this much

class LittleEndian {
public:
    explicit LittleEndian(QByteArray& bytes) : m_bytes(bytes) {}

    template <typename T>
    LittleEndian& operator<<(T value) {
        char raw[sizeof(T)];
        qToLittleEndian(value, raw);
        m_bytes.append(raw, sizeof(T));
        return *this;
    }

private:
    QByteArray& m_bytes;
};

void appendAcceleration(QByteArray& sample, const DriveState& state) {
    LittleEndian(sample) << static_cast<std::uint16_t>(0) << static_cast<std::uint16_t>(3)
                         << static_cast<float>(state.rightAcc) << static_cast<float>(state.forwardAcc)
                         << static_cast<float>(state.upAcc);
}

void appendGps(QByteArray& sample, const DriveState& state, const DrivePlan& plan) {
    const double unixTime = static_cast<double>(plan.start.toMSecsSinceEpoch()) / 1000 + state.time;
    const double gpsTime = unixTime - static_cast<double>(kGpsEpochSeconds) + kLeapSeconds2013;
    const double speed = state.fix ? state.speed : 0;
    const GeoPosition position = state.fix ? state.position : GeoPosition();
    LittleEndian(sample) << static_cast<std::uint16_t>(0) << static_cast<std::uint16_t>(6) << gpsTime
                         << static_cast<std::int32_t>(state.fix ? 3 : 0) << position.latitude
                         << position.longitude << static_cast<float>(state.fix ? plan.altitude : 0.0)
                         << static_cast<float>(state.fix ? 2.5f : 0.0f)
                         << static_cast<float>(state.fix ? 4.0f : 0.0f)
                         << static_cast<float>(speed * std::sin(state.heading))
                         << static_cast<float>(speed * std::cos(state.heading)) << 0.0f << 0.3f;
}

int counts(double acceleration) {
    return static_cast<int>(std::lround(acceleration / kGravity * SensorLibrary::kCountsPerG));
}

QByteArray trailerLine(const DriveState& state, const DrivePlan& plan) {
    const QDateTime clock = plan.start.addMSecs(static_cast<std::int64_t>(state.time * 1000));
    const GeoPosition position = state.fix ? state.position : GeoPosition();
    return clock.toString(QStringLiteral("yyyyMMdd$hhmmss")).toLatin1() + ',' +
           QByteArray::number(position.latitude, 'f', 6) + ',' +
           QByteArray::number(position.longitude, 'f', 6) + ',' +
           QByteArray::number(state.fix ? qRound(state.speed * 3.6) : 0) + ',' +
           QByteArray::number(counts(state.rightAcc)) + ',' + QByteArray::number(counts(state.forwardAcc)) +
           ',' + QByteArray::number(counts(state.upAcc)) + '\n';
}

} // namespace

QList<QByteArray> cammSamples(const Drive& drive, TimeSpan span) {
    QList<QByteArray> samples;
    const int count = static_cast<int>((span.to - span.from) * 1000) / kCammSampleMs;
    for (int i = 0; i < count; ++i) {
        const DriveState state = drive.at(span.from + i * kCammSampleMs / 1000.0);
        QByteArray sample;
        appendAcceleration(sample, state);
        if (i % 2 == 0)
            appendGps(sample, state, drive.plan());
        samples.append(sample);
    }
    return samples;
}

QByteArray sensorTrailer(const Drive& drive, TimeSpan span) {
    QByteArray trailer = "ETKLP1\n";
    // The viewer repeats the first line lines / 3 + 1 times in front.
    const int lines = static_cast<int>((span.to - span.from) * 10) * 3 / 4;
    const int first = lines / 3 + 1;
    for (int i = 0; i < lines; ++i)
        trailer += trailerLine(drive.at(span.from + (first + i) / 10.0), drive.plan());
    return trailer;
}

} // namespace ql240::demo
