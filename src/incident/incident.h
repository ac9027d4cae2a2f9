// What the Incident window shows and changes: the moments of the open folder, the chosen one, and the range
// to keep. Knows the open clip by its path. Interface thread only.
#pragma once

#include <QImage>

#include "incident/moment_search.h"

namespace ql240 {

class Incident : public QObject {
    Q_OBJECT
public:
    enum class End { From, To };

    explicit Incident(QObject* parent = nullptr);

    MomentSearch& search() { return m_search; }
    const MomentSearch& search() const { return m_search; }

    // A change of the folder drops the range and the choice.
    void setClips(const QStringList& paths);

    // The row of the chosen moment in the search's list, or -1.
    int chosenRow() const;
    // Chooses a moment, and the range around it; emits chosen().
    void choose(int row);
    // The next moment (+1) or the one before (-1), seen from the chosen one, or from the picture shown if
    // that is elsewhere.
    void chooseNext(int step, const QString& clip, std::int64_t ms);

    // On the time axis of the search; empty when there is none.
    TimeRange range() const { return m_range; }
    // Sets one end to a picture of a clip. The other end follows if it would lie on the wrong side.
    void setEnd(End end, const QString& clip, std::int64_t ms, const QImage& picture);
    void clearRange();
    // Null until it is set, by setEnd() or setPicture().
    const QImage& picture(End end) const { return m_pictures[static_cast<std::size_t>(end)]; }
    // The clip and the time in it, in ms, of an end's picture; nothing without a range.
    std::optional<std::pair<QString, std::int64_t>> placeOf(End end) const;
    void setPicture(End end, const QImage& picture);

Q_SIGNALS:
    // The clip is to be shown at this time, paused.
    void chosen(const QString& clip, std::int64_t ms);
    void rangeChanged();

private:
    struct Choice {
        QString clip;
        std::int64_t timeUs = 0;
        Moment::Kind kind = Moment::Kind::Shock;
    };

    void rangeAroundChoice();
    int firstAfter(const QString& clip, std::int64_t ms) const;
    void setRange(TimeRange range, const QImage& from, const QImage& to);

    MomentSearch m_search;
    std::optional<Choice> m_choice;
    TimeRange m_range;
    std::array<QImage, 2> m_pictures;
};

} // namespace ql240
