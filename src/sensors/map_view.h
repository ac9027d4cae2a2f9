// The map beside the video: a web page that is sent the car's position. The web view is made with its window
// as an empty place; the engine behind it is loaded after the window's first paint. Until a page is shown, or
// when it is lost, the backdrop shows. Owned by the main window; interface thread. Positions in degrees.
#pragma once

#include <QPixmap>
#include <QWidget>
#include <memory>

#include "sensors/sensor_track.h"

class QTimer;
class QUrl;

namespace ql240 {

class WebPage;

class MapView : public QWidget {
    Q_OBJECT

public:
    explicit MapView(QWidget* parent = nullptr);
    ~MapView() override;

    // Builds the page at the last position and loads it.
    void loadMapPage();

    // Moves the map; an equal position is not sent again. While the view is hidden, the position is kept and
    // sent when it is shown. Always true.
    bool moveTo(double latitude, double longitude);

    // The clip's whole track, drawn as a line until the next one is set.
    void setTrack(const SensorTrack& track);

public Q_SLOTS:
    // Shows the page when it has loaded, the backdrop when it could not be.
    void loadFinished(bool ok);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void startEngine();
    void pageLost();
    void giveUpLoad();
    void reviveLater();
    void sendPending();
    void openLink(const QUrl& address);

    QWidget* m_webView;
    QRect m_statusStrip;
    double m_latitude = 37.409571;
    double m_longitude = 127.129253;
    QPixmap m_backdrop;

    bool m_engineAsked = false;
    std::unique_ptr<WebPage> m_page;
    bool m_loaded = false;
    QTimer* m_loadWatchdog;
    QTimer* m_reviveTimer;
    QTimer* m_steadyTimer;
    int m_reviveDelayMs;

    // What the page shown does not know yet.
    QString m_trackScript;
    bool m_positionPending = false;
    bool m_trackPending = false;
    bool m_tilesPending = false;
};

} // namespace ql240
