// The map beside the video: a web page that gets the car's position. The web view starts as an empty
// placeholder; the engine is loaded after the window's first paint. A backdrop shows until a page is loaded
// and whenever it is lost. Owned by the main window; interface thread. Positions in degrees.
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

    // Moves the map; an unchanged position is not sent again. While the view is hidden, the position is kept
    // and sent once it is shown. Always returns true.
    bool moveTo(double latitude, double longitude);

    // The clip's whole track, drawn as a line until the next one is set.
    void setTrack(const SensorTrack& track);

public Q_SLOTS:
    // Shows the page if it has loaded, otherwise the backdrop.
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

    // Not sent to the page yet.
    QString m_trackScript;
    bool m_positionPending = false;
    bool m_trackPending = false;
    bool m_tilesPending = false;
};

} // namespace ql240
