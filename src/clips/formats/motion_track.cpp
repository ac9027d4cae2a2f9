// Camera motion metadata, as published with the Street View camera formats: each record is a reserved u16,
// its type as a u16, then its fields, little-endian.
#include <QtEndian>
#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <numbers>

#include "clips/formats/leap_seconds.h"
#include "clips/formats/sensor_formats.h"
#include "clips/formats/track_samples.h"

namespace ql240::sensorfiles {
namespace {

constexpr double kStandardGravity = 9.80665; // m/s²
constexpr double kKmhPerMetreAS = 3.6;

// Record sizes by type, header included: angle axis, exposure, gyroscope, acceleration, camera position,
// minimal GPS, full GPS, magnetic field.
constexpr std::array<std::size_t, 8> kRecordSizes{16, 12, 16, 16, 16, 28, 60, 16};
enum RecordType { kAcceleration = 3, kPlace = 5, kFix = 6 };

template <typename T>
T field(std::span<const char> record, std::size_t offset) {
    return qFromLittleEndian<T>(record.data() + offset);
}

// The field is GPS time in seconds since 1980, but some recorders write UTC since 1970: the clip's creation
// date distinguishes them.
std::int64_t clockMsOf(double seconds, std::optional<std::int64_t> createdAt) {
    constexpr double kFiveYearsS = 5 * 365 * 86400.0;
    constexpr double kLastS = 1e11;
    if (!(seconds > 0 && seconds < kLastS))
        return RecordedFix::kNoClock;
    const std::int64_t ms = std::llround(seconds * 1000);
    const bool isUtc = createdAt && std::abs(static_cast<double>(*createdAt) - seconds) < kFiveYearsS;
    return isUtc ? ms : utcFromGpsMs(ms);
}

RecordedFix readPlace(std::int64_t timeUs, std::span<const char> record) {
    RecordedFix fix;
    fix.timeUs = timeUs;
    fix.latitude = field<double>(record, 4);
    fix.longitude = field<double>(record, 12);
    fix.altitudeM = field<double>(record, 20);
    return fix;
}

// Of a full GPS record.
bool hasFix(std::span<const char> record) {
    return field<std::int32_t>(record, 12) != 0;
}

RecordedFix readFix(std::int64_t timeUs, std::span<const char> record,
                    std::optional<std::int64_t> createdAt) {
    RecordedFix fix;
    fix.timeUs = timeUs;
    fix.clockMs = clockMsOf(field<double>(record, 4), createdAt);
    if (!hasFix(record))
        return fix;
    fix.latitude = field<double>(record, 16);
    fix.longitude = field<double>(record, 24);
    fix.altitudeM = field<float>(record, 32);
    const double east = field<float>(record, 44);
    const double north = field<float>(record, 48);
    fix.speedKmh = std::hypot(east, north) * kKmhPerMetreAS;
    if (fix.speedKmh > 0) { // no heading while stationary
        const double degrees = std::atan2(east, north) * 180 / std::numbers::pi;
        fix.headingDeg = degrees < 0 ? degrees + 360 : degrees;
    }
    return fix;
}

void addAccelerationRecord(std::int64_t timeUs, std::span<const char> record, RecordSink& sink) {
    const auto g = [&](std::size_t offset) {
        return static_cast<double>(field<float>(record, offset)) / kStandardGravity;
    };
    sink.addAcceleration(timeUs, g(4), g(8), g(12));
}

void addFixRecord(const TrackSample& sample, const RecordedFix& fix, bool hasPlace, RecordSink& sink) {
    sink.addFix(fix);
    if (hasPlace && !fix.isValid())
        sink.addStop({"motion sample", sample.number, sample.offset, "no valid position"});
}

// Small integers, such as quiet sound, are tiny as floating-point numbers; no sensor measures that finely.
bool areBelow(std::initializer_list<double> values, double most) {
    constexpr double kLeast = 1e-30;
    return std::all_of(values.begin(), values.end(), [most](double value) {
        return value == 0 || (std::abs(value) >= kLeast && std::abs(value) <= most);
    });
}

} // namespace

std::size_t motionRecordSize(std::size_t type) {
    return type < kRecordSizes.size() ? kRecordSizes[type] : 0;
}

bool isPlausibleMotionRecord(std::span<const char> record) {
    constexpr double kMost = 1e6; // for angles, rates, accelerations, magnetic fields
    constexpr double kHighestM = 1e6;
    // Allocated, but never written.
    if (std::all_of(record.begin(), record.end(), [](char byte) { return byte == 0; }))
        return false;
    const std::size_t type = field<std::uint16_t>(record, 2);
    const bool isFix = type == kFix;
    if (isFix || type == kPlace) {
        const std::size_t at = isFix ? 16 : 4;
        const double height =
            isFix ? static_cast<double>(field<float>(record, 32)) : field<double>(record, 20);
        return areBelow({field<double>(record, at)}, 90) && areBelow({field<double>(record, at + 8)}, 180) &&
               areBelow({height}, kHighestM);
    }
    return record.size() != 16 ||
           areBelow({field<float>(record, 4), field<float>(record, 8), field<float>(record, 12)}, kMost);
}

void readMotionSample(const TrackSample& sample, RecordSink& sink, std::optional<std::int64_t> createdAt) {
    std::span<const char> bytes = sample.bytes;
    while (bytes.size() >= 4) {
        const std::size_t type = field<std::uint16_t>(bytes, 2);
        if (type >= kRecordSizes.size() || bytes.size() < kRecordSizes[type]) {
            sink.addStop({"motion sample", sample.number, sample.offset,
                          type >= kRecordSizes.size() ? "unknown type of record" : "record cut short"});
            return;
        }
        const std::span<const char> record = bytes.first(kRecordSizes[type]);
        bytes = bytes.subspan(record.size());
        if (type == kAcceleration)
            addAccelerationRecord(sample.timeUs, record, sink);
        else if (type == kPlace)
            addFixRecord(sample, readPlace(sample.timeUs, record), true, sink);
        else if (type == kFix)
            addFixRecord(sample, readFix(sample.timeUs, record, createdAt), hasFix(record), sink);
        else
            sink.addOther(sample.timeUs);
    }
}

void readMotionTrack(ByteSource& source, const ClipLayout& clip, RecordSink& sink) {
    for (const TrackLayout& track : clip.tracks) {
        const bool handled = track.handler == fourCc("meta") || track.handler == fourCc("camm");
        if (handled && track.format == fourCc("camm")) {
            forEachSample(source, track, clip.timescale, sink,
                          [&](const TrackSample& sample) { readMotionSample(sample, sink, clip.createdAt); });
        }
    }
}

} // namespace ql240::sensorfiles
