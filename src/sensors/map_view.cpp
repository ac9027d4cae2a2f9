#include "sensors/map_view.h"

#include <QEvent>
#include <QPainter>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <cmath>
#include <utility>

#include "base/preferences.h"
#include "platform/host.h"
#include "platform/url_opener.h"
#include "platform/web_pages.h"
#include "sensors/map_page.h"
#include "widgets/accessible_parts.h"
#include "widgets/fonts.h"
#include "widgets/skin.h"

namespace ql240 {
namespace {

constexpr QRect kWebViewRect(0, 0, 325, 210);
constexpr int kStatusStripHeight = 18;
constexpr QColor kStatusStripColour(7, 7, 7);

// Loading the engine takes about 100 ms of the interface thread, so it waits until the window is on the
// screen.
constexpr int kEngineDelayMs = 50;

// The page's files come from the program itself, so a load normally takes 60 to 300 ms.
constexpr int kLoadLimitMs = 15000;

// The delay doubles with each failure in a row, up to the last.
constexpr int kFirstReviveMs = 1000;
constexpr int kLastReviveMs = 60000;

// A page that has lasted this long resets the delay.
constexpr int kSteadyMs = 10000;

constexpr char kStreetTiles[] = "https://tile.openstreetmap.org/{z}/{x}/{y}.png";

QString tileAddress() {
    QString address = QString::fromLatin1(kStreetTiles);
    readTileUrl(address);
    // The ini reader may have inserted spaces after commas.
    return address.remove(QLatin1Char(' '));
}

} // namespace

MapView::MapView(QWidget* parent)
    : QWidget(parent),
      m_webView(new QWidget(this)),
      m_backdrop(skinPixmap(skinPath(QStringLiteral("screen")))),
      m_loadWatchdog(new QTimer(this)),
      m_reviveTimer(new QTimer(this)),
      m_steadyTimer(new QTimer(this)),
      m_reviveDelayMs(kFirstReviveMs),
      m_trackScript(trackScript({})) {
    describePart(this, tr("Map"), QAccessible::Graphic);
    m_webView->hide();
    m_loadWatchdog->setObjectName(QStringLiteral("loadWatchdog"));
    m_loadWatchdog->setSingleShot(true);
    m_loadWatchdog->setInterval(kLoadLimitMs);
    connect(m_loadWatchdog, &QTimer::timeout, this, &MapView::giveUpLoad);
    m_reviveTimer->setObjectName(QStringLiteral("reviveTimer"));
    m_reviveTimer->setSingleShot(true);
    connect(m_reviveTimer, &QTimer::timeout, this, &MapView::loadMapPage);
    m_steadyTimer->setObjectName(QStringLiteral("steadyTimer"));
    m_steadyTimer->setSingleShot(true);
    m_steadyTimer->setInterval(kSteadyMs);
    connect(m_steadyTimer, &QTimer::timeout, this, [this] { m_reviveDelayMs = kFirstReviveMs; });
    setFont(uiFont(8));
    loadMapPage();
}

MapView::~MapView() = default;

void MapView::loadMapPage() {
    m_webView->setGeometry(kWebViewRect);
    m_webView->setAttribute(Qt::WA_OpaquePaintEvent, false);
    if (m_page) {
        m_reviveTimer->stop();
        m_steadyTimer->stop();
        m_loadWatchdog->start();
        m_loaded = false;
        m_positionPending = false;
        m_page->setHtml(mapPage(m_latitude, m_longitude));
    }
    update();
}

void MapView::startEngine() {
    WebPageEvents events;
    events.loadFinished = [this](bool ok) { loadFinished(ok); };
    events.renderProcessGone = [this] { pageLost(); };
    events.linkClicked = [this](const QUrl& address) { openLink(address); };
    m_page = host().webPages->createPage(m_webView, std::move(events));
    if (!m_page)
        return;
    m_page->widget()->setGeometry(QRect(QPoint(), kWebViewRect.size()));
    m_page->widget()->show();
    loadMapPage();
}

void MapView::loadFinished(bool ok) {
    m_loadWatchdog->stop();
    m_loaded = ok;
    m_webView->setVisible(ok);
    if (!ok) {
        reviveLater();
        return;
    }
    m_reviveTimer->stop();
    m_steadyTimer->start();
    m_trackPending = m_tilesPending = true;
    sendPending();
}

void MapView::pageLost() {
    m_loadWatchdog->stop();
    m_loaded = false;
    m_webView->hide();
    reviveLater();
}

void MapView::giveUpLoad() {
    m_page->stop();
    pageLost();
}

void MapView::reviveLater() {
    m_steadyTimer->stop();
    if (m_reviveTimer->isActive())
        return;
    m_reviveTimer->start(m_reviveDelayMs);
    m_reviveDelayMs = std::min(2 * m_reviveDelayMs, kLastReviveMs);
}

bool MapView::moveTo(double latitude, double longitude) {
    if (latitude == m_latitude && longitude == m_longitude)
        return true;
    if (!std::isfinite(latitude) || !std::isfinite(longitude))
        return true;
    m_latitude = latitude;
    m_longitude = longitude;
    update(m_statusStrip);
    m_positionPending = true;
    if (m_loaded)
        sendPending();
    else if (m_page && isVisible())
        m_page->runJavaScript(goScript(latitude, longitude));
    return true;
}

void MapView::setTrack(const SensorTrack& track) {
    m_trackScript = trackScript(track);
    m_trackPending = true;
    sendPending();
}

void MapView::sendPending() {
    if (!m_loaded || !isVisible())
        return;
    if (std::exchange(m_tilesPending, false))
        m_page->runJavaScript(tilesScript(tileAddress()));
    if (std::exchange(m_trackPending, false))
        m_page->runJavaScript(m_trackScript);
    if (std::exchange(m_positionPending, false))
        m_page->runJavaScript(goScript(m_latitude, m_longitude));
}

void MapView::openLink(const QUrl& address) {
    if (host().urlOpener)
        host().urlOpener->openUrl(address.toString(QUrl::FullyEncoded));
}

void MapView::resizeEvent(QResizeEvent*) {
    m_statusStrip = QRect(0, height() - kStatusStripHeight, width(), kStatusStripHeight);
}

void MapView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.fillRect(m_statusStrip, kStatusStripColour);
    painter.drawPixmap(QRect(1, 1, width() - 2, height() - 2), m_backdrop);
    if (!m_engineAsked && isVisible()) {
        m_engineAsked = true;
        QTimer::singleShot(kEngineDelayMs, this, &MapView::startEngine);
    }
}

void MapView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LanguageChange) {
        loadMapPage();
        event->accept();
        return;
    }
    QWidget::changeEvent(event);
}

void MapView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    sendPending();
}

} // namespace ql240
