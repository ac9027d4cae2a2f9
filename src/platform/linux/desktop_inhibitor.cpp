#include "platform/linux/desktop_inhibitor.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QPointer>
#include <array>

#include "platform/linux/message_bus.h"
#include "platform/logging.h"

namespace ql240 {
namespace {

constexpr BusService kScreenSaver{"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
                                  "org.freedesktop.ScreenSaver"};
constexpr BusService kPowerManagement{"org.freedesktop.PowerManagement",
                                      "/org/freedesktop/PowerManagement/Inhibit",
                                      "org.freedesktop.PowerManagement.Inhibit"};
constexpr BusService kLogin{"org.freedesktop.login1", "/org/freedesktop/login1",
                            "org.freedesktop.login1.Manager"};

// Doesn't start a service that isn't running.
QDBusMessage call(const BusService& service, const char* method, const QVariantList& arguments) {
    QDBusMessage message = busCall(service, method, arguments);
    message.setAutoStartService(false);
    return message;
}

// A connection that is opened without blocking.
QDBusConnection joinedBus(const QString& address, const QString& name) {
    QDBusConnection bus(name);
    if (bus.isConnected() || address.isEmpty())
        return bus;
    QDBusConnection::disconnectFromPeer(name);
    bus = QDBusConnection::connectToPeer(address, name);
    if (bus.isConnected())
        bus.asyncCall(busHello());
    return bus;
}

// One request to one service. Deletes itself once it was released and the service has answered.
class Inhibition : public QObject {
public:
    Inhibition(const QDBusConnection& bus, const BusService& service, const QVariantList& arguments)
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
        qCDebug(lcDesktop) << m_service.name << "to staying awake:" << reply.errorMessage() << m_held;
        if (!m_wanted)
            end();
    }

    // A file descriptor is released by closing it, a cookie by passing it to UnInhibit.
    void end() {
        if (m_held.userType() == QMetaType::UInt)
            m_bus.send(call(m_service, "UnInhibit", {m_held}));
        deleteLater();
    }

    QDBusConnection m_bus;
    const BusService& m_service;
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
    static Inhibition* ask(const QDBusConnection& bus, const BusService& service,
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
