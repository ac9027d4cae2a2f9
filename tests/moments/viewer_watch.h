// What must hold of the viewer at every moment, and what must hold once it has been left alone for a while.
// Exceptions that the product makes are named where they are made. Main thread.
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

    // Around one move of the pointer.
    void beforeMove();
    void afterMove(const Hands& hands, QPoint global);

    // Before an action is played. `quietMs`: how long nothing has been done.
    void before(const char* action, bool navigates);
    // That action does, after all.
    void mayChoose() { m_navigated = true; }
    void check(int quietMs);
    // Notes when something that shows has changed by itself; called in every turn of the event loop.
    void observe();
    // A message is about to be shown.
    void warned(const QString& text);

private:
    // What can be seen of the viewer.
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
        bool ticks = false;

        // Whether it shows the same thing, at whatever time of the clip.
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
    void checkStillness(const Sight& now);
    void checkAwake(const Sight& now);
    QString lastPlace() const;
    bool listsClips() const;

    World& m_world;
    const MyListWidget* m_list;
    const WidgetProgressA* m_panel;
    const QTimer* m_ticks;
    Sight m_last;
    Sight m_seen;
    qint64 m_seenMs = 0;    // since when
    bool m_isQuiet = false; // the viewer had been left alone at the last check
    bool m_navigated = false;
    bool m_played = false; // since the last check
    // The product's exceptions: full screen changes nothing of what is shown as playing; a stop leaves strip,
    // speed and map where they were until something plays, steps or seeks. So do the end of the only clip and
    // a pause ahead of a clip's first tick, both at its beginning.
    bool m_wasFullScreen = false;
    bool m_stopped = false;
    QString m_action;
    QRect m_pictureBefore;
    QPoint m_windowBefore;
};

} // namespace ql240::moments
