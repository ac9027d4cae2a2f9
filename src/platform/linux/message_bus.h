// D-Bus connections that don't block: opened with connectToPeer(), after which the caller sends Hello itself,
// because connectToBus() blocks until the bus answers and gives up after 25 s. Any thread.
#pragma once

#include <QDBusMessage>
#include <QVariantList>

namespace ql240 {

struct BusService {
    const char* name;
    const char* path;
    const char* interface;
};

QDBusMessage busCall(const BusService& service, const char* method, const QVariantList& arguments = {});

// The message that a new connection has to send first.
QDBusMessage busHello();

// From the environment, or the usual address; the session bus's is empty if there is none.
QString sessionBusAddress();
QString systemBusAddress();

} // namespace ql240
