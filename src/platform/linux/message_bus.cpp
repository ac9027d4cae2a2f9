#include "platform/linux/message_bus.h"

#include <QFile>

namespace ql240 {

QDBusMessage busCall(const BusService& service, const char* method, const QVariantList& arguments) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(QLatin1String(service.name), QLatin1String(service.path),
                                       QLatin1String(service.interface), QLatin1String(method));
    message.setArguments(arguments);
    return message;
}

QDBusMessage busHello() {
    return busCall({"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus"}, "Hello");
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

} // namespace ql240
