#include "incident/incident.h"

#include <QFileInfo>
#include <algorithm>

#include "clips/clip_name.h"

namespace ql240 {
namespace {

constexpr std::int64_t kUsPerMs = 1000;
constexpr std::int64_t kLeadMs = 2000;     // shown before a moment
constexpr std::int64_t kAroundMs = 15'000; // kept before and after a moment

} // namespace

Incident::Incident(QObject* parent) : QObject(parent) {}

void Incident::setClips(const QStringList& paths) {
    m_choice.reset();
    clearRange();
    m_search.setClips(paths);
}

int Incident::chosenRow() const {
    const auto& moments = m_search.moments();
    const auto row = std::find_if(moments.begin(), moments.end(), [this](const Moment& moment) {
        return m_choice && moment.clip == m_choice->clip && moment.timeUs == m_choice->timeUs &&
               moment.kind == m_choice->kind;
    });
    return row == moments.end() ? -1 : static_cast<int>(row - moments.begin());
}

void Incident::choose(int row) {
    const auto& moments = m_search.moments();
    if (row < 0 || row >= static_cast<int>(moments.size()))
        return;
    const Moment moment = moments[static_cast<std::size_t>(row)];
    m_choice = {moment.clip, moment.timeUs, moment.kind};
    rangeAroundChoice();
    Q_EMIT chosen(moment.clip, std::max<std::int64_t>(0, moment.timeUs / kUsPerMs - kLeadMs));
}

void Incident::rangeAroundChoice() {
    if (const auto time = m_search.timeline().timeOf(m_choice->clip, m_choice->timeUs / kUsPerMs))
        setRange({*time - kAroundMs, *time + kAroundMs}, {}, {});
}

void Incident::chooseNext(int step, const QString& clip, std::int64_t ms) {
    const auto count = static_cast<int>(m_search.moments().size());
    const int row = chosenRow();
    if (row >= 0 && m_choice->clip == clip) {
        choose(row + step);
        return;
    }
    const int next = firstAfter(clip, ms);
    choose(step > 0 ? next : std::min(next, count) - 1);
}

// The row of the first moment that is later than the picture; the number of moments if there is none.
int Incident::firstAfter(const QString& clip, std::int64_t ms) const {
    const auto& moments = m_search.moments();
    const QDateTime start = clipStart(QFileInfo(clip).fileName());
    const auto isLater = [&](const Moment& moment) {
        if (moment.clip == clip)
            return moment.timeUs / kUsPerMs > ms;
        return moment.cameraMs && start.isValid() && *moment.cameraMs > start.toMSecsSinceEpoch() + ms;
    };
    return static_cast<int>(std::find_if(moments.begin(), moments.end(), isLater) - moments.begin());
}

void Incident::setEnd(End end, const QString& clip, std::int64_t ms, const QImage& picture) {
    const auto time = m_search.timeline().timeOf(clip, ms);
    if (!time)
        return;
    const bool isFrom = end == End::From;
    TimeRange range = m_range;
    (isFrom ? range.fromMs : range.toMs) = *time;
    QImage other = this->picture(isFrom ? End::To : End::From);
    if (range.isEmpty()) {
        range = isFrom ? TimeRange{*time, *time + kAroundMs} : TimeRange{*time - kAroundMs, *time};
        other = {};
    }
    setRange(range, isFrom ? picture : other, isFrom ? other : picture);
}

// The range ends behind its last picture.
std::optional<std::pair<QString, std::int64_t>> Incident::placeOf(End end) const {
    const std::vector<ClipTimeline::Part> parts = m_search.timeline().partsOf(m_range);
    if (parts.empty())
        return std::nullopt;
    if (end == End::From)
        return std::pair(parts.front().clip, parts.front().range.fromMs);
    const auto endOf = [this](const ClipTimeline::Part& part) {
        return m_search.timeline().timeOf(part.clip, part.range.toMs).value_or(0);
    };
    const auto last = std::max_element(parts.begin(), parts.end(),
                                       [&](const auto& a, const auto& b) { return endOf(a) < endOf(b); });
    return std::pair(last->clip, last->range.toMs - 1);
}

void Incident::setPicture(End end, const QImage& picture) {
    m_pictures[static_cast<std::size_t>(end)] = picture;
    Q_EMIT rangeChanged();
}

void Incident::clearRange() {
    setRange({}, {}, {});
}

void Incident::setRange(TimeRange range, const QImage& from, const QImage& to) {
    m_range = range;
    m_pictures = {from, to};
    Q_EMIT rangeChanged();
}

} // namespace ql240
