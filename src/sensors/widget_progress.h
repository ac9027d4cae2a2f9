// The dashboard panel below the video: speedometer, readings, and the progress strip with the clip's
// acceleration trace. Owns the sensor track of the open clip. The main window feeds it; interface thread
// only. Times in ms, speeds in km/h.
#pragma once

#include <QTimer>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <optional>

#include "base/background_jobs.h"
#include "sensors/panel_painting.h"
#include "sensors/track_reader.h"
#include "widgets/accessible_parts.h"

namespace ql240 {

class WidgetProgressA : public QWidget, private AccessibleGauge {
    Q_OBJECT

public:
    // Returns the text of the card's version file, or nothing if no card has one. Runs on its own thread,
    // since a failing card reader may block it.
    using CardLook = std::function<std::optional<QString>()>;

    // Without a CardLook the model stays unknown. `trackArrived` is called by loadSensorData or later.
    explicit WidgetProgressA(
        QWidget* parent = nullptr, CardLook cardLook = {}, std::function<void()> trackArrived = [] {});

    // Ignored when minimum > maximum. After a change, the next setValue always takes effect.
    void setRange(std::int32_t minimum, std::int32_t maximum);
    void setValue(std::int32_t value);
    void setDateText(const QString& text);
    void setClipPath(const QString& path);

    // On: enabled and repainted every two seconds. Off: disabled, and the readings are reset to zero.
    void setActive(bool on);
    void setAnimating(bool on);
    void resetIndicators();

    std::int32_t speed() const { return m_state.speedKmh; }
    void setSpeed(std::int32_t kmh);
    bool kilometres() const { return m_state.kilometres; }
    void setKilometres(bool on);

    // The track. Loading appends to it from the clip: before it returns, or later if the clip is slow to
    // answer. Until then there are no samples.
    void loadSensorData(std::int64_t durationMs);
    void stopLoading() { m_trackReader.stop(); }
    void clearSensorData();
    // The sample at a playback position. Its values are shown from now on, except for the speed.
    SensorSample sampleAt(std::int32_t timeMs);
    const SensorTrack& sensorTrack() const { return m_track; }

    // What the panel shows now.
    PanelState state() const;

    // Public because the main window forwards its own events.
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

Q_SIGNALS:
    void clicked(int timeMs);

public Q_SLOTS:
    void OnTimeoutAnimation();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    // A drag on the strip. A release below the strip doesn't end it (LetGoBelow).
    enum class Drag { None, Held, LetGoBelow };

    int gaugeMaximum() const override { return m_state.progressMaximum; }
    int gaugeValue() const override { return m_state.progressValue; }
    QString gaugeText() const override { return m_state.timeText; }
    QString gaugeDetails() const override;
    void setGaugeValue(int value) override;
    void loadCardModel();
    void setModelFromVersion(const QString& versionText);
    void rebuildTimeText();
    void zeroReadings();
    void showTrack(ClipTrack read);
    const QPixmap& trace();

    bool m_loaded = false;
    PanelState m_state; // without what state() takes from the widget and the calendar
    std::int32_t m_minimum = 0;
    QString m_clipPath;
    bool m_textForced = false;
    Drag m_drag = Drag::None;
    SensorTrack m_track;
    TrackReader m_trackReader;
    std::function<void()> m_trackArrived;
    PanelImages m_images;
    QTimer m_repaintTimer;

    // One look at the card at a time; a request made during a look starts another one after it.
    CardLook m_cardLook;
    BackgroundJobs m_cardJobs;
    bool m_modelWanted = false;

    QPixmap m_trace; // of the whole track, painted once for each track, size and device pixel ratio
};

} // namespace ql240
