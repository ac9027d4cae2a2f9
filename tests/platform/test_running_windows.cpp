#include <sys/socket.h>
#include <sys/un.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <thread>

#include "platform/linux/local_running_windows.h"
#include "platform/linux/unique_fd.h"

using namespace ql240;

namespace {

const QString kTitle = QStringLiteral("QL240 Viewer");

struct Received {
    int message = -1;
    QByteArray token;
    int count = 0;

    MessageHandler handler() {
        return [this](int number, const QByteArray& text) {
            message = number;
            token = text;
            ++count;
        };
    }
};

} // namespace

class TestRunningWindows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_folder = std::make_unique<QTemporaryDir>();
        qunsetenv("XDG_ACTIVATION_TOKEN");
        qunsetenv("DESKTOP_STARTUP_ID");
    }

    void messageArrivesWithToken_data() {
        QTest::addColumn<QByteArray>("wayland");
        QTest::addColumn<QByteArray>("x11");
        QTest::addColumn<QByteArray>("token");
        QTest::newRow("none") << QByteArray() << QByteArray() << QByteArray();
        QTest::newRow("wayland") << QByteArray("abc 1") << QByteArray() << QByteArray("abc 1");
        QTest::newRow("x11") << QByteArray() << QByteArray("shell/1_TIME42") << QByteArray("shell/1_TIME42");
        QTest::newRow("both") << QByteArray("abc") << QByteArray("x_TIME42") << QByteArray("abc");
    }
    void messageArrivesWithToken() {
        QFETCH(QByteArray, wayland);
        QFETCH(QByteArray, x11);
        qputenv("XDG_ACTIVATION_TOKEN", wayland);
        qputenv("DESKTOP_STARTUP_ID", x11);
        LocalRunningWindows windows(m_folder->path());
        Received received;
        const auto announced = windows.announceWindow(kTitle, received.handler());
        QVERIFY(announced);
        QElapsedTimer clock;
        clock.start();
        send(windows, kFocusMessage);
        QVERIFY2(clock.elapsed() < 1500, "the sender waited in vain for the answer");
        QCOMPARE(received.message, kFocusMessage);
        QTEST(received.token, "token");
    }

    void titlesAreApart() {
        LocalRunningWindows windows(m_folder->path());
        Received received;
        auto announced = windows.announceWindow(QStringLiteral("QL240 Setting"), received.handler());
        QVERIFY(announced);
        QVERIFY(!windows.findWindow(kTitle));
        QVERIFY(windows.findWindow(QStringLiteral("QL240 Setting")));
        announced.reset();
        QVERIFY(!windows.findWindow(QStringLiteral("QL240 Setting")));
    }

    void deadSocketIsNoWindow() {
        UniqueFd dead = rawSocket(false);
        QVERIFY(dead.isValid());
        dead = UniqueFd();
        QVERIFY(QFile::exists(QFile::decodeName(socketPath())));
        LocalRunningWindows windows(m_folder->path());
        QVERIFY(!windows.findWindow(kTitle));
        Received received;
        QVERIFY(windows.announceWindow(kTitle, received.handler()));
    }

    void freedTitleGoesToWhoWaits() {
        LocalRunningWindows windows(m_folder->path());
        Received first;
        Received second;
        auto announced = windows.announceWindow(kTitle, first.handler());
        auto waiting = windows.announceWindow(kTitle, second.handler());
        // The second attempt must not have taken the socket away.
        send(windows, kFocusMessage);
        QCOMPARE(first.count, 1);
        QCOMPARE(second.count, 0);
        announced.reset();
        QTRY_VERIFY(windows.findWindow(kTitle));
        send(windows, kFocusMessage);
        QCOMPARE(first.count, 1);
        QCOMPARE(second.count, 1);
    }

    void strangeClients_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("hangs up at once") << QByteArray();
        QTest::newRow("no number") << QByteArray("focus please\n");
        QTest::newRow("no space") << QByteArray("7\n");
        QTest::newRow("no end of line") << QByteArray("7 token");
        QTest::newRow("binary") << QByteArray("\0\xff\xfe 7 \n", 7);
        QTest::newRow("endless line") << QByteArray(100000, '7');
    }
    void strangeClients() {
        QFETCH(QByteArray, bytes);
        LocalRunningWindows windows(m_folder->path());
        Received received;
        const auto announced = windows.announceWindow(kTitle, received.handler());
        {
            const UniqueFd client = rawSocket(true);
            QVERIFY(client.isValid());
            (void)!::send(client.get(), bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL | MSG_DONTWAIT);
            const UniqueFd silent = rawSocket(true);
            send(windows, kFocusMessage);
        }
        QCOMPARE(received.count, 1);
        QCOMPARE(received.message, kFocusMessage);
    }

    void unusableFolder() {
        LocalRunningWindows missing(m_folder->filePath(QStringLiteral("missing")));
        LocalRunningWindows tooLong(m_folder->path() + QString(120, QLatin1Char('x')));
        Received received;
        for (auto* windows : {&missing, &tooLong}) {
            QVERIFY(!windows->findWindow(kTitle));
            QVERIFY(!windows->announceWindow(kTitle, received.handler()));
        }
    }

private:
    QByteArray socketPath() const {
        return QFile::encodeName(m_folder->filePath(QStringLiteral("ql240-viewer.sock")));
    }

    // Bound to the socket path, or connected to whoever is.
    UniqueFd rawSocket(bool connected) const {
        UniqueFd fd(socket(AF_UNIX, SOCK_STREAM, 0));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, socketPath().constData(), sizeof address.sun_path);
        const auto* generic = reinterpret_cast<const sockaddr*>(&address);
        const int result = connected ? ::connect(fd.get(), generic, sizeof address)
                                     : ::bind(fd.get(), generic, sizeof address);
        return result == 0 ? std::move(fd) : UniqueFd();
    }

    // The sender waits for the answer, so it needs a thread beside the announcing one.
    static void send(LocalRunningWindows& windows, int message) {
        std::atomic<bool> done = false;
        std::thread sender([&] {
            if (auto window = windows.findWindow(kTitle))
                window->sendMessage(message);
            done = true;
        });
        // The thread ends by itself: the wait for an answer has a bound.
        while (!done)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        sender.join();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(TestRunningWindows)
#include "test_running_windows.moc"
