// Message buses, joined without waiting where nobody may wait: a connection is opened as to a peer and says
// hello itself, since joining in the usual way blocks until the bus answers, and gives up after 25 s. Any
// thread.
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

// What a peer has to say first.
QDBusMessage busHello();

// As the environment has them, or where they usually are; the session's is empty where there is none.
QString sessionBusAddress();
QString systemBusAddress();

} // namespace ql240
