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

const QString kTitle = "QL240 Viewer";

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

void ignored(int, const QByteArray&) {}

} // namespace

class TestRunningWindows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_folder = std::make_unique<QTemporaryDir>();
        qunsetenv("XDG_ACTIVATION_TOKEN");
        qunsetenv("DESKTOP_STARTUP_ID");
    }

    void messageArrivesWithToken() {
        const QByteArrayList rows[] = {{"", "", ""},
                                       {"abc 1", "", "abc 1"},
                                       {"", "shell/1_TIME42", "shell/1_TIME42"},
                                       {"abc", "x_TIME42", "abc"}};
        for (const QByteArrayList& row : rows) {
            qputenv("XDG_ACTIVATION_TOKEN", row[0]);
            qputenv("DESKTOP_STARTUP_ID", row[1]);
            LocalRunningWindows windows(m_folder->path());
            Received received;
            const auto announced = windows.announceWindow(kTitle, received.handler());
            QVERIFY(announced);
            QElapsedTimer clock;
            clock.start();
            send(windows, kFocusMessage);
            QVERIFY2(clock.elapsed() < 1500, "the sender waited in vain for the answer");
            QCOMPARE(received.message, kFocusMessage);
            QCOMPARE(received.token, row[2]);
        }
    }

    void titlesAreApart() {
        LocalRunningWindows windows(m_folder->path());
        auto announced = windows.announceWindow("QL240 Setting", ignored);
        QVERIFY(announced && !windows.findWindow(kTitle) && windows.findWindow("QL240 Setting"));
        announced.reset();
        QVERIFY(!windows.findWindow("QL240 Setting"));
    }

    void deadSocketIsNoWindow() {
        UniqueFd dead = rawSocket(false);
        QVERIFY(dead.isValid());
        dead = UniqueFd();
        QVERIFY(QFile::exists(QFile::decodeName(socketPath())));
        LocalRunningWindows windows(m_folder->path());
        QVERIFY(!windows.findWindow(kTitle));
        QVERIFY(windows.announceWindow(kTitle, ignored));
    }

    void freedTitleGoesToTheWaitingWindow() {
        LocalRunningWindows windows(m_folder->path());
        Received first;
        Received second;
        auto announced = windows.announceWindow(kTitle, first.handler());
        auto waiting = windows.announceWindow(kTitle, second.handler());
        // The second attempt mustn't take over the socket.
        send(windows, kFocusMessage);
        QCOMPARE(first.count, 1);
        QCOMPARE(second.count, 0);
        announced.reset();
        QTRY_VERIFY(windows.findWindow(kTitle));
        send(windows, kFocusMessage);
        QCOMPARE(first.count, 1);
        QCOMPARE(second.count, 1);
    }

    // A peer that hangs up, sends garbage, never ends its line or stays silent doesn't block others.
    void strangeClients() {
        LocalRunningWindows windows(m_folder->path());
        Received received;
        const auto announced = windows.announceWindow(kTitle, received.handler());
        int count = 0;
        for (const QByteArray& bytes : {QByteArray(), QByteArray("focus please\n"), QByteArray("7\n"),
                                        QByteArray("7 token"), QByteArray(100000, '7')}) {
            const UniqueFd client = rawSocket(true);
            QVERIFY(client.isValid());
            (void)!::send(client.get(), bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL | MSG_DONTWAIT);
            const UniqueFd silent = rawSocket(true);
            send(windows, kFocusMessage);
            QCOMPARE(received.count, ++count);
            QCOMPARE(received.message, kFocusMessage);
        }
    }

    void unusableFolder() {
        for (const QString& folder : {m_folder->filePath("missing"), m_folder->path() + QString(120, u'x')}) {
            LocalRunningWindows windows(folder);
            QVERIFY(!windows.findWindow(kTitle) && !windows.announceWindow(kTitle, ignored));
        }
    }

private:
    QByteArray socketPath() const { return QFile::encodeName(m_folder->filePath("ql240-viewer.sock")); }

    // Connected to the socket path, or bound to it.
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

    // The sender waits for the answer, so it needs another thread than the announcing one.
    static void send(LocalRunningWindows& windows, int message) {
        std::atomic<bool> done = false;
        std::thread sender([&] {
            if (auto window = windows.findWindow(kTitle))
                window->sendMessage(message);
            done = true;
        });
        // The sender's wait has a limit.
        while (!done)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        sender.join();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(TestRunningWindows)
#include "test_running_windows.moc"
