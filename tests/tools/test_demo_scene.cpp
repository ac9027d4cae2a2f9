// The painted drive: geometry of the view, and painting that stays inside the picture whatever it is asked
// for.

#include <QtTest/QTest>
#include <cmath>

#include "demo_card/clips.h"
#include "demo_card/scene/scene.h"

using namespace ql240;

namespace {

Drive evenDrive(double curvature) {
    DrivePlan plan;
    plan.speedKmh = 36;
    plan.curvature = curvature;
    plan.lane = 2;
    return Drive(plan);
}

QImage chequered() {
    QImage picture(64, 48, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x)
            picture.setPixel(x, y, (x / 8 + y / 8) % 2 ? 0xffffffff : 0x00000000);
    return picture;
}

int differingPixels(const QImage& a, const QImage& b) {
    int count = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            count += a.pixel(x, y) != b.pixel(x, y);
    return count;
}

} // namespace

class TestDemoScene : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theRoadVanishesWhereItBends_data();
    void theRoadVanishesWhereItBends();
    void spansCoverTheirShareOfAPixel();
    void wallsShrinkWithDistance();
    void nothingIsPaintedOutside();
    void picturesMoveWithTheSpeed();
    void everyClipHasPicturesAtEveryTime_data();
    void everyClipHasPicturesAtEveryTime();
};

void TestDemoScene::theRoadVanishesWhereItBends_data() {
    QTest::addColumn<double>("curvature");
    QTest::addColumn<bool>("backwards");
    QTest::addColumn<int>("side"); // where the road goes in the picture
    QTest::newRow("straight") << 0.0 << false << 0;
    QTest::newRow("right bend") << 0.005 << false << 1;
    QTest::newRow("left bend") << -0.005 << false << -1;
    QTest::newRow("right bend, rear") << 0.005 << true << 1; // the circle lies to the left of the look back
    QTest::newRow("left bend, rear") << -0.005 << true << -1;
}

void TestDemoScene::theRoadVanishesWhereItBends() {
    QFETCH(double, curvature);
    QFETCH(bool, backwards);
    QFETCH(int, side);
    const Drive drive = evenDrive(curvature);
    const DriveState state = drive.at(10);
    const RoadView view(drive, state, {1280, 720}, backwards);
    const RoadView::Spot own = view.spot(0, view.viewSide(2));
    QVERIFY(std::abs(own.right) < 0.01f && std::abs(own.forward) < 0.01f);
    const RoadView::Spot far = view.spot(100, view.viewSide(2));
    const int towards = backwards ? -side : side;
    if (side == 0)
        QVERIFY(std::abs(far.right) < 0.5f);
    else
        QVERIFY(far.right * float(towards) > 15);
    for (double ahead : {0.5, 12.0, 80.0}) {
        QVERIFY(std::abs(view.aheadOf(view.placeOf(ahead)) - ahead) < 1e-9);
        const RoadView::Node node = view.nodeAt(ahead);
        QVERIFY(std::abs(view.nodeAtDepth(node.forward).ahead - node.ahead) < 0.1f);
    }
}

void TestDemoScene::spansCoverTheirShareOfAPixel() {
    Canvas canvas({8, 1});
    const auto painted = [&](float from, float to, float opacity) {
        std::fill(canvas.line(0), canvas.line(0) + 8, 0xff000000);
        canvas.span(0, from, to, {1, 1, 1}, opacity);
        double sum = 0;
        for (int x = 0; x < 8; ++x)
            sum += qRed(canvas.line(0)[x]) / 255.0;
        return sum;
    };
    for (float from : {-3.0f, 0.0f, 0.25f, 2.5f, 6.9f})
        for (float length : {0.1f, 0.5f, 1.0f, 3.3f, 20.0f}) {
            const float inside = std::clamp(from + length, 0.0f, 8.0f) - std::clamp(from, 0.0f, 8.0f);
            QVERIFY(std::abs(painted(from, from + length, 1) - double(inside)) < 0.03);
            QVERIFY(std::abs(painted(from, from + length, 0.5f) - double(inside) / 2) < 0.03);
        }
}

void TestDemoScene::wallsShrinkWithDistance() {
    const Projection projection{100, 100, 100, 1};
    QImage white(8, 8, QImage::Format_ARGB32_Premultiplied);
    white.fill(Qt::white);
    const WallCover cover(white, 1, 1);
    const auto rows = [&](float forward) {
        Canvas canvas({200, 200});
        canvas.rectangle(QRectF(0, 0, 200, 200), {});
        canvas.wall(projection, {-1, forward, 0}, {1, forward, 2}, 0, 3, cover, Shade());
        double sum = 0;
        for (int y = 0; y < 200; ++y)
            sum += qRed(canvas.line(y)[100]) / 255.0;
        return sum;
    };
    for (float forward : {5.0f, 10.0f, 40.0f})
        QVERIFY(std::abs(rows(forward) - 300 / double(forward)) < 0.1);
}

// Under the address sanitizer a step outside ends the test.
void TestDemoScene::nothingIsPaintedOutside() {
    Canvas canvas({160, 90});
    canvas.rectangle(QRectF(0, 0, 160, 90), {});
    const Mipmap picture(chequered());
    const WallCover cover(chequered(), 3, 2);
    const Projection projection{100, 80, 42, 1.35f};
    std::int64_t next = 0;
    const auto dice = [&](double from, double to) { return from + (to - from) * hashNoise(5, next++); };
    const auto far = [&] { return float(dice(0, 1) < 0.2 ? dice(-1e6, 1e6) : dice(-300, 300)); };
    for (int i = 0; i < 3000; ++i) {
        const QRectF area(dice(-300, 300), dice(-300, 300), dice(-1, 900), dice(-1, 900));
        const Shade shade{{float(dice(0, 3)), 1, 0}, {1, 1, 1}, float(dice(0, 1))};
        canvas.span(int(far()), far(), far(), {2, 0, -1}, float(dice(0, 1)));
        canvas.picture(picture, area, shade, i % 2);
        canvas.glow(picture, area, {1, 1, 0});
        canvas.wall(projection, {far(), far(), far()}, {far(), far(), far()}, far(), far(), cover, shade);
    }
    for (int y = 0; y < 90; ++y)
        for (int x = 0; x < 160; ++x)
            QCOMPARE(qAlpha(canvas.line(y)[x]), 255);
}

void TestDemoScene::picturesMoveWithTheSpeed() {
    const ClipPlan clip = demoClips()[2];
    const Drive drive(clip.drive);
    Scene scene(drive, clip.world, {320, 180}, false);
    const auto changed = [&](double time) {
        const QImage first = scene.paint(time, 0).copy();
        return differingPixels(first, scene.paint(time + 0.1, 0));
    };
    QCOMPARE(drive.at(0.5).speed, 0.0);
    QVERIFY(changed(12) > 4 * changed(0.5)); // other people move at the red light, too
    Scene again(drive, clip.world, {320, 180}, false);
    QCOMPARE(again.paint(7, 210), scene.paint(7, 210));
    QVERIFY(again.paint(7, 210) != scene.paint(7, 211));
}

void TestDemoScene::everyClipHasPicturesAtEveryTime_data() {
    QTest::addColumn<qsizetype>("index");
    QTest::addColumn<bool>("backwards");
    const QList<ClipPlan> clips = demoClips();
    for (qsizetype i = 0; i < clips.size(); ++i)
        for (qsizetype video = 0; video < clips[i].format.videos.size(); ++video)
            QTest::addRow("%s %d", qPrintable(clips[i].name), int(video)) << i << (video > 0);
}

// A picture with too few colours is one where painting broke off or everything is covered.
void TestDemoScene::everyClipHasPicturesAtEveryTime() {
    QFETCH(qsizetype, index);
    QFETCH(bool, backwards);
    const ClipPlan clip = demoClips()[index];
    const Drive drive(clip.drive);
    Scene scene(drive, clip.world, {192, 108}, backwards);
    for (double time = 0; time <= 20; time += 0.5) {
        const QImage& picture = scene.paint(time, int(time * 30));
        QSet<QRgb> colours;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                colours.insert(picture.pixel(x, y));
        QVERIFY2(colours.size() > 800, qPrintable(QString::number(time)));
    }
}

QTEST_GUILESS_MAIN(TestDemoScene)
#include "test_demo_scene.moc"
