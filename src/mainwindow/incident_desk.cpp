#include "mainwindow/incident_desk.h"

#include <QKeyEvent>

#include "clips/clip.h"
#include "clips/clip_folder.h"
#include "clips/clip_session.h"
#include "incident/incident_panel.h"
#include "incident/strip_marks.h"
#include "mainwindow/commands.h"
#include "mainwindow/main_window.h"
#include "mainwindow/my_list_widget.h"
#include "playback/video_view.h"
#include "sensors/widget_progress.h"
#include "widgets/skin_window.h"

namespace ql240 {
namespace {

constexpr QSize kEndPicture(160, 90);
constexpr std::chrono::milliseconds kStillsDelay{400};

QImage small(const QImage& picture) {
    return picture.isNull() ? picture
                            : picture.scaled(kEndPicture, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace

IncidentDesk::IncidentDesk(const Parts& parts)
    : m_parts(parts),
      m_panel(new IncidentPanel(m_incident)),
      m_window(new SkinWindow(&parts.window, tr("QL240 Incident"), m_panel)),
      m_marks(new StripMarks(&parts.panel)) {
    m_marks->hide();
    m_window->installEventFilter(this);
    const QList<QWidget*> widgets = m_window->findChildren<QWidget*>();
    for (QWidget* part : widgets)
        part->installEventFilter(this);
    connect(m_window, &SkinWindow::shown, this, &IncidentDesk::open);
    connect(m_window, &SkinWindow::closed, this, &IncidentDesk::leave);
    connect(m_panel, &IncidentPanel::endWanted, this, &IncidentDesk::setEnd);
    connect(m_panel, &IncidentPanel::markWanted, this, &IncidentDesk::markPicture);
    connect(&m_incident, &Incident::chosen, this, [this](const QString& clip, std::int64_t ms) {
        m_parts.window.showMoment(clip, static_cast<int>(ms));
    });
    connect(&m_incident, &Incident::rangeChanged, this, &IncidentDesk::showRange);
    m_stillsDelay.setSingleShot(true);
    connect(&m_stillsDelay, &QTimer::timeout, this, &IncidentDesk::fetchPictures);
    connect(&m_incident.search(), &MomentSearch::changed, this, &IncidentDesk::showMarks);
    connect(&m_parts.session, &ClipSession::opened, this, &IncidentDesk::showClip);
    connect(&m_parts.session, &ClipSession::closed, this, &IncidentDesk::showClip);
}

IncidentDesk::~IncidentDesk() = default;

void IncidentDesk::setFolder(const ClipFolder* folder) {
    QStringList paths;
    if (folder) {
        for (const Clip* clip : folder->values())
            paths << clip->file().absoluteFilePath();
    }
    m_incident.setClips(paths);
    if (isOpen())
        m_incident.search().start();
}

bool IncidentDesk::isOpen() const {
    return m_window->isVisible();
}

void IncidentDesk::run(CommandId command) {
    switch (command) {
        case CommandId::Incident:
            m_window->toggle();
            break;
        case CommandId::Mark:
            markPicture();
            break;
        case CommandId::RangeFrom:
            setEnd(Incident::End::From);
            break;
        case CommandId::RangeTo:
            setEnd(Incident::End::To);
            break;
        case CommandId::PreviousMoment:
            chooseNext(-1);
            break;
        case CommandId::NextMoment:
            chooseNext(+1);
            break;
        default:
            break;
    }
}

// The list of moments would search for typed letters. What no part of the window uses arrives at the window
// itself.
bool IncidentDesk::eventFilter(QObject* object, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return false;
    auto& key = *static_cast<QKeyEvent*>(event);
    const Command* command = commandOf(key, true);
    if (!command || (object != m_window && !command->needsIncident && command->id != CommandId::Incident))
        return false;
    if (!key.isAutoRepeat() || command->repeats)
        m_parts.window.run(*command);
    return true;
}

void IncidentDesk::close() {
    m_window->close();
}

void IncidentDesk::open() {
    m_panel->setKilometres(m_parts.panel.kilometres());
    m_parts.list.setPassesIncident(true);
    m_incident.search().start();
    showClip();
}

// The sub view gets the second stream back, hidden as before.
void IncidentDesk::leave() {
    m_parts.list.setPassesIncident(false);
    m_incident.search().cancel();
    showClip();
}

QString IncidentDesk::clipPath() const {
    const Clip* clip = m_parts.session.clip();
    return clip ? clip->file().absoluteFilePath() : QString();
}

void IncidentDesk::showClip() {
    if (const QString clip = clipPath(); isOpen() && !clip.isEmpty())
        m_incident.search().learnLength(clip, m_parts.mainView.player()->durationMs());
    showSecondCamera();
    showMarks();
}

// While the window is open, the second stream's picture belongs to it, not to the hidden sub view.
void IncidentDesk::showSecondCamera() {
    Player* player = m_parts.mainView.player();
    const bool hasSecond = m_parts.session.clip() && !player->videoSize(1).isEmpty();
    if (isOpen() && hasSecond) {
        m_parts.subView.setSecondPlayer(nullptr);
        QWidget* view = m_panel->secondCamera();
        player->attachWindow(windowToken(view), fittedRect(view->size(), player->videoSize(1)), true);
    } else if (m_parts.session.clip()) {
        player->hideWindow(1);
        m_parts.subView.setSecondPlayer(player);
    }
    m_panel->setSecondCamera(hasSecond);
}

void IncidentDesk::showMarks() {
    m_marks->setVisible(isOpen() && m_parts.panel.isVisible());
    if (!isOpen())
        return;
    StripMarks::State state;
    const QString clip = clipPath();
    state.durationMs = clip.isEmpty() ? 0 : m_parts.mainView.player()->durationMs();
    for (const Moment& moment : m_incident.search().moments()) {
        if (moment.clip == clip)
            state.momentsMs.push_back(moment.timeUs / 1000);
    }
    for (const ClipTimeline::Part& part : m_incident.search().timeline().partsOf(m_incident.range())) {
        if (part.clip == clip)
            state.range = part.range;
    }
    m_marks->setState(state);
}

void IncidentDesk::markPicture() {
    const QString clip = clipPath();
    if (!isOpen() || clip.isEmpty())
        return;
    const std::int64_t ms = m_parts.mainView.player()->positionMs();
    const SensorSample sample = sampleForTime(m_parts.panel.sensorTrack(), static_cast<std::int32_t>(ms));
    std::optional<RecordedFix> place;
    if (sample.timeMs != -1 && sample.hasPosition()) {
        place.emplace();
        place->latitude = sample.latitude;
        place->longitude = sample.longitude;
        if (sample.speed >= 0)
            place->speedKmh = sample.speed;
    }
    m_incident.search().toggleMark(clip, ms * 1000, place);
}

void IncidentDesk::setEnd(Incident::End end) {
    const QString clip = clipPath();
    if (!isOpen() || clip.isEmpty())
        return;
    Player* player = m_parts.mainView.player();
    m_incident.setEnd(end, clip, player->positionMs(), small(player->frame(0, true)));
}

void IncidentDesk::showRange() {
    showMarks();
    m_stills.forget();
    m_stillsDelay.start(kStillsDelay);
}

// Of the ends that were set with the moment, not by hand.
void IncidentDesk::fetchPictures() {
    for (const Incident::End end : {Incident::End::From, Incident::End::To}) {
        const auto place = m_incident.placeOf(end);
        if (!isOpen() || !place || !m_incident.picture(end).isNull())
            continue;
        m_stills.read(place->first, static_cast<std::int32_t>(place->second),
                      [this, end](const StillDecoder::Pictures& pictures) {
                          if (!pictures[0].isNull())
                              m_incident.setPicture(end, small(pictures[0]));
                      });
        return; // the other one follows when this one is there
    }
}

void IncidentDesk::chooseNext(int step) {
    if (isOpen())
        m_incident.chooseNext(step, clipPath(), m_parts.mainView.player()->positionMs());
}

} // namespace ql240
