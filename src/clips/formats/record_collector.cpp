#include "clips/formats/record_collector.h"

#include <QLocale>
#include <algorithm>
#include <array>

namespace ql240::sensorfiles {
namespace {

constexpr std::int64_t kUsPerMs = 1000;
constexpr double kMostG = 1e6;
constexpr double kMostKmh = 1e5;
constexpr double kMostM = 1e6;
// The two sentences of one fix may have different times.
constexpr std::int64_t kSameFixUs = 500'000;

template <typename Records>
void sortByTime(Records& records) {
    const auto earlier = [](const auto& a, const auto& b) { return a.timeUs < b.timeUs; };
    if (!std::is_sorted(records.begin(), records.end(), earlier))
        std::stable_sort(records.begin(), records.end(), earlier);
}

// The median over the fixes, because the clock may be corrected during the clip. Dates before 2000 or after
// 2200 are discarded.
std::optional<std::int64_t> startOf(const std::deque<RecordedFix>& fixes) {
    constexpr std::ptrdiff_t kSampled = 1000; // evenly spaced fixes
    const auto hasStart = [](const RecordedFix& fix) { return fix.isValid() && fix.hasClock(); };
    const auto step = std::count_if(fixes.begin(), fixes.end(), hasStart) / kSampled + 1;
    std::vector<std::int64_t> starts;
    starts.reserve(kSampled);
    std::ptrdiff_t number = 0;
    for (const RecordedFix& fix : fixes) {
        if (hasStart(fix) && number++ % step == 0)
            starts.push_back(fix.clockMs - fix.timeUs / kUsPerMs);
    }
    if (starts.empty())
        return std::nullopt;
    const auto middle = starts.begin() + static_cast<std::ptrdiff_t>(starts.size() / 2);
    std::nth_element(starts.begin(), middle, starts.end());
    constexpr std::int64_t kYear2000Ms = 946'684'800'000;
    constexpr std::int64_t kYear2200Ms = 7'258'118'400'000;
    return *middle > kYear2000Ms && *middle < kYear2200Ms ? std::optional(*middle) : std::nullopt;
}

bool isSamePlace(const RecordedFix& a, const RecordedFix& b) {
    return a.isValid() ? a.latitude == b.latitude && a.longitude == b.longitude : !b.isValid();
}

// Adds the fields that only `from` has; false, with nothing changed, if both have the same field or `from`
// has none.
bool complete(RecordedFix& fix, const RecordedFix& from) {
    constexpr std::array kFields{&RecordedFix::speedKmh, &RecordedFix::headingDeg, &RecordedFix::altitudeM};
    const auto isGiven = [](double value) { return !std::isnan(value); };
    bool adds = from.hasClock();
    bool clashes = fix.hasClock() && from.hasClock();
    for (const auto field : kFields) {
        adds = adds || isGiven(from.*field);
        clashes = clashes || (isGiven(fix.*field) && isGiven(from.*field));
    }
    if (!adds || clashes)
        return false;
    for (const auto field : kFields)
        fix.*field = isGiven(from.*field) ? from.*field : fix.*field;
    fix.clockMs = std::max(fix.clockMs, from.clockMs);
    return true;
}

// Outside the limits it is no measurement.
double within(double value, double least, double most) {
    return value >= least && value <= most ? value : RecordedFix::kNothing;
}

} // namespace

// RMC and GGA each have one part of a fix; of a lost one, the second may have nothing.
bool RecordCollector::completesLast(const RecordedFix& fix) {
    if (m_record.fixes.empty())
        return false;
    RecordedFix& last = m_record.fixes.back();
    if (!last.isValid() && !fix.isValid() && !fix.hasClock() && fix.timeUs == last.timeUs)
        return true;
    return std::abs(fix.timeUs - last.timeUs) <= kSameFixUs && isSamePlace(last, fix) && complete(last, fix);
}

void RecordCollector::count(std::int64_t timeUs) {
    addOther(timeUs);
    ++m_count;
    if (isFull()) {
        m_record.stops << QStringLiteral("after %1 records: nothing behind them is read")
                              .arg(QLocale(QLocale::English).toString(static_cast<qlonglong>(m_count)));
    }
}

void RecordCollector::addFix(const RecordedFix& fix) {
    if (isFull())
        return;
    count(fix.timeUs);
    RecordedFix kept;
    kept.timeUs = fix.timeUs;
    kept.clockMs = fix.clockMs;
    if (fix.isValid()) {
        kept.latitude = fix.latitude;
        kept.longitude = fix.longitude;
        kept.speedKmh = within(fix.speedKmh, 0, kMostKmh);
        kept.headingDeg = within(fix.headingDeg, 0, 360);
        kept.altitudeM = within(fix.altitudeM, -kMostM, kMostM);
    }
    if (!completesLast(kept))
        m_record.fixes.push_back(kept);
}

void RecordCollector::addAcceleration(std::int64_t timeUs, double x, double y, double z) {
    const auto isSensible = [](double g) { return std::abs(g) < kMostG; };
    if (isFull() || !isSensible(x) || !isSensible(y) || !isSensible(z))
        return;
    count(timeUs);
    if (m_keepsAccelerations) {
        m_record.accelerations.push_back(
            {timeUs, static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)});
    }
}

void RecordCollector::addOther(std::int64_t timeUs) {
    m_record.lengthUs = std::max(m_record.lengthUs, timeUs);
}

void RecordCollector::addStop(const ReaderStop& stop) {
    if (m_record.stops.size() >= limits::kReportedStops - 1) {
        ++m_record.furtherStops;
        return;
    }
    const QLocale english(QLocale::English);
    m_record.stops << QStringLiteral("%1 %2 at byte %3: %4")
                          .arg(QLatin1StringView(stop.unit), english.toString(stop.number),
                               english.toString(stop.offset), QLatin1StringView(stop.reason));
}

ClipRecord RecordCollector::take(ClipRecord::Clock clock) {
    sortByTime(m_record.fixes);
    sortByTime(m_record.accelerations);
    const bool hasClock = std::any_of(m_record.fixes.begin(), m_record.fixes.end(),
                                      [](const RecordedFix& fix) { return fix.hasClock(); });
    m_record.clock = hasClock ? clock : ClipRecord::Clock::None;
    if (m_record.clock == ClipRecord::Clock::Utc)
        m_record.startBySatellitesMs = startOf(m_record.fixes);
    return std::move(m_record);
}

} // namespace ql240::sensorfiles
