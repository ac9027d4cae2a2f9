// Drives the viewer's own views for the playback benchmark: plays a clip to its end, or measures how long the
// first picture and the pictures of exact seeks take to be painted. Prints milliseconds, one value per line.
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <cstdio>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "clips/clip.h"
#include "platform/gstreamer/gst_media_platform.h"
#include "platform/host.h"
#include "playback/video_view.h"

using namespace ql240;

namespace {

constexpr int kTimeLimitMs = 20000;

// Notices when a new picture has been painted: the renderer's window gets an event for it and then paints.
class PaintWatch : public QObject {
public:
    explicit PaintWatch(VideoView& view) { view.installEventFilter(this); }

    // Waits for the next picture; false if none comes.
    bool wait() {
        m_arrived = false;
        QEventLoop loop;
        m_done = [&] { loop.exit(0); };
        QTimer::singleShot(kTimeLimitMs, &loop, [&] { loop.exit(1); });
        const bool painted = loop.exec() == 0;
        m_done = nullptr;
        QApplication::processEvents(); // a picture right after this one must not count as the next
        return painted;
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ChildAdded)
            static_cast<QChildEvent*>(event)->child()->installEventFilter(this);
        else if (event->type() >= QEvent::User)
            m_arrived = true;
        else if (event->type() == QEvent::Paint && m_arrived && m_done && watched->isWidgetType())
            QTimer::singleShot(0, this, [this] {
                if (m_done)
                    m_done();
            });
        return false;
    }

private:
    bool m_arrived = false;
    std::function<void()> m_done;
};

struct Stage {
    Stage() {
        host().media = &media;
        window.resize(1280, 360);
        second.setGeometry(640, 0, 640, 360);
        first.setGeometry(0, 0, 640, 360);
    }
    bool open(const Clip& clip) {
        if (!first.openClip(&clip))
            return false;
        first.setFrameSize(first.player()->videoSize(0));
        first.layoutVideo();
        if (Player::videoStreamCount > 1) {
            second.setSecondPlayer(first.player());
            second.setFrameSize(first.player()->videoSize(1));
            second.layoutVideo();
        }
        return true;
    }
    void show(bool both) {
        window.resize(both ? 1280 : 640, 360);
        second.setVisible(both);
        window.show();
    }

    gstreamer::GstMediaPlatform media;
    QWidget window;
    VideoView first{&window};
    VideoView second{&window};
};

int play(Stage& stage, const Clip& clip) {
    if (!stage.open(clip))
        return 1;
    stage.show(Player::videoStreamCount > 1);
    Player& player = *stage.first.player();
    player.play();
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        if (player.positionMs() == player.durationMs())
            QApplication::quit();
    });
    tick.start(100);
    return QApplication::exec();
}

int openTimes(Stage& stage, const Clip& clip, int count) {
    PaintWatch watch(stage.first);
    stage.show(false);
    for (int i = 0; i < count; ++i) {
        stage.first.closeClip();
        QElapsedTimer clock;
        clock.start();
        if (!stage.open(clip))
            return 1;
        stage.first.player()->rewind();
        stage.first.player()->pause();
        if (!watch.wait())
            return 1;
        std::printf("%.2f\n", static_cast<double>(clock.nsecsElapsed()) / 1e6);
    }
    return 0;
}

using Move = std::function<void(Player&, int)>;

// Times each `move` of a clip that is paused at its start.
int moveTimes(Stage& stage, const Clip& clip, const std::vector<int>& numbers, const Move& move) {
    PaintWatch watch(stage.first);
    stage.show(false);
    if (!stage.open(clip))
        return 1;
    Player& player = *stage.first.player();
    player.rewind();
    player.pause();
    watch.wait();
    for (const int number : numbers) {
        QElapsedTimer clock;
        clock.start();
        move(player, number);
        if (!watch.wait())
            return 1;
        std::printf("%.2f\n", static_cast<double>(clock.nsecsElapsed()) / 1e6);
    }
    return 0;
}

void seekTo(Player& player, int ms) {
    player.seek(ms);
}

// 1 and -1 are steps; anything else is a position to step from.
void stepOrSeek(Player& player, int number) {
    if (number == 1)
        player.stepForward();
    else if (number == -1)
        player.stepBack();
    else
        player.seek(number);
}

} // namespace

// ql240-bench-player play CLIP | open CLIP COUNT | seek CLIP MS… | step CLIP MS|1|-1…
int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 3)
        return 2;
    const QString mode = arguments[1];
    const Clip clip{QFileInfo(arguments[2])};
    std::vector<int> numbers;
    for (const QString& number : arguments.mid(3))
        numbers.push_back(number.toInt());
    Stage stage;
    if (mode == QLatin1String("play"))
        return play(stage, clip);
    if (mode == QLatin1String("open"))
        return openTimes(stage, clip, numbers.at(0));
    return moveTimes(stage, clip, numbers, mode == QLatin1String("step") ? stepOrSeek : seekTo);
}
