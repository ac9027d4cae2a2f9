// Keeping the desktop awake, with services on a private bus.
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QElapsedTimer>
#include <QTest>

#include "platform/linux/desktop_inhibitor.h"
#include "support/private_bus.h"

using namespace ql240;
namespace {

constexpr int kLongestMs = 100;
constexpr char kSession[] = "test-services";

} // namespace

// A service that hands out numbers, at once or when the test says so.
class NumberService : public QObject, protected QDBusContext {
    Q_OBJECT
public:
    QList<uint> held;
    QStringList reasons;
    bool slow = false;
    QList<QDBusMessage> waiting;

    void answerWaiting() {
        for (const QDBusMessage& call : std::exchange(waiting, {}))
            QDBusConnection(kSession).send(call.createReply(give()));
    }

public Q_SLOTS:
    uint Inhibit(const QString& program, const QString& reason) {
        reasons << program + ": " + reason;
        if (!slow)
            return give();
        setDelayedReply(true);
        waiting << message();
        return 0;
    }
    void UnInhibit(uint number) { held.removeOne(number); }

private:
    uint give() {
        held << ++m_last;
        return m_last;
    }
    uint m_last = 40;
};

struct ScreenSaverService : NumberService {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.ScreenSaver")
};

struct PowerService : NumberService {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.PowerManagement.Inhibit")
};

// Hands out one end of a pipe, as the login manager does.
class LoginService : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")
public:
    QStringList asked;
    ~LoginService() override { ::close(m_readEnd); }
    bool isHeld() const {
        pollfd end{m_readEnd, POLLIN, 0};
        return m_readEnd >= 0 && ::poll(&end, 1, 0) == 0;
    }

public Q_SLOTS:
    QDBusUnixFileDescriptor Inhibit(const QString& what, const QString&, const QString&,
                                    const QString& mode) {
        asked << what << mode;
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0)
            return {};
        m_readEnd = ends[0];
        QDBusUnixFileDescriptor descriptor;
        descriptor.giveFileDescriptor(ends[1]);
        return descriptor;
    }

private:
    int m_readEnd = -1;
};

class TestDesktopInhibitor : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        if (!m_bus.start())
            QSKIP("dbus-daemon isn't installed");
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
        auto bus = QDBusConnection::connectToBus(m_bus.address(), kSession);
        const auto offer = [&bus](const char* name, const char* path, QObject* service) {
            QVERIFY(bus.registerObject(path, service, QDBusConnection::ExportAllSlots));
            QVERIFY(bus.registerService(name));
        };
        offer("org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver", &m_screenSaver);
        offer("org.freedesktop.PowerManagement", "/org/freedesktop/PowerManagement/Inhibit", &m_power);
        offer("org.freedesktop.login1", "/org/freedesktop/login1", &m_login);
    }

    void cleanupTestCase() { QDBusConnection::disconnectFromBus(kSession); }

    void heldAndLetGo() {
        auto hold = m_inhibitor.keepAwake("A clip is playing");
        QTRY_COMPARE(m_screenSaver.held.size(), 1);
        QTRY_COMPARE(m_power.held.size(), 1);
        QTRY_VERIFY(m_login.isHeld());
        QCOMPARE(m_screenSaver.reasons, QStringList{"QL240 Viewer: A clip is playing"});
        QCOMPARE(m_login.asked, (QStringList{"idle", "block"}));
        hold.reset();
        QTRY_VERIFY(m_screenSaver.held.isEmpty());
        QTRY_VERIFY(m_power.held.isEmpty());
        QTRY_VERIFY(!m_login.isHeld());
    }

    void letGoBeforeTheAnswer() {
        m_screenSaver.slow = true;
        auto hold = m_inhibitor.keepAwake("short");
        QTRY_COMPARE(m_screenSaver.waiting.size(), 1);
        hold.reset();
        m_screenSaver.slow = false;
        m_screenSaver.answerWaiting();
        QCOMPARE(m_screenSaver.held.size(), 1);
        QTRY_VERIFY(m_screenSaver.held.isEmpty());
    }

    // With a silent bus, and without one.
    void neverBlocks() {
        for (const bool running : {true, false}) {
            running ? m_bus.freeze(true) : m_bus.stop();
            QElapsedTimer clock;
            clock.start();
            m_inhibitor.keepAwake("silence").reset();
            const qint64 took = clock.elapsed();
            m_bus.freeze(false);
            QVERIFY2(took < kLongestMs, qPrintable(QString::number(took)));
        }
    }

private:
    PrivateBus m_bus;
    ScreenSaverService m_screenSaver;
    PowerService m_power;
    LoginService m_login;
    DesktopInhibitor m_inhibitor;
};

QTEST_GUILESS_MAIN(TestDesktopInhibitor)
#include "test_desktop_inhibitor.moc"
