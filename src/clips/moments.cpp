#include "clips/moments.h"

#include <algorithm>
#include <array>
#include <utility>

namespace ql240 {
namespace {

using Vector = std::array<double, 3>;

// A pothole's jolt lasts at most 20 ms and stays below 1.75 g at the car's body.
constexpr std::int64_t kLongestJoltUs = 20'000;
constexpr double kStrongestJoltG = 1.75;
// Samples farther apart than this can't distinguish a jolt from an impact.
constexpr std::int64_t kLongestStepUs = 45'000;
// The width of an impact's peak at half its height; braking lasts longer.
constexpr std::int64_t kLongestImpactUs = 500'000;
constexpr std::size_t kMaxImpactSamples = 1000; // in case the file's times don't advance
// Above the noise of a road, as a fraction of the threshold.
constexpr double kFloor = 0.42;
constexpr std::int64_t kFixHoldsUs = 2'000'000;

template <typename T>
T medianOf(std::vector<T>& values) {
    if (values.empty())
        return {};
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// The samples minus their medians, computed on demand because a clip may have millions.
class Deviations {
public:
    explicit Deviations(const std::deque<RecordedAcceleration>& samples) : m_samples(samples) {
        constexpr std::array kAxes{&RecordedAcceleration::x, &RecordedAcceleration::y,
                                   &RecordedAcceleration::z};
        std::vector<float> values(samples.size());
        for (std::size_t axis = 0; axis < kAxes.size(); ++axis) {
            std::transform(samples.begin(), samples.end(), values.begin(),
                           [&](const RecordedAcceleration& sample) { return sample.*kAxes[axis]; });
            m_median[axis] = medianOf(values);
        }
    }

    std::size_t count() const { return m_samples.size(); }
    std::int64_t timeUs(std::size_t i) const { return m_samples[i].timeUs; }
    Vector at(std::size_t i) const {
        const RecordedAcceleration& sample = m_samples[i];
        return {sample.x - m_median[0], sample.y - m_median[1], sample.z - m_median[2]};
    }
    double sizeAt(std::size_t i) const {
        const Vector g = at(i);
        return std::hypot(g[0], g[1], g[2]);
    }

private:
    const std::deque<RecordedAcceleration>& m_samples;
    Vector m_median{};
};

std::size_t strongestAxis(const Vector& g) {
    const auto weaker = [](double a, double b) { return std::abs(a) < std::abs(b); };
    return static_cast<std::size_t>(std::max_element(g.begin(), g.end(), weaker) - g.begin());
}

// The time that the deviation stays at or above `level` around the peak, from the first such sample to the
// last. Stops measuring once it is too long for an impact.
std::int64_t spanUs(const Deviations& all, std::size_t peak, std::size_t axis, double level) {
    const double sign = all.at(peak)[axis] < 0 ? -1 : 1;
    const auto isAbove = [&](std::size_t i) { return all.at(i)[axis] * sign >= level; };
    std::size_t first = peak;
    std::size_t last = peak;
    const auto isLong = [&] {
        return last - first > kMaxImpactSamples || all.timeUs(last) - all.timeUs(first) > kLongestImpactUs;
    };
    while (first > 0 && isAbove(first - 1) && !isLong())
        --first;
    while (last + 1 < all.count() && isAbove(last + 1) && !isLong())
        ++last;
    return isLong() ? kLongestImpactUs + 1 : all.timeUs(last) - all.timeUs(first);
}

bool isImpact(const Deviations& all, std::size_t peak, std::int64_t stepUs, double thresholdG) {
    const Vector g = all.at(peak);
    const std::size_t axis = strongestAxis(g);
    const double size = std::abs(g[axis]);
    if (spanUs(all, peak, axis, size / 2) > kLongestImpactUs)
        return false;
    const bool mayBeJolt = stepUs <= kLongestStepUs && size < kStrongestJoltG;
    return !mayBeJolt || spanUs(all, peak, axis, kFloor * thresholdG) > kLongestJoltUs;
}

// The median interval between two samples.
std::int64_t usualStepUs(const Deviations& all) {
    std::vector<std::int64_t> steps;
    for (std::size_t i = 1; i < all.count(); ++i)
        steps.push_back(all.timeUs(i) - all.timeUs(i - 1));
    return medianOf(steps);
}

void add(std::vector<Shock>& shocks, const Shock& shock, std::int64_t mergedUs) {
    if (shocks.empty() || shock.timeUs - shocks.back().timeUs > mergedUs)
        shocks.push_back(shock);
    else if (shock.sizeG > shocks.back().sizeG)
        shocks.back() = shock;
}

} // namespace

std::vector<Shock> findShocks(const std::deque<RecordedAcceleration>& accelerations,
                              const ShockOptions& options) {
    const Deviations all(accelerations);
    const std::int64_t stepUs = usualStepUs(all);
    std::vector<Shock> shocks;
    double before = 0;
    double size = all.count() > 0 ? all.sizeAt(0) : 0;
    for (std::size_t i = 0; i < all.count(); ++i) {
        const double after = i + 1 < all.count() ? all.sizeAt(i + 1) : 0;
        const bool isPeak = size >= before && size > after;
        if (size >= options.thresholdG && isPeak && isImpact(all, i, stepUs, options.thresholdG)) {
            const auto axis = static_cast<Shock::Axis>(strongestAxis(all.at(i)));
            add(shocks, {all.timeUs(i), size, axis}, options.mergedUs);
        }
        before = std::exchange(size, after);
    }
    return shocks;
}

CameraDecision cameraDecision(const QString& fileName) {
    const auto begins = [&](const char* prefix) {
        return fileName.startsWith(QLatin1String(prefix), Qt::CaseInsensitive);
    };
    if (begins("EVS_") || begins("EVT_"))
        return CameraDecision::Event;
    return begins("MOT_") ? CameraDecision::Motion : CameraDecision::None;
}

const RecordedFix* fixAt(const ClipRecord& record, std::int64_t timeUs) {
    const auto after =
        std::upper_bound(record.fixes.begin(), record.fixes.end(), timeUs,
                         [](std::int64_t time, const RecordedFix& fix) { return time < fix.timeUs; });
    if (after == record.fixes.begin())
        return nullptr;
    const RecordedFix& fix = *std::prev(after);
    return fix.isValid() && timeUs - fix.timeUs <= kFixHoldsUs ? &fix : nullptr;
}

} // namespace ql240
