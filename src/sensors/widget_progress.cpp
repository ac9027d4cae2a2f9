#include "sensors/widget_progress.h"

#include <QDate>
#include <QMouseEvent>
#include <QPainter>
#include <utility>

#include "platform/waits.h"
#include "widgets/fonts.h"
#include "widgets/plain_text.h"

namespace ql240 {
namespace {

constexpr int kRepaintMs = 2000;
constexpr int kModelLength = 5;

QPoint placeOf(const QMouseEvent* event) {
    return event->position().toPoint();
}
bool isInStrip(QPoint place) {
    return place.y() <= panel::kStripBottom;
}

} // namespace

WidgetProgressA::WidgetProgressA(QWidget* parent, CardLook cardLook, std::function<void()> trackArrived)
    : QWidget(parent),
      m_trackReader([this](ClipTrack read) { showTrack(std::move(read)); }),
      m_trackArrived(std::move(trackArrived)),
      m_images(loadPanelImages()),
      m_repaintTimer(this),
      m_cardLook(std::move(cardLook)) {
    m_state.timeText = progressText(0, 0);
    m_state.modelText = QStringLiteral("unknown");
    resize(panel::kSize);
    setFont(uiFont(panel::kFontPoints));
    describeGauge(this, this);
    setAccessibleName(tr("Dashboard"));
    connect(&m_repaintTimer, &QTimer::timeout, this, &WidgetProgressA::OnTimeoutAnimation);
    loadCardModel();
}

void WidgetProgressA::setRange(std::int32_t minimum, std::int32_t maximum) {
    if (minimum > maximum || (minimum == m_minimum && maximum == m_state.progressMaximum))
        return;
    m_minimum = minimum;
    m_state.progressMaximum = maximum;
    rebuildTimeText();
    m_textForced = true;
}

void WidgetProgressA::setValue(std::int32_t value) {
    if (!m_textForced &&
        (value == m_state.progressValue || value < m_minimum || value > m_state.progressMaximum))
        return;
    m_state.progressValue = value;
    rebuildTimeText();
    update();
}

void WidgetProgressA::setDateText(const QString& text) {
    m_state.dateText = text;
}

void WidgetProgressA::setClipPath(const QString& path) {
    m_clipPath = path;
    loadCardModel();
}

void WidgetProgressA::setActive(bool on) {
    setEnabled(on);
    setAnimating(on);
    if (!on)
        zeroReadings();
}

void WidgetProgressA::setAnimating(bool on) {
    if (on)
        m_repaintTimer.start(kRepaintMs);
    else
        m_repaintTimer.stop();
}

void WidgetProgressA::resetIndicators() {
    m_repaintTimer.stop();
    setSpeed(0);
    if (m_state.hasFix) {
        m_state.hasFix = false;
        update();
    }
}

void WidgetProgressA::setSpeed(std::int32_t kmh) {
    if (kmh != m_state.speedKmh) {
        m_state.speedKmh = kmh;
        update();
    }
}

void WidgetProgressA::setKilometres(bool on) {
    if (on != m_state.kilometres) {
        m_state.kilometres = on;
        update();
    }
}

void WidgetProgressA::loadSensorData(std::int64_t durationMs) {
    if (m_clipPath.isEmpty() || m_trackReader.read(m_clipPath, durationMs, m_track))
        return;
    m_loaded = false;
    zeroReadings();
}

void WidgetProgressA::showTrack(ClipTrack read) {
    m_track = std::move(read.samples);
    m_trace = QPixmap();
    m_loaded = read.source != TrackSource::None;
    if (read.source != TrackSource::Trailer)
        zeroReadings();
    update();
    m_trackArrived();
}

void WidgetProgressA::clearSensorData() {
    stopLoading();
    m_track.clear();
    m_trace = QPixmap();
    m_state.progressMaximum = -1;
    m_state.progressValue = -1;
    update();
}

SensorSample WidgetProgressA::sampleAt(std::int32_t timeMs) {
    if (!m_loaded)
        return {};
    const SensorSample sample = sampleForTime(m_track, timeMs);
    m_state.latitude = sample.latitude;
    m_state.longitude = sample.longitude;
    m_state.accX = sample.accX;
    m_state.accY = sample.accY;
    m_state.accZ = sample.accZ;
    if (sample.hasPosition() != m_state.hasFix) {
        m_state.hasFix = sample.hasPosition();
        update();
    }
    return sample;
}

PanelState WidgetProgressA::state() const {
    PanelState shown = m_state;
    shown.size = size();
    shown.enabled = isEnabled();
    if (shown.dateText.isEmpty())
        shown.dateText = QDate::currentDate().toString(QStringLiteral("yyyy.MM.dd"));
    return shown;
}

void WidgetProgressA::mousePressEvent(QMouseEvent* event) {
    const bool left = event->button() == Qt::LeftButton;
    // A second press without a release in between: the release was lost.
    if (left && m_drag == Drag::Held)
        m_drag = Drag::None;
    if (left && !isInStrip(placeOf(event))) {
        QWidget::mousePressEvent(event);
        return;
    }
    const bool taken = left && panel::seekArea(rect()).contains(placeOf(event));
    if (taken) {
        m_drag = Drag::Held;
        update();
    }
    event->setAccepted(taken);
}

void WidgetProgressA::mouseMoveEvent(QMouseEvent* event) {
    const bool dragging = m_drag != Drag::None;
    if (dragging && !isInStrip(placeOf(event))) {
        QWidget::mouseMoveEvent(event);
        return;
    }
    const bool taken = dragging && panel::seekArea(rect()).contains(placeOf(event));
    if (taken)
        update();
    event->setAccepted(taken);
}

void WidgetProgressA::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || m_drag == Drag::None) {
        event->ignore();
        return;
    }
    if (!isInStrip(placeOf(event))) {
        m_drag = Drag::LetGoBelow;
        QWidget::mouseReleaseEvent(event);
        return;
    }
    m_drag = Drag::None;
    if (!panel::seekArea(rect()).contains(placeOf(event))) {
        event->ignore();
        return;
    }
    event->accept();
    Q_EMIT clicked(panel::seekTarget(placeOf(event).x(), m_minimum, m_state.progressMaximum, width()));
}

void WidgetProgressA::OnTimeoutAnimation() {
    update();
}

void WidgetProgressA::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const PanelState shown = state();
    paintInstruments(painter, m_images, shown);
    painter.drawPixmap(0, 0, trace());
    paintReadings(painter, m_images, shown);
    m_textForced = false;
}

// Waits briefly, so that a fast card answers before this returns; a slow one answers later.
void WidgetProgressA::loadCardModel() {
    m_modelWanted = !m_cardJobs.isIdle();
    if (m_modelWanted || !m_cardLook)
        return;
    const auto version = std::make_shared<std::optional<QString>>();
    m_cardJobs.start([version, look = m_cardLook] { *version = look(); },
                     [this, version] {
                         if (*version)
                             setModelFromVersion(**version);
                         if (m_modelWanted)
                             loadCardModel();
                     });
    m_cardJobs.wait(waits::kCardModel);
}

void WidgetProgressA::setModelFromVersion(const QString& versionText) {
    m_state.modelText = versionText.left(kModelLength);
    update();
}

void WidgetProgressA::rebuildTimeText() {
    const QString before =
        std::exchange(m_state.timeText, progressText(m_state.progressValue, m_state.progressMaximum));
    if (m_state.timeText != before)
        tellGaugeChanged(this, *this);
}

QString WidgetProgressA::gaugeDetails() const {
    const PanelState shown = state();
    const int speed = panel::shownSpeed(shown.speedKmh, shown.kilometres);
    QStringList details{QStringLiteral("%1 %2").arg(speed).arg(shown.kilometres ? QStringLiteral("km/h")
                                                                                : QStringLiteral("mph"))};
    details << (shown.hasFix ? tr("GPS position known") : tr("no GPS position"));
    if (shown.hasFix)
        details << degreeText(shown.latitude) << degreeText(shown.longitude);
    details << tr("acceleration %1, %2, %3 g")
                   .arg(accelerationText(shown.accX), accelerationText(shown.accY),
                        accelerationText(shown.accZ));
    details << shownName(shown.modelText) << shownName(shown.dateText);
    return details.join(QStringLiteral(", "));
}

// Has the effect of a click at that position on the strip.
void WidgetProgressA::setGaugeValue(int value) {
    if (value >= m_minimum && value <= m_state.progressMaximum)
        Q_EMIT clicked(value);
}

void WidgetProgressA::zeroReadings() {
    m_state.latitude = 0.0;
    m_state.longitude = 0.0;
    m_state.accX = 0;
    m_state.accY = 0;
    m_state.accZ = 0;
}

const QPixmap& WidgetProgressA::trace() {
    const double ratio = devicePixelRatioF();
    const QSize wanted = (QSizeF(width(), panel::kStripBottom + 1) * ratio).toSize();
    if (m_trace.size() != wanted || m_trace.devicePixelRatio() != ratio) {
        m_trace = QPixmap(wanted);
        m_trace.setDevicePixelRatio(ratio);
        m_trace.fill(Qt::transparent);
        QPainter painter(&m_trace);
        paintTrace(painter, m_track, width());
    }
    return m_trace;
}

} // namespace ql240
