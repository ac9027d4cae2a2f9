#include "platform/linux/desktop_inhibitor.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QPointer>
#include <array>

namespace ql240 {
namespace {

struct Service {
    const char* name;
    const char* path;
    const char* interface;
};

constexpr Service kBus{"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus"};
constexpr Service kScreenSaver{"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
                               "org.freedesktop.ScreenSaver"};
constexpr Service kPowerManagement{"org.freedesktop.PowerManagement",
                                   "/org/freedesktop/PowerManagement/Inhibit",
                                   "org.freedesktop.PowerManagement.Inhibit"};
constexpr Service kLogin{"org.freedesktop.login1", "/org/freedesktop/login1",
                         "org.freedesktop.login1.Manager"};

QDBusMessage call(const Service& service, const char* method, const QVariantList& arguments = {}) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(QLatin1String(service.name), QLatin1String(service.path),
                                       QLatin1String(service.interface), QLatin1String(method));
    message.setAutoStartService(false);
    message.setArguments(arguments);
    return message;
}

QString sessionBusAddress() {
    const QString given = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    const QString usual = qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus");
    if (!given.isEmpty() || !QFile::exists(usual))
        return given;
    return QStringLiteral("unix:path=") + usual;
}

QString systemBusAddress() {
    const QString given = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
    return given.isEmpty() ? QStringLiteral("unix:path=/var/run/dbus/system_bus_socket") : given;
}

// A connection that nothing waits for: opened as to a peer, since joining a bus in the usual way blocks until
// the bus answers.
QDBusConnection joinedBus(const QString& address, const QString& name) {
    QDBusConnection bus(name);
    if (bus.isConnected() || address.isEmpty())
        return bus;
    QDBusConnection::disconnectFromPeer(name);
    bus = QDBusConnection::connectToPeer(address, name);
    if (bus.isConnected())
        bus.asyncCall(call(kBus, "Hello"));
    return bus;
}

// One request to one service. Deletes itself once it is let go and the service has answered.
class Inhibition : public QObject {
public:
    Inhibition(const QDBusConnection& bus, const Service& service, const QVariantList& arguments)
        : m_bus(bus), m_service(service) {
        auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(call(service, "Inhibit", arguments)), this);
        connect(answer, &QDBusPendingCallWatcher::finished, this, &Inhibition::take);
    }

    void letGo() {
        m_wanted = false;
        if (m_answered)
            end();
    }

private:
    void take(QDBusPendingCallWatcher* answer) {
        m_answered = true;
        const QDBusMessage reply = answer->reply();
        if (reply.type() == QDBusMessage::ReplyMessage)
            m_held = reply.arguments().value(0);
        if (!m_wanted)
            end();
    }

    // A file descriptor is let go by closing it, a number by giving it back.
    void end() {
        if (m_held.userType() == QMetaType::UInt)
            m_bus.send(call(m_service, "UnInhibit", {m_held}));
        deleteLater();
    }

    QDBusConnection m_bus;
    const Service& m_service;
    QVariant m_held;
    bool m_wanted = true;
    bool m_answered = false;
};

class Hold {
public:
    explicit Hold(const QString& reason) {
        const QString program = QStringLiteral("QL240 Viewer");
        const QDBusConnection session = joinedBus(sessionBusAddress(), QStringLiteral("ql240-session"));
        const QDBusConnection system = joinedBus(systemBusAddress(), QStringLiteral("ql240-system"));
        m_inhibitions[0] = ask(session, kScreenSaver, {program, reason});
        m_inhibitions[1] = ask(session, kPowerManagement, {program, reason});
        m_inhibitions[2] =
            ask(system, kLogin, {QStringLiteral("idle"), program, reason, QStringLiteral("block")});
    }
    ~Hold() {
        for (const QPointer<Inhibition>& inhibition : m_inhibitions) {
            if (inhibition)
                inhibition->letGo();
        }
    }
    Q_DISABLE_COPY_MOVE(Hold)

private:
    static Inhibition* ask(const QDBusConnection& bus, const Service& service,
                           const QVariantList& arguments) {
        return bus.isConnected() ? new Inhibition(bus, service, arguments) : nullptr;
    }

    std::array<QPointer<Inhibition>, 3> m_inhibitions;
};

} // namespace

std::shared_ptr<void> DesktopInhibitor::keepAwake(const QString& reason) {
    return std::make_shared<Hold>(reason);
}

} // namespace ql240
