// What must hold for the viewer always, and what once it has been left alone for a while. Main thread.
#pragma once

#include <QPoint>
#include <QRect>
#include <QString>

class QTimer;

namespace ql240 {
class MyListWidget;
class WidgetProgressA;
} // namespace ql240

namespace ql240::moments {

class Hands;
class World;

class ViewerWatch {
public:
    explicit ViewerWatch(World& world);

    // Call these around each move of the pointer.
    void beforeMove();
    void afterMove(const Hands& hands, QPoint global);

    // Call before an action is played. `navigates`: it may select another clip.
    void before(const char* action, bool navigates);
    // The current action may select another clip after all.
    void mayChoose() { m_navigated = true; }
    void check(int quietMs);
    // Records when anything visible has changed; called in every iteration of the event loop.
    void observe();
    // Call when a message is about to be shown.
    void warned(const QString& text);

private:
    // The viewer's visible state.
    struct Sight {
        int row = -1;
        int rows = 0;
        const void* clip = nullptr;
        bool playing = false;
        const void* modal = nullptr;
        bool fullScreen = false;
        bool reading = false;
        qint64 positionMs = 0;
        qint64 durationMs = 0;
        int value = 0;
        int maximum = 0;
        int speed = 0;
        QString mapPlace;
        QString mapTrack;
        std::size_t samples = 0;
        bool ticks = false;

        // Whether the same things are visible, at whatever position in the clip.
        bool isLike(const Sight& other) const {
            return row == other.row && rows == other.rows && clip == other.clip && playing == other.playing &&
                   modal == other.modal && fullScreen == other.fullScreen && reading == other.reading;
        }
    };
    Sight look() const;
    void checkButtons(const Sight& now);
    void checkChoice(const Sight& now);
    void checkWaits();
    void checkOneClip(const Sight& now);
    void checkOneTime(const Sight& now);
    void checkTrack(const Sight& now);
    void checkStillness(const Sight& now);
    void checkAwake(const Sight& now);
    QString lastScript(QLatin1StringView call) const;
    bool listsClips() const;

    World& m_world;
    const MyListWidget* m_list;
    const WidgetProgressA* m_panel;
    const QTimer* m_ticks;
    Sight m_last;
    Sight m_seen;
    qint64 m_seenMs = 0;    // when m_seen last changed
    bool m_isQuiet = false; // the viewer had been left alone at the last check
    bool m_navigated = false;
    bool m_played = false; // since the last check
    // Intended exceptions: full screen doesn't update the play state. Strip, speed and map stay unchanged
    // after a stop, the end of a folder's only clip, and a pause before a clip's first tick.
    bool m_wasFullScreen = false;
    bool m_stopped = false;
    QString m_action;
    QRect m_pictureBefore;
    QPoint m_windowBefore;
};

} // namespace ql240::moments
