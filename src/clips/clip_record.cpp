#include "clips/clip_record.h"

#include <algorithm>
#include <limits>
#include <numbers>

#include "clips/formats/sphere.h"

namespace ql240 {
namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;
constexpr std::int64_t kLongestSilenceUs = 5'000'000;

} // namespace

bool ClipRecord::hasFix() const {
    return std::any_of(fixes.begin(), fixes.end(), [](const RecordedFix& fix) { return fix.isValid(); });
}

std::optional<std::int64_t> cameraOffsetMs(const ClipRecord& record) {
    if (!record.startByName.isValid() || !record.startBySatellitesMs)
        return std::nullopt;
    return record.startByName.toMSecsSinceEpoch() - *record.startBySatellitesMs;
}

std::int64_t timeOrder(std::optional<std::int64_t> utcMs, std::optional<std::int64_t> cameraMs,
                       std::optional<std::int64_t> cameraOffsetMs) {
    if (utcMs)
        return *utcMs;
    return cameraMs ? *cameraMs - cameraOffsetMs.value_or(0) : std::numeric_limits<std::int64_t>::max();
}

double metresBetween(const RecordedFix& a, const RecordedFix& b) {
    return metresOnSphere(a.latitude * kRadiansPerDegree, b.latitude * kRadiansPerDegree,
                          (b.longitude - a.longitude) * kRadiansPerDegree);
}

bool LostFixes::beginsRun(const RecordedFix& fix) {
    if (!fix.isValid()) {
        m_lastUs.reset();
        return false;
    }
    const bool begins = !m_lastUs || fix.timeUs - *m_lastUs > kLongestSilenceUs;
    m_lastUs = fix.timeUs;
    return begins;
}

} // namespace ql240
