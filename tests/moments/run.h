// One run over fakes: plays actions on the world's windows and checks the invariants between them. Each
// action has its own random numbers, so that leaving some out doesn't change the others. Main thread.
#pragma once

#include <QObject>

#include <memory>
#include <span>
#include <vector>

#include "moments/card_watch.h"
#include "moments/hands.h"
#include "moments/steps.h"
#include "moments/viewer_watch.h"
#include "moments/world.h"

namespace ql240::moments {

class Run;

// A run prefers the actions of one theme.
enum class Theme { Any, Picture, Card, Folder, Transport };
inline constexpr int kThemes = 5;

struct Action {
    const char* name;
    int weight;
    Theme theme;
    void (*perform)(Run&);
    bool navigates = false; // may select another clip
};
std::span<const Action> actions();

class Run : public QObject {
public:
    Run(quint32 seed, std::vector<Step> steps);

    // Plays everything; returns the first fault found, or an empty text.
    QString play();

    // --- For the actions ---
    World& world() { return *m_world; }
    Hands& hands() { return m_hands; }
    CardWatch& cards() { return *m_cards; }
    ViewerWatch& viewer() { return *m_viewer; }
    Luck& luck() { return m_world->luck; }
    // Number of steps begun.
    std::size_t played() const { return m_next; }
    // The active window: the innermost modal window, otherwise the main window.
    QWidget* front() const;

private:
    void next();
    void finish();
    void check(int quietMs);

    std::unique_ptr<World> m_world;
    std::vector<Step> m_steps;
    std::size_t m_next = 0;
    int m_triesToEnd = 0;
    bool m_rested = false;
    Hands m_hands;
    std::unique_ptr<CardWatch> m_cards;
    std::unique_ptr<ViewerWatch> m_viewer;
};

} // namespace ql240::moments
