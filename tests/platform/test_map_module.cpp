// The map module with the real web engine: what the page does when the program calls it.
#include <QApplication>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>
#include <algorithm>
#include <csignal>
#include <optional>

#include "platform/host.h"
#include "platform/modules.h"
#include "platform/web_engine_setup.h"
#include "platform/web_pages.h"
#include "sensors/map_page.h"
#include "sensors/map_view.h"
#include "support/child_processes.h"
#include "support/tile_server.h"

using namespace ql240;
namespace {

constexpr double kSeoulLatitude = 37.5665;
constexpr double kSeoulLongitude = 126.978;

// The base map's two colours, both of which appear around Seoul.
bool showsLandAndSea(const QImage& image) {
    int land = 0;
    int sea = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            land += image.pixelColor(x, y) == QColor(0x2e3230);
            sea += image.pixelColor(x, y) == QColor(0x12171b);
        }
    }
    return land > 5000 && sea > 5000;
}

} // namespace

class TestMapModule : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<WebPage> m_page;
    std::optional<bool> m_loaded;
    QList<QUrl> m_links;

    void load(const QString& text) {
        m_loaded.reset();
        m_page->setHtml(text);
        QTRY_VERIFY_WITH_TIMEOUT(m_loaded.has_value(), 20000);
    }

    // Waits for the value of a script in the page.
    QVariant value(const QString& script) {
        std::optional<QVariant> result;
        m_page->runJavaScript(script, [&result](const QVariant& answer) { result = answer; });
        [&result] { QTRY_VERIFY_WITH_TIMEOUT(result.has_value(), 10000); }();
        return result.value_or(QVariant());
    }

    bool becomesTrue(const QString& script, int ms = 20000) {
        QElapsedTimer clock;
        clock.start();
        while (!value(script).toBool()) {
            if (clock.elapsed() > ms)
                return false;
            QTest::qWait(20);
        }
        return true;
    }

    // Whether the map's middle is within a pixel of a position.
    bool centredOn(double latitude, double longitude) {
        const QString script = QStringLiteral(
            "(function() { const map = KORVAMAP.map;"
            " return map.latLngToContainerPoint([%1, %2]).distanceTo(map.getSize().divideBy(2)); })()");
        const QVariant distance = value(script.arg(latitude, 0, 'f', 6).arg(longitude, 0, 'f', 6));
        return distance.isValid() && distance.toDouble() < 1.5;
    }

    // Waits until a tile was taken or refused.
    void showStreets(const TileServer& server) {
        m_page->runJavaScript(tilesScript(server.address()));
        QVERIFY(becomesTrue("KORVAMAP.onStreets || KORVAMAP.refusals > 0"));
    }
    bool onStreets() { return value("KORVAMAP.onStreets").toBool(); }

    QImage picture() { return m_page->widget()->grab(QRect(0, 0, 320, 205)).toImage(); }

private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(".")); // even while it starts
        m_window = std::make_unique<QWidget>();
        m_window->resize(325, 210);
        WebPageEvents events;
        events.loadFinished = [this](bool ok) { m_loaded = ok; };
        events.renderProcessGone = [] {};
        events.linkClicked = [this](const QUrl& address) { m_links.append(address); };
        m_page = host().webPages->createPage(m_window.get(), std::move(events));
        QVERIFY(m_page);
        m_page->widget()->resize(325, 210);
        m_window->show();
        load(mapPage(kSeoulLatitude, kSeoulLongitude));
        QCOMPARE(m_loaded, true);
    }

    void cleanup() {
        m_page.reset();
        m_window.reset();
        m_links.clear();
    }

    void goCentresTheMap() {
        QVERIFY(centredOn(kSeoulLatitude, kSeoulLongitude));
        m_page->runJavaScript(goScript(kSeoulLatitude + 0.7, kSeoulLongitude - 1));
        QVERIFY(centredOn(kSeoulLatitude + 0.7, kSeoulLongitude - 1));
        m_page->runJavaScript(goScript(-33.86883, -70.5));
        QVERIFY(centredOn(-33.86883, -70.5));
        // Further calls, such as the page's own onload, keep the place.
        const QVariant called = value(
            "let called = 0; init();"
            " KORVAMAP.initMap('KorvaMap', 163670, 526934, 12, () => ++called, 2); called");
        QCOMPARE(called.toInt(), 1);
        QVERIFY(centredOn(-33.86883, -70.5));
        m_page->runJavaScript(goScript(kSeoulLatitude, kSeoulLongitude));
        QVERIFY(centredOn(kSeoulLatitude, kSeoulLongitude));
    }

    // Invalid positions, as in damaged clips: the car stays, and the track leaves them out.
    void whatIsNoPlaceOnEarthIsIgnored() {
        const auto pictureOf = [this](const QByteArray& track) {
            m_page->runJavaScript("setTrack([" + track + "])");
            return value("document.querySelector('.way').toDataURL()").toString();
        };
        const QString kept = pictureOf("[[37.56,126.97],[37.57,126.98]]");
        QVERIFY(kept.size() > 1000);
        const QByteArray places[] = {"37.5,1e20", "90.1,127", "-1e300,127", "NaN,127", "37.5,Infinity"};
        for (const QByteArray& place : places) {
            m_page->runJavaScript("MapMoveToAuto(" + place + ",'9')");
            QVERIFY2(pictureOf("[[37.56,126.97],[" + place + "],[37.57,126.98]]") == kept, place);
            QVERIFY2(centredOn(kSeoulLatitude, kSeoulLongitude), place);
        }
        m_page->runJavaScript(trackScript({}));
        QVERIFY(becomesTrue("document.querySelector('.way') === null"));
        load(mapPage(kSeoulLatitude, 1e20));
        m_page->runJavaScript(goScript(kSeoulLatitude, kSeoulLongitude));
        QVERIFY(centredOn(kSeoulLatitude, kSeoulLongitude));
    }

    void withoutTilesTheBaseMapShows() {
        m_page->runJavaScript(tilesScript(QString()));
        QVERIFY(becomesTrue("document.querySelectorAll('.leaflet-tile-loaded').length > 1"));
        QTRY_VERIFY(showsLandAndSea(picture()));
        QVERIFY(!onStreets() && value("document.body.innerText").toString().contains(u"Natural Earth"));
    }

    // The track goes north, then east; the car moves on it in both directions.
    void carPointsAlongTheTrack() {
        SensorTrack track(20);
        for (int i = 0; i < 20; ++i) {
            track[i].latitude = kSeoulLatitude + std::min(i, 10) * 0.0002;
            track[i].longitude = kSeoulLongitude + std::max(i - 10, 0) * 0.0002;
        }
        m_page->runJavaScript(trackScript(track));
        const std::pair<int, int> turns[] = {{3, 0}, {5, 0}, {4, 0}, {14, 90}, {12, 90}, {19, 90}, {2, 0}};
        for (const auto& [point, degrees] : turns) {
            m_page->runJavaScript(goScript(track[point].latitude, track[point].longitude));
            const auto turn = "document.querySelector('.car svg').style.transform";
            QCOMPARE(value(turn).toString(), QStringLiteral("rotate(%1deg)").arg(degrees));
        }
    }

    void tilesShowStreetsUntilTheServerGoes() {
        const QColor colour(200, 100, 50);
        TileServer server(colour);
        showStreets(server);
        QVERIFY(onStreets());
        QCOMPARE(value("KORVAMAP.map.getZoom()").toInt(), 16);
        // The tile's colour, dimmed.
        QTRY_VERIFY(picture().pixelColor(40, 60).red() > 140);
        QVERIFY(picture().pixelColor(40, 60).red() < colour.red());
        QVERIFY(server.requests.first().contains("User-Agent: QL240-Viewer/"));
        QVERIFY(value("document.body.innerText").toString().contains(u"OpenStreetMap"));
        m_page->runJavaScript("document.querySelector('.leaflet-control-attribution a').click()");
        QTRY_COMPARE(m_links, QList<QUrl>{QUrl("https://www.openstreetmap.org/copyright")});
        QVERIFY(centredOn(kSeoulLatitude, kSeoulLongitude));

        server.close();
        m_page->runJavaScript(goScript(52.5, 13.4));
        QVERIFY(becomesTrue("!KORVAMAP.onStreets"));
        QVERIFY(centredOn(52.5, 13.4));
    }

    void tilesTaken() {
        const auto picture = [](int width, int height, const char* format) {
            return TileServer::picture(QSize(width, height), format);
        };
        const QByteArray tile = picture(256, 256, "PNG");
        const char* drawing = "<svg xmlns='http://www.w3.org/2000/svg' width='256' height='256'/>";
        const auto webP =
            QByteArray::fromBase64("UklGRiQAAABXRUJQVlA4TBgAAAAv/8A/AAfQ//73v/8BAEX6/58i+p/6338=");
        const std::tuple<const char*, QByteArray, bool> rows[] = {
            {"512 a side", picture(512, 512, "PNG"), true},
            {"JPEG", picture(256, 256, "JPG"), true},
            {"WebP", webP, true},
            {"too large", picture(1024, 1024, "PNG"), false},
            {"too high", picture(256, 20000, "PNG"), false},
            {"too large a JPEG", picture(2048, 256, "JPG"), false},
            {"too many bytes", tile + QByteArray(2 << 20, 'x'), false},
            {"bitmap", picture(256, 256, "BMP"), false},
            {"SVG", drawing, false},
            {"header alone", tile.left(40), false},
            {"nothing", "", false}};
        for (const auto& [name, answer, taken] : rows) {
            cleanup();
            init();
            TileServer server(Qt::white);
            server.body = answer;
            showStreets(server);
            QVERIFY2(onStreets() == taken, name);
        }
    }

    // Redirects aren't followed, even to another port of the same host.
    void redirectsLeadNowhere() {
        TileServer server(Qt::white), other(Qt::white);
        server.head = "HTTP/1.1 302 Found\r\nLocation: " + other.host().toLatin1() + "/1/2/3.png";
        showStreets(server);
        QVERIFY(!onStreets() && !server.requests.isEmpty());
        QCOMPARE(other.requests, QByteArrayList());
    }

    // Downloaded pictures are decoded in the engine's sandbox or not at all.
    void withoutASandboxNothingIsAskedFor() {
        TileServer server(Qt::white);
        cleanup();
        host().webPages->network = false;
        init();
        host().webPages->network = true;
        showStreets(server);
        QVERIFY(!onStreets());
        QCOMPARE(server.requests, QByteArrayList());
    }

    // The page loads although a tile server or script host takes requests and never answers.
    void hostsThatNeverAnswer() {
        TileServer server(Qt::white);
        server.silent = true;
        m_page->runJavaScript(tilesScript(server.address()));
        QTRY_VERIFY(!server.requests.isEmpty());
        QVERIFY(!onStreets());

        QString text = mapPage(kSeoulLatitude, kSeoulLongitude);
        text.replace("</head>",
                     QStringLiteral("<script src=\"%1/a.js\"></script></head>").arg(server.host()));
        QElapsedTimer clock;
        clock.start();
        load(text);
        QVERIFY(clock.elapsed() < 10000);
        QVERIFY(centredOn(kSeoulLatitude, kSeoulLongitude));
        for (const QByteArray& request : std::as_const(server.requests))
            QVERIFY2(!request.contains("a.js"), request.constData());
    }

    void lostRenderProcessComesBack() {
        cleanup();
        QWidget window;
        window.resize(400, 300);
        MapView map(&window);
        map.setGeometry(0, 0, 320, 206);
        window.show();
        auto* webView = map.findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
        QTRY_VERIFY_WITH_TIMEOUT(webView->isVisible(), 20000);
        const QList<qint64> processes = childProcesses();
        QVERIFY(!processes.isEmpty());
        kill(pid_t(processes.last()), SIGKILL);
        QTRY_VERIFY_WITH_TIMEOUT(!webView->isVisible(), 20000);
        map.moveTo(kSeoulLatitude, kSeoulLongitude);
        QTRY_VERIFY_WITH_TIMEOUT(webView->isVisible(), 20000);
        QTRY_VERIFY(showsLandAndSea(map.grab().toImage()));
    }
};

int main(int argc, char** argv) {
    prepareWebEngine();
    QApplication application(argc, argv);
    MapModule module(QStringLiteral(QL240_MODULES));
    module.network = true;
    host().webPages = &module;
    TestMapModule test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_map_module.moc"
