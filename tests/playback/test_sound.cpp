// The sound of clips as a private sound server receives it, its volume, and a server that dies or hangs.
#include <QTest>

#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtEndian>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>
#include <cmath>
#include <functional>
#include <future>
#include <numbers>

#include "clips/clip.h"
#include "platform/gstreamer/gst_media_platform.h"
#include "platform/host.h"
#include "platform/limits.h"
#include "platform/wave_out.h"
#include "playback/video_view.h"
#include "playback/widget_volume.h"
#include "support/frame_code.h"
#include "support/test_clips.h"

using namespace ql240;
using namespace std::chrono_literals;

Q_DECLARE_METATYPE(ql240::TestClipSpec)

namespace {

constexpr int kPatienceMs = 15000;
constexpr int kRate = 32000;
constexpr double kTone = 440;              // of the clips
constexpr std::size_t kWindow = kRate / 4; // samples that are measured at a time

// A PulseAudio daemon whose only output is a pipe, from which the test reads what is played.
class SoundServer {
public:
    ~SoundServer() { die(); }

    // Also makes it the server of this process.
    bool start() {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), m_folder.path());
        environment.insert(QStringLiteral("PULSE_RUNTIME_PATH"), m_folder.filePath("runtime"));
        m_daemon.setProcessEnvironment(environment);
        const QString socket = m_folder.filePath(QStringLiteral("socket"));
        const QString pipe = m_folder.filePath(QStringLiteral("pipe"));
        const QString output = QStringLiteral(
            "module-pipe-sink file=%1 format=s16le rate=%2 channels=1 use_system_clock_for_timing=yes");
        const QString door = QStringLiteral("module-native-protocol-unix auth-anonymous=1 socket=") + socket;
        m_daemon.start(QStringLiteral("pulseaudio"),
                       {"-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-L",
                        output.arg(pipe).arg(kRate), "-L", door});
        qputenv("PULSE_SERVER", "unix:" + socket.toUtf8());
        if (!QTest::qWaitFor([&] { return QFile::exists(socket); }, kPatienceMs))
            return false;
        m_pipe = ::open(pipe.toUtf8().constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        return m_pipe >= 0;
    }

    void hang() { ::kill(pid_t(m_daemon.processId()), SIGSTOP); }
    void goOn() { ::kill(pid_t(m_daemon.processId()), SIGCONT); }

    void die() {
        m_daemon.kill();
        m_daemon.waitForFinished();
        if (m_pipe >= 0)
            ::close(std::exchange(m_pipe, -1));
    }

    // The tone's amplitude in the last quarter of a second; 1 is full scale.
    double amplitude() {
        readPipe();
        if (m_samples.size() < kWindow)
            return -1;
        double re = 0;
        double im = 0;
        for (std::size_t i = 0; i < kWindow; ++i) {
            const double angle = 2 * std::numbers::pi * kTone * static_cast<double>(i) / kRate;
            re += m_samples[i] * std::cos(angle);
            im += m_samples[i] * std::sin(angle);
        }
        return 2 * std::hypot(re, im) / kWindow / 32768;
    }

    // Drops what was played so far.
    void forget() {
        readPipe();
        m_samples.clear();
    }

    int loudestSample() {
        readPipe();
        int loudest = 0;
        for (const std::int16_t sample : m_samples)
            loudest = std::max(loudest, std::abs(sample));
        return m_samples.size() < kWindow ? -1 : loudest;
    }

private:
    void readPipe() {
        std::array<std::int16_t, 4096> block;
        for (ssize_t bytes; (bytes = ::read(m_pipe, block.data(), sizeof block)) > 0;)
            m_samples.insert(m_samples.end(), block.begin(), block.begin() + bytes / 2);
        if (m_samples.size() > kWindow)
            m_samples.erase(m_samples.begin(), m_samples.end() - kWindow);
    }

    QTemporaryDir m_folder;
    QProcess m_daemon;
    int m_pipe = -1;
    std::vector<std::int16_t> m_samples;
};

TestClipSpec longClip(TestClipSpec spec = {}) {
    spec.size = QSize(320, 180);
    spec.frames = 8 * spec.rate;
    return spec;
}

struct PassedVolume final : WaveOut {
    explicit PassedVolume(MediaPlatform& media) : m_media(media) {}
    std::uint32_t waveOutGetVolume(std::uint32_t, std::uint32_t*) override { return 1; }
    std::uint32_t waveOutSetVolume(std::uint32_t, std::uint32_t volume) override {
        m_media.setOutputVolume(static_cast<std::uint16_t>(volume), static_cast<std::uint16_t>(volume >> 16));
        return 0;
    }

private:
    MediaPlatform& m_media;
};

struct PlayedClip {
    explicit PlayedClip(const TestClipSpec& spec) : clip(QFileInfo(makeTestClip(spec))) { play(); }
    bool play() { return view.openClip(&clip) && player.play(); }
    int frame() { return readFrameNumber(player.frame(0, true)); }

    const Clip clip;
    VideoView view;
    Player& player = *view.player();
};

} // namespace

// Evaluated once per try: a moment later the server may be late.
#define TRY_AMPLITUDE(expected) \
    QVERIFY(QTest::qWaitFor(    \
        [&] { return std::abs(m_server->amplitude() - (expected)) < 0.05 * (expected); }, kPatienceMs))

class TestSound : public QObject {
    Q_OBJECT

private:
    gstreamer::GstMediaPlatform m_media;
    PassedVolume m_volume{m_media};
    std::unique_ptr<SoundServer> m_server;

private Q_SLOTS:
    void initTestCase() {
        if (QStandardPaths::findExecutable(QStringLiteral("pulseaudio")).isEmpty())
            QSKIP("pulseaudio isn't installed");
        host().media = &m_media;
        host().waveOut = &m_volume;
    }

    void init() {
        m_server = std::make_unique<SoundServer>();
        QVERIFY(m_server->start());
        m_volume.waveOutSetVolume(0, 0xFFFFFFFF);
    }

    void volumeScalesTheTone() {
        WidgetVolume gauge;
        const auto drag = [&gauge](int level) {
            QMouseEvent move(QEvent::MouseMove, QPointF(5 * level - 1, 4), {}, Qt::NoButton, Qt::LeftButton,
                             {});
            QCoreApplication::sendEvent(&gauge, &move);
        };
        drag(4); // before there is a clip
        PlayedClip played(longClip());
        TRY_AMPLITUDE(0.125 * 0.4); // of the level at which the tone is made
        drag(8);
        TRY_AMPLITUDE(0.125 * 0.8);
        gauge.setSoundOn(false);
        QTRY_COMPARE_WITH_TIMEOUT(m_server->loudestSample(), 0, kPatienceMs);
        QVERIFY(played.player.isRunning());
        gauge.setSoundOn(true);
        TRY_AMPLITUDE(0.125 * 0.8);
        played.player.pause();
        QTRY_COMPARE_WITH_TIMEOUT(m_server->loudestSample(), 0, kPatienceMs);
    }

    void serverThatDiesTakesOnlyTheSound_data() {
        QTest::addColumn<TestClipSpec>("spec");
        QTest::addColumn<bool>("paused");
        QTest::newRow("mp4") << longClip() << false;
        QTest::newRow("avi") << longClip(aviTestClip()) << false;
        QTest::newRow("mp4, while paused") << longClip() << true;
    }
    void serverThatDiesTakesOnlyTheSound() {
        QFETCH(TestClipSpec, spec);
        QFETCH(bool, paused);
        PlayedClip played(spec);
        Player& player = played.player;
        TRY_AMPLITUDE(0.125);
        if (paused)
            player.pause();
        const auto before = player.positionMs();
        m_server->die();
        QElapsedTimer clock;
        clock.start();
        QVERIFY(player.play());
        QTRY_VERIFY_WITH_TIMEOUT(player.positionMs() > before + 1500, kPatienceMs);
        QVERIFY(player.isRunning());
        const auto late = clock.elapsed() - (player.positionMs() - before);
        QVERIFY2(std::abs(late) < 1500, qPrintable(QString::number(late)));
        player.seek(static_cast<std::int32_t>(player.durationMs() - 1000));
        QTRY_COMPARE_WITH_TIMEOUT(player.positionMs(), player.durationMs(), kPatienceMs);
        QCOMPARE(played.frame(), spec.frames - 1);

        // Without a server the next clip plays in silence.
        QVERIFY(played.play());
        QTRY_VERIFY_WITH_TIMEOUT(player.positionMs() > 500, kPatienceMs);
    }

    // Converting sound of 1 Hz for a device of 48 kHz takes 58 GB.
    void soundOfNoCommonRateIsSilent() {
        TestClipSpec spec = longClip(aviTestClip());
        QFile clip(makeTestClip(spec));
        QVERIFY(clip.open(QIODevice::ReadOnly));
        QByteArray bytes = clip.readAll();
        const qsizetype format = bytes.indexOf("strf", bytes.indexOf("auds")) + 8;
        qToLittleEndian(quint32(limits::kSlowestSound - 1), bytes.data() + format + 4);
        QTemporaryDir folder;
        QFile slow(folder.filePath(QStringLiteral("slow.avi")));
        QVERIFY(slow.open(QIODevice::WriteOnly) && slow.write(bytes) == bytes.size());
        slow.close();
        const Clip opened{QFileInfo(slow)};
        VideoView view;
        QVERIFY(view.openClip(&opened) && view.player()->play());
        QTRY_VERIFY_WITH_TIMEOUT(view.player()->positionMs() > 1500, kPatienceMs);
        QCOMPARE(m_server->loudestSample(), 0);
    }

    // All operations on the clip while the server hangs, and afterwards.
    void serverThatHangsMeanwhileHoldsUpNothing() {
        PlayedClip played(longClip());
        Player& player = played.player;
        TRY_AMPLITUDE(0.125);
        const auto inTime = [this](const std::function<bool()>& act) {
            // Ends a wait for the server.
            std::promise<void> done;
            const auto rescue = std::async(std::launch::async, [this, &done] {
                if (done.get_future().wait_for(5s) == std::future_status::timeout)
                    m_server->goOn();
            });
            m_server->hang();
            QElapsedTimer clock;
            clock.start();
            const bool accepted = act();
            done.set_value();
            return accepted && clock.elapsed() < 1500;
        };
        QVERIFY(inTime([&] { return player.pause(); }));
        QVERIFY(inTime([&] { return player.seek(1000); }));
        QTRY_COMPARE_WITH_TIMEOUT(played.frame(), 30, kPatienceMs);
        QVERIFY(inTime([&] { return player.play(); }));
        QTRY_VERIFY_WITH_TIMEOUT(player.positionMs() > 1500, kPatienceMs);
        QVERIFY(inTime([&] { return player.seek(200); }));
        QTRY_VERIFY_WITH_TIMEOUT(player.positionMs() > 700, kPatienceMs);
        m_server->forget();
        m_server->goOn();
        TRY_AMPLITUDE(0.125);
        QVERIFY(inTime([&] { return played.play(); }));
        m_server->goOn();
    }

    void serverThatHangsHoldsUpNoClip() {
        m_server->hang();
        QElapsedTimer clock;
        clock.start();
        PlayedClip played(longClip());
        for (int i = 0; i < 3; ++i) {
            QVERIFY(played.play());
            QTRY_VERIFY_WITH_TIMEOUT(played.player.positionMs() > 500, kPatienceMs);
        }
        QVERIFY(clock.elapsed() < 3 * kPatienceMs);
        m_server->goOn();
        bool isHeard = false;
        for (clock.start(); !isHeard && clock.elapsed() < 2 * kPatienceMs;)
            isHeard = played.play() && QTest::qWaitFor([&] { return m_server->amplitude() > 0.1; }, 1000);
        QVERIFY(isHeard);
    }
};

QTEST_MAIN(TestSound)
#include "test_sound.moc"
