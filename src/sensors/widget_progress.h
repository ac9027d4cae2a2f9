// The dashboard panel under the video: speedometer, readings, the clip's acceleration trace and, over it, the
// progress strip. It owns the sensor track of the clip being played. The main window feeds it; interface
// thread only. Times in ms, speeds in km/h.
#pragma once

#include <QTimer>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <optional>

#include "base/background_jobs.h"
#include "sensors/panel_painting.h"
#include "widgets/accessible_parts.h"

namespace ql240 {

class WidgetProgressA : public QWidget, private AccessibleGauge {
    Q_OBJECT

public:
    // The text of the card's version file, nothing where no card has one. Runs on a thread of its own, since
    // a dying card reader may hold it up.
    using CardLook = std::function<std::optional<QString>()>;

    // Without a look at the card the model stays unknown.
    explicit WidgetProgressA(QWidget* parent = nullptr, CardLook cardLook = {});

    // Ignored when minimum > maximum. A change lets the next setValue through whatever its value.
    void setRange(std::int32_t minimum, std::int32_t maximum);
    void setValue(std::int32_t value);
    void setDateText(const QString& text);
    void setClipPath(const QString& path);

    // On: enabled and repainted every two seconds; off: disabled, and the readings go back to zero.
    void setActive(bool on);
    void setAnimating(bool on);
    void resetIndicators();

    std::int32_t speed() const { return m_speed; }
    void setSpeed(std::int32_t kmh);
    bool kilometres() const { return m_kilometres; }
    void setKilometres(bool on);

    // The track: a load appends to it, from the trailer of the clip or through the sensor library.
    void loadSensorData(std::int64_t durationMs);
    void clearSensorData();
    // The sample at a playback position; its values become the ones shown, except for the speed.
    SensorSample sampleAt(std::int32_t timeMs);
    const SensorTrack& sensorTrack() const { return m_track; }

    // What the panel shows at the moment.
    PanelState state() const;

    // Public, since the main window hands its own events on.
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
    // On the strip. Let go below it, the button leaves the drag on.
    enum class Drag { None, Held, LetGoBelow };

    int gaugeMaximum() const override { return m_maximum; }
    int gaugeValue() const override { return m_value; }
    QString gaugeText() const override { return m_timeText; }
    QString gaugeDetails() const override;
    void setGaugeValue(int value) override;
    void loadCardModel();
    void setModelFromVersion(const QString& versionText);
    void rebuildTimeText();
    void zeroReadings();
    void appendTrack(std::int64_t durationMs);
    const QPixmap& trace();

    bool m_loaded = false;
    std::int32_t m_minimum = 0;
    std::int32_t m_maximum = 0;
    std::int32_t m_value = 0;
    std::int16_t m_accX = 0;
    std::int16_t m_accY = 0;
    std::int16_t m_accZ = 0;
    double m_latitude = 0.0;
    double m_longitude = 0.0;
    QString m_timeText;
    QString m_modelText;
    QString m_dateText;
    QString m_clipPath;
    bool m_textForced = false;
    Drag m_drag = Drag::None;
    SensorTrack m_track;
    PanelImages m_images;
    QTimer m_repaintTimer;
    bool m_kilometres = true;
    bool m_hasFix = false;
    std::int32_t m_speed = 0;

    // One look at the card at a time; another one that was asked for meanwhile follows it.
    CardLook m_cardLook;
    BackgroundJobs m_cardJobs;
    bool m_modelWanted = false;

    // The trace of the whole track, drawn once for this track, size and device ratio.
    QPixmap m_trace;
};

} // namespace ql240
