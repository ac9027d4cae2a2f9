// The pixels that a view shows of a clip: where, how bright, of which stream.
#include <QTest>

#include "clips/clip.h"
#include "platform/gstreamer/gst_media_platform.h"
#include "platform/host.h"
#include "playback/video_view.h"
#include "support/frame_code.h"
#include "support/test_clips.h"

using namespace ql240;

namespace {

constexpr int kPatienceMs = 10000;
constexpr int kDarkest = 45; // the clips' gradient is brighter, the view's background darker

QImage grabbed(QWidget& view) {
    return view.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

// In the device pixels of a picture of the view.
QRect devicePixels(const QRect& rect, const QImage& picture) {
    const qreal ratio = picture.devicePixelRatio();
    return QRectF(rect.topLeft() * ratio, QSizeF(rect.size()) * ratio).toRect();
}

// A paused clip in a view, showing frame 0.
struct ShownClip {
    explicit ShownClip(const TestClipSpec& spec, const QSize& viewSize = {640, 360}, int brightness = 0)
        : clip(QFileInfo(makeTestClip(spec))) {
        view.resize(viewSize);
        view.setPalette(Qt::black);
        view.show();
        view.setImageAdjust(brightness, 100);
        const bool opened = view.openClip(&clip);
        view.setFrameSize(view.player()->videoSize(0));
        view.layoutVideo();
        view.player()->rewind();
        view.player()->pause();
        isThere = opened && QTest::qWaitFor([this] { return readFrameNumber(picture()) == 0; }, kPatienceMs);
    }
    QImage picture() {
        const QImage all = grabbed(view);
        return all.copy(devicePixels(fittedRect(view.size(), view.player()->videoSize(0)), all));
    }

    Clip clip;
    VideoView view;
    bool isThere = false;
};

// Mean difference of two pictures of one size, in levels.
double distance(const QImage& a, const QImage& b) {
    qint64 sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            sum += std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y)));
    }
    return static_cast<double>(sum) / a.width() / a.height();
}

} // namespace

class TestShownPicture : public QObject {
    Q_OBJECT

private:
    gstreamer::GstMediaPlatform m_media;

private Q_SLOTS:
    void initTestCase() { host().media = &m_media; }

    void greysAreRight() {
        const std::pair<TestClipSpec, int> rows[] = {
            {{}, 0}, {{.fullRange = true}, 0}, {aviTestClip(), 0}, {{.bFrames = 2}, 40}, {{}, -40}};
        for (const auto& [spec, brightness] : rows) {
            ShownClip shown(spec, {640, 360}, brightness);
            QVERIFY(shown.isThere);
            const auto levels = readGreyLevels(shown.picture());
            for (std::size_t i = 0; i < levels.size(); ++i) {
                // An offset of luma is 255 / 219 as much in RGB.
                const int expected = std::clamp(kGreyLevels[i] + brightness * 255 / 219, 0, 255);
                QVERIFY2(std::abs(levels[i] - expected) <= 6, qPrintable(QString::number(levels[i])));
            }
        }
    }

    void pictureFillsItsRectangle_data() {
        QTest::addColumn<QSize>("frame");
        for (const QSize& frame : {QSize(1280, 720), QSize(640, 480), QSize(360, 640), QSize(322, 242)})
            QTest::addRow("%dx%d", frame.width(), frame.height()) << frame;
    }
    void pictureFillsItsRectangle() {
        QFETCH(QSize, frame);
        for (const QSize& view : {QSize(640, 360), QSize(317, 179)}) {
            ShownClip shown({.size = frame, .frames = 10}, view);
            QVERIFY(shown.isThere);
            const QImage picture = grabbed(shown.view);
            shown.view.setVideoVisible(false);
            const QImage background = grabbed(shown.view);
            const QRect rect = devicePixels(fittedRect(view, frame), picture);
            const QRect inside = rect.adjusted(1, 1, -1, -1);
            for (int y = 0; y < picture.height(); ++y) {
                // Above the code and below the greys the gradient extends from edge to edge.
                const int sixteenth = (y - rect.top()) * 16 / rect.height();
                const bool isGradient = sixteenth < 1 || sixteenth > 14;
                for (int x = 0; x < picture.width(); ++x) {
                    const QString at = QStringLiteral("%1,%2").arg(x).arg(y);
                    const int shade = qGray(picture.pixel(x, y));
                    const int behind = qGray(background.pixel(x, y));
                    QVERIFY2(rect.contains(x, y) || std::abs(shade - behind) <= 1, qPrintable(at));
                    if (isGradient && rect.contains(x, y) && !inside.contains(x, y))
                        QVERIFY2(shade > kDarkest, qPrintable(at));
                    QVERIFY2(behind < kDarkest, qPrintable(at));
                }
            }
        }
    }

    void zoomedPictureIsWhereItWasPut() {
        ShownClip shown({.size = QSize(1280, 720)});
        QVERIFY(shown.isThere);
        shown.view.zoomStep(1);
        const QImage& frame = shown.view.player()->frame(0, true);
        for (const QPoint& corner : {QPoint(96, 53), QPoint(150, 80)}) {
            const QImage picture = grabbed(shown.view);
            const QSize size = QSize(832, 467) * picture.devicePixelRatio();
            const QImage zoomed = frame.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                      .copy(devicePixels({corner, QSize(640, 360)}, picture));
            // One pixel off makes at least 0.24 levels.
            QVERIFY2(distance(picture, zoomed) < 0.2, qPrintable(QString::number(distance(picture, zoomed))));
            shown.view.player()->moveWindow(windowToken(&shown.view), -150, -80, false);
        }
    }

    void secondViewShowsTheSecondStream() {
        const TestClipSpec spec{.videoStreams = 2};
        ShownClip shown(spec);
        QVERIFY((readFrameMark(shown.picture()) == FrameMark{0, 0}));
        VideoView second;
        second.resize(320, 180);
        second.show();
        second.setSecondPlayer(shown.view.player());
        second.setFrameSize(shown.view.player()->videoSize(1));
        second.layoutVideo();
        const auto mark = [&] {
            const QImage all = grabbed(second);
            return readFrameMark(all.copy(devicePixels(fittedRect(second.size(), spec.secondSize), all)));
        };
        QVERIFY(QTest::qWaitFor([&] { return mark() == FrameMark{0, 1}; }, kPatienceMs));
    }
};

QTEST_MAIN(TestShownPicture)
#include "test_shown_picture.moc"
