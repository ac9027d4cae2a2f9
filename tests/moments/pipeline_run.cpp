#include <algorithm>

#include "mainwindow/viewer.h"
#include "moments/hands.h"
#include "moments/steps.h"
#include "support/frame_code.h"

namespace ql240::moments {
namespace {

using layout::ButtonId;

constexpr int kClipMs = 6000;
// How long a paused picture may take, even on a busy machine; less than the pipeline's timeout for a seek.
constexpr int kMomentMs = 2500;

std::vector<TestClipSpec> clipKinds() {
    TestClipSpec plain = Viewer::shortClip(kClipMs * 30 / 1000);
    TestClipSpec two = plain;
    two.videoStreams = 2;
    two.secondSize = QSize(160, 90);
    TestClipSpec reordered = plain;
    reordered.bFrames = 2;
    TestClipSpec avi = aviTestClip();
    avi.size = plain.size;
    avi.frames = kClipMs * avi.rate / 1000;
    return {plain, avi, two, reordered};
}

class PipelineRun {
public:
    explicit PipelineRun(quint32 seed);

    QString play(const std::vector<Step>& steps);

    void press(ButtonId id) { hands.click(window(), window()->button(id)->geometry().center()); }
    void key(int key, int repeats = 0) { hands.type(window(), key, {}, repeats); }
    void hold(int key, int presses);
    void seekTo(int ms);
    // Blocks the interface thread while the pipeline goes on.
    void beBusy(int ms) { QThread::msleep(static_cast<unsigned long>(ms)); }
    void choose(int row) { viewer.list()->setCurrentRow(row); }
    int clips() const { return static_cast<int>(m_kinds.size()); }

    Luck luck;
    Hands hands;

private:
    MainWindow* window() const { return viewer.window.get(); }
    int shownFrame() const;
    bool showsPosition() const;
    void check(bool navigated);
    void checkPaused();
    void checkPlaying();
    void fail(const QString& what);
    const TestClipSpec& kind() const {
        return m_kinds[static_cast<std::size_t>(viewer.list()->currentRow())];
    }

    Viewer viewer;
    std::vector<TestClipSpec> m_kinds;
    QString m_failure;
    const char* m_action = "start";
    bool m_wasPlaying = true; // since the last seek or step
    int m_row = 0;
    qint64 m_positionMs = 0;
    std::optional<int> m_soughtMs; // by the current step
    QElapsedTimer m_since;
};

enum class Effect { Plays, Moves, Navigates }; // at most the play state, the frame, or the clip changes

struct PipelineAction {
    const char* name;
    int weight;
    Effect effect;
    void (*perform)(PipelineRun&);
};

void seekThereAndBack(PipelineRun& run) {
    run.seekTo(kClipMs - run.luck.below(60));
    run.seekTo(run.luck.below(kClipMs / 2));
    run.beBusy(run.luck.below(300));
}

void zoomInAndFit(PipelineRun& run) {
    run.key(Qt::Key_Plus);
    run.key(Qt::Key_0);
}

using enum Effect;
using R = PipelineRun;
constexpr PipelineAction kActions[] = {
    {"play or pause", 20, Plays, [](R& run) { run.key(Qt::Key_Space); }},
    {"pause", 10, Plays, [](R& run) { run.press(ButtonId::Pause); }},
    {"stop", 4, Moves, [](R& run) { run.press(ButtonId::Stop); }},
    {"step", 10, Moves, [](R& run) { run.key(run.luck.chance(50) ? Qt::Key_Left : Qt::Key_Right); }},
    {"hold right", 8, Moves, [](R& run) { run.key(Qt::Key_Right, run.luck.below(70)); }},
    {"hold right long", 3, Moves, [](R& run) { run.hold(Qt::Key_Right, 40 + run.luck.below(30)); }},
    {"hold left", 5, Moves, [](R& run) { run.key(Qt::Key_Left, run.luck.below(30)); }},
    {"seek", 14, Moves, [](R& run) { run.seekTo(run.luck.below(kClipMs)); }},
    {"seek to the end", 6, Moves, [](R& run) { run.seekTo(kClipMs - run.luck.below(200)); }},
    {"seek there and back", 6, Moves, seekThereAndBack},
    {"zoom in and fit", 2, Plays, zoomInAndFit},
    {"next", 3, Navigates, [](R& run) { run.key(Qt::Key_PageDown); }},
    {"previous", 2, Navigates, [](R& run) { run.key(Qt::Key_PageUp); }},
    {"choose", 3, Navigates, [](R& run) { run.choose(run.luck.below(run.clips())); }},
    {"sound", 2, Plays, [](R& run) { run.key(Qt::Key_M); }},
    {"wait", 8, Plays, [](R&) {}},
};

PipelineRun::PipelineRun(quint32 seed) : m_kinds(clipKinds()) {
    luck.reseed(seed);
    std::shuffle(m_kinds.begin(), m_kinds.end(), std::mt19937(seed));
    for (std::size_t i = 0; i < m_kinds.size(); ++i) {
        const char* suffix = m_kinds[i].container == TestClipSpec::Container::Avi ? "avi" : "mp4";
        viewer.addClip(QStringLiteral("drive/REC_2013_04_05_12_0%1_00.%2").arg(i).arg(QLatin1String(suffix)),
                       m_kinds[i]);
    }
    viewer.show();
    viewer.openFolder(viewer.path(QStringLiteral("drive")));
    m_since.start();
}

void PipelineRun::fail(const QString& what) {
    if (m_failure.isEmpty())
        m_failure = QStringLiteral("%1, after \"%2\"").arg(what, QLatin1String(m_action));
}

// Like keyboard auto-repeat: pictures arrive in between.
void PipelineRun::hold(int key, int presses) {
    constexpr int kRepeatMs = 25;
    for (; presses > 0; --presses) {
        hands.type(window(), key);
        QTest::qWait(kRepeatMs);
    }
}

void PipelineRun::seekTo(int ms) {
    m_soughtMs = ms;
    hands.click(window(), Viewer::onStrip(ms, kClipMs));
}

// Number of the frame on the screen; -1 if none.
int PipelineRun::shownFrame() const {
    VideoView* view = viewer.mainView();
    return readFrameNumber(view->grab(fittedRect(view->size(), viewer.player()->videoSize(0))).toImage());
}

// After a seek or a step, exactly that frame. After a pause, a slow machine may have dropped frames or show
// the next one already. A position is cut to milliseconds and so may be just before its frame.
bool PipelineRun::showsPosition() const {
    constexpr int kLeftOut = 5;
    const auto times = testClipFrameTimes(kind());
    const auto frameAt = [&](qint64 ms) {
        const auto after = std::upper_bound(times.begin(), times.end(), std::chrono::milliseconds(ms));
        return std::max(0, static_cast<int>(after - times.begin()) - 1);
    };
    const int shown = shownFrame();
    const qint64 ms = viewer.player()->positionMs();
    if (m_wasPlaying)
        return shown >= frameAt(ms) - kLeftOut && shown <= frameAt(ms) + 1;
    return shown == frameAt(ms) || shown == frameAt(ms + 1);
}

void PipelineRun::checkPaused() {
    const bool ended = viewer.player()->positionMs() >= viewer.player()->durationMs();
    if (!ended && !QTest::qWaitFor([this] { return showsPosition(); }, kMomentMs))
        return fail(QStringLiteral("paused at %1 of clip %2, frame %3 is shown")
                        .arg(viewer.player()->positionMs())
                        .arg(viewer.list()->currentRow())
                        .arg(shownFrame()));
    const qint64 before = viewer.player()->positionMs();
    QTest::qWait(30);
    // The clip may have ended just before the pause; then the next one follows.
    const qint64 end = viewer.player()->durationMs();
    const qint64 now = viewer.player()->positionMs();
    if (now != before && now != end && before != end)
        fail(QStringLiteral("paused at %1, it went on").arg(before));
}

// The position advances, or the clip has ended and another one plays.
void PipelineRun::checkPlaying() {
    const auto* clip = viewer.player()->clip();
    const qint64 before = viewer.player()->positionMs();
    const auto goesOn = [&] {
        return viewer.player()->clip() != clip || viewer.player()->positionMs() != before;
    };
    if (!QTest::qWaitFor(goesOn, kMomentMs))
        fail(QStringLiteral("playing, it stands at %1 of clip %2")
                 .arg(before)
                 .arg(viewer.list()->currentRow()));
}

void PipelineRun::check(bool navigated) {
    const int row = viewer.list()->currentRow();
    // The clip may have ended if it was close enough to its end.
    const qint64 reached = m_positionMs + m_since.elapsed() + 100;
    if (row != m_row && !navigated && reached < kClipMs)
        fail(QStringLiteral("clip %1 was left at %2 by itself").arg(m_row).arg(m_positionMs));
    m_wasPlaying |= window()->isPlaying() || row != m_row; // a clip that is opened plays
    if (window()->isPlaying())
        checkPlaying();
    else
        checkPaused();
    m_row = viewer.list()->currentRow();
    m_positionMs = viewer.player()->positionMs();
    m_since.start();
}

QString PipelineRun::play(const std::vector<Step>& steps) {
    bool navigated = true;
    for (const Step& step : steps) {
        check(navigated);
        if (!m_failure.isEmpty())
            return m_failure;
        const PipelineAction& action = kActions[step.action];
        m_action = action.name;
        luck.reseed(step.luck);
        m_soughtMs.reset();
        m_since.start();
        action.perform(*this);
        navigated = action.effect == Navigates;
        if (action.effect == Moves && !window()->isPlaying())
            m_wasPlaying = false;
        // The clip may end soon after a seek.
        m_positionMs = m_soughtMs
                           ? *m_soughtMs
                           : std::max<qint64>(viewer.player()->positionMs(), navigated ? 0 : m_positionMs);
        QTest::qWait(step.delayMs);
    }
    check(navigated);
    return m_failure;
}

std::vector<Step> stepsOf(quint32 seed, int count) {
    constexpr int kDelays[] = {0, 0, 5, 30, 100, 250};
    Luck luck;
    luck.reseed(seed ^ 0xC11B);
    std::vector<Step> steps;
    for (int i = 0; i < count; ++i) {
        const int action = luck.pick(kActions, [](const PipelineAction& each) { return each.weight; });
        const int delay = luck.oneOf(kDelays);
        steps.push_back({action, delay, static_cast<quint32>(luck.below(1 << 30))});
    }
    return steps;
}

const char* nameOf(const Step& step) {
    return kActions[step.action].name;
}

QString play(quint32 seed, const std::vector<Step>& steps) {
    return PipelineRun(seed).play(steps);
}

} // namespace

Plan pipelinePlan() {
    return {stepsOf, nameOf, play};
}

} // namespace ql240::moments
