#include "moments/viewer_watch.h"

#include <QAbstractButton>
#include <QApplication>
#include <QTimer>
#include <utility>

#include "clips/clip.h"
#include "mainwindow/my_list_widget.h"
#include "moments/hands.h"
#include "moments/virtual_time.h"
#include "moments/world.h"
#include "playback/video_view.h"
#include "sensors/widget_progress.h"

namespace ql240::moments {
namespace {

using layout::ButtonId;

// After being left alone for this long, a viewer must be consistent: a few of its ticks of 100 ms.
constexpr int kMomentMs = 400;
// One tick plus the interval of the generated sensor data.
constexpr int kBehindMs = 150;
constexpr int kFirstTickMs = 100 + static_cast<int>(kLongestStandstill.count()) + kBehindMs;
constexpr int kSampleMs = 300 + kBehindMs;

QString pathOf(const void* clip) {
    return clip ? static_cast<const Clip*>(clip)->file().absoluteFilePath() : QString();
}

} // namespace

ViewerWatch::ViewerWatch(World& world)
    : m_world(world),
      m_list(world.window->findChild<MyListWidget*>()),
      m_panel(world.window->findChild<WidgetProgressA*>()),
      m_ticks(world.window->findChild<QTimer*>(QStringLiteral("updateTimer"))),
      m_last(look()) {
    m_world.onWarn = [this](const QString& text) { warned(text); };
}

ViewerWatch::Sight ViewerWatch::look() const {
    const MainWindow* window = m_world.window.get();
    const Player* player = m_world.player();
    const PanelState shown = m_panel->state();
    return {.row = m_list->currentRow(),
            .rows = m_list->count(),
            .clip = player->clip(),
            .playing = window->isPlaying(),
            .modal = QApplication::activeModalWidget(),
            .fullScreen = window->isFullScreen(),
            .reading = window->isReadingFolder(),
            .positionMs = player->positionMs(),
            .durationMs = player->durationMs(),
            .value = shown.progressValue,
            .maximum = shown.progressMaximum,
            .speed = shown.speedKmh,
            .mapPlace = lastScript(QLatin1StringView("go(")),
            .mapTrack = lastScript(QLatin1StringView("setTrack(")),
            .samples = m_panel->sensorTrack().size(),
            .ticks = m_ticks->isActive()};
}

QString ViewerWatch::lastScript(QLatin1StringView call) const {
    for (auto script = m_world.pages.scripts.crbegin(); script != m_world.pages.scripts.crend(); ++script) {
        if (script->startsWith(call))
            return *script;
    }
    return {};
}

void ViewerWatch::beforeMove() {
    m_pictureBefore = m_world.pictureRect();
    m_windowBefore = m_world.window->pos();
}

// A move without a button must move nothing; one with a button may pan the picture by exactly the pointer's
// distance from the press, or drag the window.
void ViewerWatch::afterMove(const Hands& hands, QPoint global) {
    const QRect picture = m_world.pictureRect();
    const bool pans = picture != m_pictureBefore;
    const bool drags = m_world.window->pos() != m_windowBefore;
    if ((pans || drags) && !hands.held())
        m_world.fail(QStringLiteral("a move without a button moved the %1")
                         .arg(pans ? QLatin1String("picture") : QLatin1String("window")));
    if (pans && picture.topLeft() != global - hands.pressedAt())
        m_world.fail(QStringLiteral("a drag by (%1, %2) put the picture at (%3, %4)")
                         .arg(global.x() - hands.pressedAt().x())
                         .arg(global.y() - hands.pressedAt().y())
                         .arg(picture.x())
                         .arg(picture.y()));
}

// Ignores entries that were added by name only.
bool ViewerWatch::listsClips() const {
    for (int row = 0; row < m_list->count(); ++row) {
        if (MyListWidget::clipOf(m_list->item(row)))
            return true;
    }
    return false;
}

void ViewerWatch::warned(const QString& text) {
    const Clip* clip = MyListWidget::clipOf(m_list->currentItem());
    bool expected = true;
    if (text == QLatin1String("Failed to open clip file"))
        // After a folder was read, its first clip is opened without the user's doing.
        expected = m_list->currentItem() && (clip ? m_world.mediaTrouble || !m_world.opens(pathOf(clip))
                                                  : m_navigated || !m_seen.reading);
    else if (text == QLatin1String("Please select proper folder"))
        expected = !listsClips();
    if (!expected)
        m_world.fail(QStringLiteral("“%1” for no reason").arg(text));
    if (m_world.player()->clip() && expected && text.startsWith(QLatin1String("Failed")))
        m_world.fail(QStringLiteral("“%1” while a clip is open").arg(text));
}

void ViewerWatch::before(const char* action, bool navigates) {
    m_action = QLatin1String(action);
    m_navigated |= navigates;
    m_stopped |= m_action == QLatin1String("stop");
}

void ViewerWatch::observe() {
    Sight now = look();
    if (!now.isLike(m_seen))
        m_seenMs = nowMs();
    // A folder that was read under a dialog must not be shown before the dialog closes.
    if (now.modal && now.modal == m_seen.modal && m_seen.reading && now.row != m_seen.row)
        m_world.fail(QStringLiteral("a folder's first clip was opened behind a dialog"));
    m_played |= now.playing || m_world.media.isRunning();
    m_seen = std::move(now);
}

void ViewerWatch::check(int quietMs) {
    observe();
    const Sight now = look();
    checkButtons(now);
    checkChoice(now);
    checkWaits();
    if ((m_world.window->cursor().shape() == Qt::BusyCursor) != now.reading)
        m_world.fail(now.reading ? QStringLiteral("a folder is read, and nothing shows it")
                                 : QStringLiteral("the pointer looks busy for nothing"));
    if (now.clip != m_last.clip || now.row != m_last.row)
        m_wasFullScreen = m_stopped = false;
    m_wasFullScreen |= now.fullScreen || m_last.fullScreen;
    if (now.playing || now.positionMs != 0) // stop returns the clip to its start
        m_stopped = false;
    const bool settled = quietMs >= kMomentMs && nowMs() - m_seenMs >= kMomentMs && !now.modal &&
                         !now.reading && !m_world.mediaTrouble;
    if (settled && !m_wasFullScreen) {
        checkOneClip(now);
        checkOneTime(now);
        checkTrack(now);
        checkAwake(now);
    }
    if (settled && m_isQuiet && !now.playing)
        checkStillness(now);
    m_isQuiet = settled && !m_wasFullScreen;
    m_last = now;
    m_navigated = false;
}

void ViewerWatch::checkButtons(const Sight& now) {
    const bool play = m_world.window->button(ButtonId::Play)->isVisibleTo(m_world.window.get());
    const bool pause = m_world.window->button(ButtonId::Pause)->isVisibleTo(m_world.window.get());
    if (play && pause)
        m_world.fail(QStringLiteral("play and pause are both there"));
    // A minimised window is laid out when it is shown again.
    if (!play && !pause && !now.fullScreen && !m_last.fullScreen && !m_world.window->isMinimized())
        m_world.fail(QStringLiteral("neither play nor pause is there"));
}

// Only the user, the end of a clip and a newly read folder may change the current clip.
void ViewerWatch::checkChoice(const Sight& now) {
    const bool chosen = now.row != m_last.row || (now.clip && m_last.clip && now.clip != m_last.clip);
    const bool ended = std::exchange(m_played, false) || m_last.playing || m_last.ticks;
    if (chosen && !m_navigated && !ended && !m_last.reading)
        m_world.fail(
            QStringLiteral("row %1 became %2 after “%3”").arg(m_last.row).arg(now.row).arg(m_action));
}

void ViewerWatch::checkWaits() {
    const qint64 waited = m_world.longestWaitMs();
    if (waited > kLongestStandstill.count())
        m_world.fail(QStringLiteral("the window stood still for %1 ms").arg(waited));
}

void ViewerWatch::checkOneClip(const Sight& now) {
    const Clip* chosen = MyListWidget::clipOf(m_list->currentItem());
    if (now.clip && now.clip != chosen)
        m_world.fail(QStringLiteral("%1 is open, not what the list marks").arg(pathOf(now.clip)));
    if (!now.clip && chosen && m_world.opens(pathOf(chosen)))
        m_world.fail(QStringLiteral("%1 is marked, and nothing is open").arg(pathOf(chosen)));
    if (now.clip && !m_world.media.windows[0].visible && !m_world.window->isMinimized())
        m_world.fail(QStringLiteral("the picture is hidden"));
    if (now.clip && m_world.media.path() != pathOf(now.clip))
        m_world.fail(QStringLiteral("the picture is of %1").arg(m_world.media.path()));
    if (now.clip && now.playing != m_world.media.isRunning())
        m_world.fail(QStringLiteral("shown as %1, and it isn't").arg(now.playing ? "playing" : "paused"));
}

void ViewerWatch::checkOneTime(const Sight& now) {
    if (!now.clip || m_stopped)
        return;
    if (now.maximum != now.durationMs)
        m_world.fail(QStringLiteral("the strip ends at %1 of %2").arg(now.maximum).arg(now.durationMs));
    const qint64 behind = std::abs(now.positionMs - now.value);
    if (behind > (now.playing ? kBehindMs : 0))
        m_world.fail(QStringLiteral("the strip is at %1, the clip at %2").arg(now.value).arg(now.positionMs));
    const bool neverTicked = !now.playing && now.positionMs < kFirstTickMs;
    if (neverTicked)
        return;
    // The speed must be that of a time shortly before, and from this clip's data.
    const QString path = pathOf(now.clip);
    if (now.samples == 0) {
        if (now.speed != 0)
            m_world.fail(QStringLiteral("a speed of %1 without a track").arg(now.speed));
        return;
    }
    bool fits = false;
    for (qint64 ms = now.positionMs; !fits && ms >= now.positionMs - kSampleMs; ms -= 50)
        fits = now.speed == m_world.speedAt(path, std::max<qint64>(0, ms));
    if (!fits)
        m_world.fail(QStringLiteral("a speed of %1 at %2 of clip %3")
                         .arg(now.speed)
                         .arg(now.positionMs)
                         .arg(m_world.indexOfClip(path)));
    const QString latitude = QStringLiteral("go(%1.").arg(10 + m_world.indexOfClip(path));
    if (!now.mapPlace.isEmpty() && m_world.mapIsLoaded() && !now.mapPlace.startsWith(latitude))
        m_world.fail(
            QStringLiteral("the map is at %1 in clip %2").arg(now.mapPlace).arg(m_world.indexOfClip(path)));
}

// Panel and map have the open clip's track as soon as it has been read, and no other's before.
void ViewerWatch::checkTrack(const Sight& now) {
    if (!now.clip)
        return;
    const std::optional<qint64> due = m_world.trackDueMs();
    if (due && std::abs(nowMs() - *due) < kMomentMs)
        return;
    if ((now.samples != 0) != (due && *due < nowMs()))
        m_world.fail(now.samples != 0 ? QStringLiteral("a track that hasn't been read")
                                      : QStringLiteral("a track was read and isn't shown"));
    const int degrees = 10 + m_world.indexOfClip(pathOf(now.clip));
    if (now.samples != 0 && static_cast<int>(m_panel->sensorTrack().front().latitude) != degrees)
        m_world.fail(QStringLiteral("another clip's track in the panel"));
    const QString onMap = now.samples == 0 ? QStringLiteral("setTrack([])") : QStringLiteral("setTrack([[");
    if (m_world.mapIsLoaded() && !now.mapTrack.startsWith(onMap))
        m_world.fail(QStringLiteral("the map shows %1").arg(now.mapTrack.left(40)));
}

// Paused, and the last step changed nothing in the viewer.
void ViewerWatch::checkStillness(const Sight& now) {
    const bool alone = m_action == QLatin1String("wait") || m_action == QLatin1String("card in or out");
    const bool trackCame = m_last.samples != now.samples;
    if (!alone || m_last.playing || m_last.clip != now.clip || trackCame)
        return;
    if (now.positionMs != m_last.positionMs || now.value != m_last.value || now.speed != m_last.speed)
        m_world.fail(
            QStringLiteral("paused, it went on from %1 to %2").arg(m_last.positionMs).arg(now.positionMs));
}

void ViewerWatch::checkAwake(const Sight& now) {
    const bool held = *m_world.inhibitor.holds > 0;
    if (held != (now.playing && now.clip))
        m_world.fail(held ? QStringLiteral("the screen is kept awake for nothing")
                          : QStringLiteral("the screen saver may come while a clip plays"));
}

} // namespace ql240::moments
