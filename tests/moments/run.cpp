#include "moments/run.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <string_view>

#include "moments/virtual_time.h"
#include "settings/config_window.h"

namespace ql240::moments {
namespace {

constexpr int kQuietAtEndMs = 12000;
constexpr int kTriesToEnd = 300;

const ConfigWindow* settingsDialog() {
    for (const QWidget* each : QApplication::topLevelWidgets()) {
        const auto* dialog = qobject_cast<const ConfigWindow*>(each);
        if (dialog && dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

int weightOf(const Action& action, Theme theme) {
    constexpr int kLeaning = 8;
    return action.theme == theme && theme != Theme::Any ? action.weight * kLeaning : action.weight;
}

int pickAction(Luck& luck, Theme theme) {
    return luck.pick(actions(), [theme](const Action& action) { return weightOf(action, theme); });
}

// Most runs start by opening a folder with clips, or with the settings of a hostile card.
int firstAction(Luck& luck, Theme theme, bool isStranger) {
    const std::string_view usual = isStranger ? "settings" : "drop";
    if (luck.chance(40))
        return pickAction(luck, theme);
    const auto isUsual = [usual](const Action& action) { return action.name == usual; };
    return static_cast<int>(std::ranges::find_if(actions(), isUsual) - actions().begin());
}

std::vector<Step> stepsOf(quint32 seed, int count) {
    constexpr int kDelays[] = {0, 0, 5, 30, 90, 130, 450, 450, 700, 2600, 9000};
    Luck luck;
    luck.reseed(seed ^ 0x5EED);
    const bool isStranger = meetsStranger(seed);
    const auto theme = isStranger ? Theme::Card : static_cast<Theme>(luck.below(kThemes));
    std::vector<Step> steps;
    for (int i = 0; i < count; ++i) {
        const int action = i == 0 ? firstAction(luck, theme, isStranger) : pickAction(luck, theme);
        const int delay = luck.oneOf(kDelays);
        steps.push_back({action, delay, static_cast<quint32>(luck.below(1 << 30))});
    }
    return steps;
}

const char* nameOf(const Step& step) {
    return actions()[static_cast<std::size_t>(step.action)].name;
}

QString playRun(quint32 seed, const std::vector<Step>& steps) {
    return Run(seed, steps).play();
}

} // namespace

Plan fakesPlan() {
    return {stepsOf, nameOf, playRun};
}

Run::Run(quint32 seed, std::vector<Step> steps)
    : m_world(std::make_unique<World>(seed)),
      m_steps(std::move(steps)),
      m_cards(std::make_unique<CardWatch>(*m_world)),
      m_viewer(std::make_unique<ViewerWatch>(*m_world)) {
    setIdleHook([this] {
        m_cards->look(settingsDialog());
        m_viewer->observe();
    });
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, this,
            [this] { m_world->jobs.turnBegins(); });
    m_world->jobs.onStart([this] { m_cards->look(settingsDialog()); });
}

QWidget* Run::front() const {
    QWidget* modal = QApplication::activeModalWidget();
    return modal ? modal : m_world->window.get();
}

QString Run::play() {
    QTimer::singleShot(0, this, &Run::next);
    QEventLoop loop;
    QObject::connect(this, &QObject::objectNameChanged, &loop, &QEventLoop::quit);
    loop.exec();
    setIdleHook({});
    m_cards->check();
    m_world->window.reset();
    m_viewer.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (m_world->media.liveObjects != 0)
        m_world->fail(QStringLiteral("%1 objects of the pipeline are left").arg(m_world->media.liveObjects));
    if (*m_world->inhibitor.holds != 0)
        m_world->fail(QStringLiteral("the desktop is still kept awake"));
    for (const QWidget* widget : QApplication::topLevelWidgets())
        m_world->fail(QStringLiteral("a %1 is left").arg(QLatin1String(widget->metaObject()->className())));
    return m_world->failure();
}

// Schedules the next step before playing this one, which may open a dialog with an event loop of its own.
void Run::next() {
    check(m_next == 0 ? 0 : m_steps[m_next - 1].delayMs);
    if (m_next >= m_steps.size() || !m_world->failure().isEmpty())
        return finish();
    const Step step = m_steps[m_next++];
    const Action& action = actions()[static_cast<std::size_t>(step.action)];
    luck().reseed(step.luck);
    m_viewer->before(action.name, action.navigates);
    QTimer::singleShot(step.delayMs, Qt::PreciseTimer, this, &Run::next);
    action.perform(*this);
}

void Run::check(int quietMs) {
    m_cards->look(settingsDialog());
    m_cards->check();
    m_viewer->check(quietMs);
}

// Closes what is open until everything is idle; repeatedly, since late answers may open something again.
void Run::finish() {
    constexpr int kApartMs = 50;
    if (++m_triesToEnd > kTriesToEnd)
        qFatal("a window doesn't close");
    if (QWidget* popup = QApplication::activePopupWidget()) {
        popup->close();
        return QTimer::singleShot(kApartMs, this, &Run::finish);
    }
    if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
        QTimer::singleShot(kApartMs, this, &Run::finish);
        return dialog->reject();
    }
    if (m_rested)
        return setObjectName(QStringLiteral("ended"));
    m_rested = true;
    m_world->window->OnSlotspause();
    QTimer::singleShot(kQuietAtEndMs, this, [this] {
        check(0);
        finish();
    });
}

} // namespace ql240::moments
