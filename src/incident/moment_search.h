// Searches the clips of the open folder for moments, one clip after the other on background threads, and
// keeps what it has found for the run of the program: a clip that hasn't changed is read once. Interface
// thread only.
#pragma once

#include <QDateTime>
#include <QHash>
#include <QObject>
#include <QStringList>

#include "base/background_jobs.h"
#include "clips/clip_moments.h"
#include "clips/clip_timeline.h"

namespace ql240 {

class MomentSearch : public QObject {
    Q_OBJECT
public:
    enum class Phase { Idle, Searching, Cancelled, Done };

    explicit MomentSearch(QObject* parent = nullptr);

    // The folder's clips, by their paths in the folder's order. Ends the search of the folder before.
    void setClips(const QStringList& paths);
    // Starts the search, or goes on with one that was cancelled.
    void start();
    void cancel();
    // Call when a clip is opened: it may not have been searched yet.
    void learnLength(const QString& clip, std::int64_t lengthMs);
    // Adds a mark. One that is close to an older mark of the same clip removes that instead.
    void toggleMark(const QString& clip, std::int64_t timeUs, const std::optional<RecordedFix>& place);

    Phase phase() const { return m_phase; }
    qsizetype searched() const { return m_next; }
    qsizetype total() const { return m_paths.size(); }
    // Of the clips searched so far, sorted by time.
    const std::vector<Moment>& moments() const { return m_moments; }
    // Of all clips; the lengths are those known so far.
    const ClipTimeline& timeline() const { return m_timeline; }

Q_SIGNALS:
    // The phase, the progress or the moments have changed.
    void changed();

private:
    struct Known {
        qint64 size = -1;
        QDateTime modified;
        ClipMoments found;
    };

    static Known read(const QString& path, const Known& before);
    void searchNext();
    void take(const QString& path, const Known& known);
    void enter(Phase phase);
    void collect();

    BackgroundJobs m_jobs;
    Phase m_phase = Phase::Idle;
    QStringList m_paths;
    qsizetype m_next = 0;
    QHash<QString, Known> m_known;               // also of other folders
    QHash<QString, std::vector<Moment>> m_marks; // also of other folders
    std::vector<Moment> m_moments;
    ClipTimeline m_timeline;
    CameraOffsets m_offsets; // of the clips searched so far
};

} // namespace ql240
