#include <QFile>
#include <QLocale>
#include <QTest>
#include <QTimer>
#include <clocale>
#include <cmath>
#include <limits>

#include "base/preferences.h"
#include "platform/host.h"
#include "sensors/map_page.h"
#include "sensors/map_view.h"
#include "support/fake_web_pages.h"

using namespace ql240;
namespace {

constexpr double kStartLatitude = 37.409571;
constexpr double kStartLongitude = 127.129253;

SensorSample sampleAt(double latitude, double longitude) {
    SensorSample sample;
    sample.latitude = latitude;
    sample.longitude = longitude;
    return sample;
}

} // namespace

class TestMapView : public QObject {
    Q_OBJECT

private:
    FakeWebPages m_pages;
    FakeUrlOpener m_browser;
    std::unique_ptr<QWidget> m_window;
    MapView* m_map = nullptr;

    // Shows the window, loads the map's page and drops the calls so far.
    void showLoaded() {
        m_window->show();
        QTRY_COMPARE(m_pages.texts.size(), 1);
        m_pages.events.loadFinished(true);
        m_pages.scripts.clear();
    }

    QWidget* webView() const { return m_map->findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly); }

private Q_SLOTS:
    void init() {
        m_pages = {};
        m_browser = {};
        host().webPages = &m_pages;
        host().urlOpener = &m_browser;
        QFile::remove(localIniPath());
        m_window = std::make_unique<QWidget>();
        m_window->resize(400, 300);
        m_map = new MapView(m_window.get());
        m_map->setGeometry(40, 30, 320, 206);
    }

    void cleanup() {
        m_window.reset();
        host() = {};
    }

    void scripts() {
        QCOMPARE(goScript(37.5665, 126.978), "go(37.56650,126.97800)");
        QCOMPARE(goScript(-33.868831, -0.000004), "go(-33.86883,-0.00000)");
        QCOMPARE(goScript(0.00000123, 179.999999), "go(0.00000,180.00000)"); // no exponent
        QCOMPARE(trackScript({}), "setTrack([])");
        // Samples without a valid position split the track; a stop is one point.
        QCOMPARE(trackScript({sampleAt(1, 2), sampleAt(1, 3), sampleAt(0, 3), sampleAt(1, 4)}),
                 "setTrack([[[1.00000,2.00000],[1.00000,3.00000]],[[1.00000,4.00000]]])");
        QCOMPARE(trackScript({sampleAt(1, 2), sampleAt(std::nan(""), 2), sampleAt(1, 3), sampleAt(1, 999)}),
                 "setTrack([[[1.00000,2.00000]],[[1.00000,3.00000]]])");
        QCOMPARE(trackScript({sampleAt(1, 2), sampleAt(1, 2), sampleAt(1, 2.000001)}),
                 "setTrack([[[1.00000,2.00000]]])");
        QCOMPARE(tilesScript("http://a/\"\\')</script>"),
                 "setTiles([\"http://a/\\\"\\\\')</script>\"][0],"
                 "{bytes:1048576,sides:[256,512]})");
    }

    // The C library's locale determines printf's decimal point, Qt's that of its own formatting.
    void numbersIgnoreTheLocale() {
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German));
        std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
        const QString page = mapPage(1234.5, 0.25);
        const QString go = goScript(1234.5, 0.25);
        std::setlocale(LC_NUMERIC, "C");
        QLocale::setDefault(before);
        QVERIFY(page.contains("MapMoveToAuto('1234.500000','0.250000','9');"));
        QCOMPARE(go, "go(1234.50000,0.25000)");
    }

    void engineWaitsForTheFirstPaint() {
        QCoreApplication::processEvents();
        QCOMPARE(m_pages.made, 0);
        QCOMPARE(webView()->geometry(), QRect(0, 0, 325, 210));
        m_window->show();
        QTRY_COMPARE(m_pages.made, 1);
        QCOMPARE(m_pages.view->parentWidget(), webView());
        QCOMPARE(m_pages.view->size(), QSize(325, 210));
        QCOMPARE(m_pages.texts, QStringList{mapPage(kStartLatitude, kStartLongitude)});
        QVERIFY(!m_pages.view->isVisible());
    }

    void worksWithoutTheModule() {
        m_pages.missing = true;
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_map->grab();
        QVERIFY(m_map->moveTo(1, 2));
        m_map->setTrack({sampleAt(1, 2)});
        m_map->loadMapPage();
    }

    void equalPositionIsSentOnce() {
        showLoaded();
        QVERIFY(m_map->moveTo(kStartLatitude, kStartLongitude));
        QVERIFY(m_map->moveTo(37.5665, 126.978));
        QVERIFY(m_map->moveTo(37.5665, 126.978));
        QVERIFY(m_map->moveTo(37.5665, 126.979));
        QCOMPARE(m_pages.takeScripts(), (QStringList{"go(37.56650,126.97800)", "go(37.56650,126.97900)"}));
        QVERIFY(m_map->moveTo(std::numeric_limits<double>::quiet_NaN(), 1));
        QVERIFY(m_map->moveTo(1, std::numeric_limits<double>::infinity()));
        QCOMPARE(m_pages.takeScripts(), QStringList());
    }

    void positionsSentWhileLoadingAreSentAgain() {
        m_map->moveTo(1, 2);
        m_map->setTrack({sampleAt(5, 6)});
        m_window->show();
        QTRY_COMPARE(m_pages.texts.size(), 1);
        QCOMPARE(m_pages.texts.last(), mapPage(1, 2));
        m_map->moveTo(3, 4);
        QCOMPARE(m_pages.takeScripts(), QStringList{goScript(3, 4)});
        m_pages.events.loadFinished(true);
        QCOMPARE(m_pages.scripts.size(), 3);
        QVERIFY(m_pages.scripts.contains(goScript(3, 4)));
        QVERIFY(m_pages.scripts.contains(trackScript({sampleAt(5, 6)})));
        QVERIFY(m_pages.view->isVisible());
    }

    void tileAddress() {
        const std::pair<QByteArray, const char*> rows[] = {
            {"", "https://tile.openstreetmap.org/{z}/{x}/{y}.png"},
            {"tileurl=", ""}, // switches them off
            {"tileurl=http://h/{z}/{x}/{y}?a=1,2", "http://h/{z}/{x}/{y}?a=1,2"},
        };
        for (const auto& [stored, expected] : rows) {
            cleanup();
            init();
            QFile file(localIniPath());
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("[map]\n" + stored + '\n');
            file.close();
            m_window->show();
            QTRY_COMPARE(m_pages.texts.size(), 1);
            m_pages.events.loadFinished(true);
            QVERIFY(m_pages.scripts.contains(tilesScript(expected)));
        }
    }

    void nothingIsSentWhileHidden() {
        showLoaded();
        m_map->hide();
        m_map->moveTo(1, 2);
        m_map->setTrack({sampleAt(1, 2)});
        m_map->moveTo(3, 4);
        QCOMPARE(m_pages.scripts, QStringList());
        m_map->show();
        QCOMPARE(m_pages.takeScripts(), (QStringList{trackScript({sampleAt(1, 2)}), goScript(3, 4)}));
        m_map->hide();
        m_map->show();
        QCOMPARE(m_pages.takeScripts(), QStringList());
    }

    void languageChangeLoadsThePageWhereTheCarIs() {
        showLoaded();
        m_map->setTrack({sampleAt(5, 6)});
        m_map->moveTo(1, 2);
        m_pages.scripts.clear();
        QEvent change(QEvent::LanguageChange);
        change.ignore();
        QCoreApplication::sendEvent(m_map, &change);
        QVERIFY(change.isAccepted());
        QCOMPARE(m_pages.texts.size(), 2);
        QCOMPARE(m_pages.texts.last(), mapPage(1, 2));
        m_pages.events.loadFinished(true);
        QVERIFY(m_pages.scripts.contains(trackScript({sampleAt(5, 6)})));
        QVERIFY(!m_pages.scripts.contains(goScript(1, 2)));
    }

    // When the page fails the backdrop is shown, then the page is loaded again.
    void lostPageComesBack() {
        const std::function<void()> troubles[] = {
            [&] { m_pages.events.loadFinished(false); },
            [&] { m_pages.events.renderProcessGone(); },
            [&] {
                m_map->findChild<QTimer*>("loadWatchdog")->setInterval(20);
                m_map->loadMapPage();
                QTRY_COMPARE(m_pages.stops, 1);
            },
        };
        for (const auto& goWrong : troubles) {
            cleanup();
            init();
            showLoaded();
            QVERIFY(m_pages.view->isVisible());
            goWrong();
            QVERIFY(!m_pages.view->isVisible());
            m_map->moveTo(1, 2);
            QTRY_COMPARE_WITH_TIMEOUT(m_pages.texts.last(), mapPage(1, 2), 10000);
            m_pages.events.loadFinished(true);
            QVERIFY(m_pages.view->isVisible());
        }
    }

    // Each failure, which may be reported twice, doubles the wait, until a page has worked for a while.
    void longWaitsEnd() {
        showLoaded();
        QTimer* const revive = m_map->findChild<QTimer*>("reviveTimer");
        QTimer* const steady = m_map->findChild<QTimer*>("steadyTimer");
        for (const int waitMs : {1000, 2000, 4000}) {
            m_pages.events.renderProcessGone();
            m_pages.events.loadFinished(false);
            QCOMPARE(revive->interval(), waitMs);
            QVERIFY(!steady->isActive());
            m_pages.events.loadFinished(true);
            QVERIFY(!revive->isActive());
        }
        steady->start(1);
        QTRY_VERIFY(!steady->isActive());
        m_pages.events.renderProcessGone();
        QCOMPARE(revive->interval(), 1000);
    }

    void linksGoToTheBrowser() {
        showLoaded();
        m_pages.events.linkClicked(QUrl("https://www.openstreetmap.org/copyright"));
        QCOMPARE(m_browser.opened, QStringList{"https://www.openstreetmap.org/copyright"});
    }
};

QTEST_MAIN(TestMapView)
#include "test_map_view.moc"
