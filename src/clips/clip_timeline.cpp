#include "clips/clip_timeline.h"

#include <algorithm>

namespace ql240 {
namespace {

// Clips without a time stamp begin before every date that a name can hold, a year apart.
constexpr std::int64_t kUnnamedMs = INT64_C(-100'000'000'000'000);
constexpr std::int64_t kApartMs = INT64_C(366) * 24 * 3600 * 1000;

} // namespace

ClipTimeline::ClipTimeline(const std::vector<Clip>& clips) {
    std::int64_t unnamed = kUnnamedMs;
    for (const Clip& clip : clips) {
        m_spans.push_back({clip.path, clip.startMs.value_or(unnamed), 0});
        if (!clip.startMs)
            unnamed -= kApartMs;
    }
    std::stable_sort(m_spans.begin(), m_spans.end(),
                     [](const Span& a, const Span& b) { return a.beginMs < b.beginMs; });
    for (std::size_t i = 0; i < m_spans.size(); ++i)
        m_index[m_spans[i].clip] = i;
    for (const Clip& clip : clips)
        setLength(clip.path, clip.lengthMs);
}

void ClipTimeline::setLength(const QString& clip, std::int64_t lengthMs) {
    if (const auto at = m_index.constFind(clip); at != m_index.constEnd())
        m_spans[*at].lengthMs = std::clamp<std::int64_t>(lengthMs, 0, kApartMs / 2);
}

std::optional<std::int64_t> ClipTimeline::timeOf(const QString& clip, std::int64_t ms) const {
    const auto at = m_index.constFind(clip);
    return at == m_index.constEnd() ? std::nullopt : std::optional(m_spans[*at].beginMs + ms);
}

std::vector<ClipTimeline::Part> ClipTimeline::partsOf(TimeRange range) const {
    std::vector<Part> parts;
    for (const Span& span : m_spans) {
        const TimeRange own{std::max<std::int64_t>(0, range.fromMs - span.beginMs),
                            std::min(span.lengthMs, range.toMs - span.beginMs)};
        if (!own.isEmpty())
            parts.push_back({span.clip, own});
    }
    return parts;
}

TimeRange ClipTimeline::clamped(TimeRange range) const {
    const std::vector<Part> parts = partsOf(range);
    if (parts.empty())
        return {};
    TimeRange covered{range.toMs, range.fromMs};
    for (const Part& part : parts) {
        const std::int64_t begin = timeOf(part.clip, 0).value_or(0);
        covered.fromMs = std::min(covered.fromMs, begin + part.range.fromMs);
        covered.toMs = std::max(covered.toMs, begin + part.range.toMs);
    }
    return covered;
}

} // namespace ql240
