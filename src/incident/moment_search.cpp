#include "incident/moment_search.h"

#include <QFileInfo>
#include <algorithm>

#include "base/regular_file.h"
#include "clips/clip_name.h"
#include "clips/record_reader.h"

namespace ql240 {
namespace {

constexpr std::int64_t kSameMarkUs = 500'000;
constexpr std::int64_t kUsPerMs = 1000;

} // namespace

MomentSearch::MomentSearch(QObject* parent) : QObject(parent) {}

void MomentSearch::setClips(const QStringList& paths) {
    m_jobs.forget();
    m_paths = paths;
    m_next = 0;
    std::vector<ClipTimeline::Clip> clips;
    for (const QString& path : paths) {
        const QDateTime start = clipStart(QFileInfo(path).fileName());
        clips.push_back({path, start.isValid() ? std::optional(start.toMSecsSinceEpoch()) : std::nullopt, 0});
    }
    m_timeline = ClipTimeline(clips);
    m_offsets = {};
    m_phase = Phase::Idle;
    collect();
    Q_EMIT changed();
}

void MomentSearch::start() {
    if (m_phase == Phase::Searching || m_phase == Phase::Done)
        return;
    enter(Phase::Searching);
    searchNext();
}

void MomentSearch::cancel() {
    if (m_phase != Phase::Searching)
        return;
    m_jobs.forget();
    enter(Phase::Cancelled);
}

void MomentSearch::enter(Phase phase) {
    m_phase = phase;
    Q_EMIT changed();
}

void MomentSearch::searchNext() {
    if (m_next >= m_paths.size()) {
        enter(Phase::Done);
        return;
    }
    const QString path = m_paths[m_next];
    const auto result = std::make_shared<Known>();
    m_jobs.start([path, result, before = m_known.value(path)] { *result = read(path, before); },
                 [this, path, result] { take(path, *result); });
}

// A clip that can't be read has no moments.
MomentSearch::Known MomentSearch::read(const QString& path, const Known& before) {
    QFile file(path);
    QString problem;
    if (!openRegularFile(file, problem))
        return {};
    Known now{file.size(), file.fileTime(QFileDevice::FileModificationTime), {}};
    if (now.size == before.size && now.modified == before.modified)
        return before;
    const ClipContents contents = readClipContents(file, path);
    now.found = momentsOf(contents.record, path, contents.lengthMs);
    return now;
}

void MomentSearch::take(const QString& path, const Known& known) {
    m_known[path] = known;
    ++m_next;
    if (known.found.lengthMs > 0)
        m_timeline.setLength(path, known.found.lengthMs);
    const auto added =
        m_moments.insert(m_moments.end(), known.found.moments.begin(), known.found.moments.end());
    m_offsets.add(known.found);
    if (added != m_moments.end() || known.found.offsetMs)
        m_offsets.sort(m_moments);
    Q_EMIT changed();
    if (m_phase == Phase::Searching)
        searchNext();
}

void MomentSearch::learnLength(const QString& clip, std::int64_t lengthMs) {
    m_timeline.setLength(clip, lengthMs);
    Q_EMIT changed();
}

void MomentSearch::toggleMark(const QString& clip, std::int64_t timeUs,
                              const std::optional<RecordedFix>& place) {
    std::vector<Moment>& marks = m_marks[clip];
    const auto same = std::find_if(marks.begin(), marks.end(), [&](const Moment& mark) {
        return std::abs(mark.timeUs - timeUs) <= kSameMarkUs;
    });
    if (same != marks.end()) {
        marks.erase(same);
    } else {
        Moment mark{Moment::Kind::Mark, clip, timeUs, 0, {}, place, {}, {}};
        if (const QDateTime start = clipStart(QFileInfo(clip).fileName()); start.isValid())
            mark.cameraMs = start.toMSecsSinceEpoch() + timeUs / kUsPerMs;
        marks.push_back(mark);
    }
    collect();
    Q_EMIT changed();
}

// All moments of the clips searched so far, and the marks of all.
void MomentSearch::collect() {
    m_moments.clear();
    for (qsizetype i = 0; i < m_paths.size(); ++i) {
        if (i < m_next) {
            const std::vector<Moment> found = m_known.value(m_paths[i]).found.moments;
            m_moments.insert(m_moments.end(), found.begin(), found.end());
        }
        const auto marks = m_marks.constFind(m_paths[i]);
        if (marks != m_marks.constEnd())
            m_moments.insert(m_moments.end(), marks->begin(), marks->end());
    }
    m_offsets.sort(m_moments);
}

} // namespace ql240
