// What must hold of the viewer at every moment, and what must hold once it has been left alone for a while.
// Exceptions that the product makes are named where they are made. Main thread.
#pragma once

#include <QPoint>
#include <QRect>
#include <QString>

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
    void check(int quietMs);
    // A message is about to be shown.
    void warned(const QString& text);

private:
    // What can be seen of the viewer.
    struct Sight {
        int row = -1;
        int rows = 0;
        const void* clip = nullptr;
        bool playing = false;
        bool modal = false;
        bool fullScreen = false;
        bool reading = false;
        qint64 positionMs = 0;
        qint64 durationMs = 0;
        int value = 0;
        int maximum = 0;
        int speed = 0;
        QString mapPlace;
        bool ticks = false;
    };
    Sight look() const;
    void checkButtons(const Sight& now);
    void checkChoice(const Sight& now);
    void checkWaits(const Sight& now);
    void checkOneClip(const Sight& now);
    void checkOneTime(const Sight& now);
    void checkStillness(const Sight& now);
    void checkAwake(const Sight& now);
    QString lastPlace() const;

    World& m_world;
    Sight m_last;
    Sight m_quiet; // at the last check of a viewer that had been left alone
    bool m_isQuiet = false;
    bool m_navigated = false;
    bool m_warnedSince = false;
    // The product's exceptions: full screen changes nothing of what is shown as playing; a stop leaves strip,
    // speed and map where they were until something plays, steps or seeks.
    bool m_wasFullScreen = false;
    bool m_stopped = false;
    QString m_action;
    QRect m_pictureBefore;
    QPoint m_windowBefore;
};

} // namespace ql240::moments
