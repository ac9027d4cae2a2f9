#include "platform/linux/udisks_drives.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QFile>
#include <QMap>
#include <QVariantMap>
#include <algorithm>
#include <atomic>
#include <limits>
#include <vector>

#include "platform/linux/message_bus.h"
#include "platform/logging.h"

namespace ql240 {
namespace {

constexpr int kNoLimit = std::numeric_limits<int>::max(); // libdbus waits forever; smaller values are ms

using Interfaces = QMap<QString, QVariantMap>;
using ManagedObjects = QMap<QString, Interfaces>;

// A new connection for each query: the process's shared one would outlive a restarted bus. No call times out,
// since the bus or the service may answer late.
class BusConnection {
public:
    BusConnection()
        : m_name(uniqueName()), m_bus(QDBusConnection::connectToPeer(systemBusAddress(), m_name)) {}
    ~BusConnection() { QDBusConnection::disconnectFromPeer(m_name); }
    Q_DISABLE_COPY_MOVE(BusConnection)

    bool join() {
        if (!m_bus.isConnected()) {
            qCWarning(lcCard) << "no system bus at" << systemBusAddress();
            return false;
        }
        return ask(busHello()).type() == QDBusMessage::ReplyMessage;
    }

    QDBusMessage ask(const QDBusMessage& question) {
        const QDBusMessage answer = m_bus.call(question, QDBus::Block, kNoLimit);
        if (answer.type() == QDBusMessage::ErrorMessage)
            qCWarning(lcCard) << question.member() << answer.errorName() << answer.errorMessage();
        return answer;
    }

private:
    static QString uniqueName() {
        static std::atomic<unsigned> count = 0;
        return QStringLiteral("ql240-drives-%1").arg(++count);
    }

    QString m_name;
    QDBusConnection m_bus;
};

ManagedObjects managedObjects(const QDBusMessage& reply) {
    ManagedObjects objects;
    if (reply.signature() != QLatin1String("a{oa{sa{sv}}}"))
        return objects;
    const auto argument = reply.arguments().constFirst().value<QDBusArgument>();
    argument.beginMap();
    while (!argument.atEnd()) {
        QDBusObjectPath path;
        Interfaces interfaces;
        argument.beginMapEntry();
        argument >> path;
        argument.beginMap();
        while (!argument.atEnd()) {
            QString name;
            QVariantMap properties;
            argument.beginMapEntry();
            argument >> name >> properties;
            argument.endMapEntry();
            interfaces.insert(name, properties);
        }
        argument.endMap();
        argument.endMapEntry();
        objects.insert(path.path(), interfaces);
    }
    argument.endMap();
    return objects;
}

// UDisks2 byte strings end in a NUL.
QByteArray byteString(QByteArray bytes) {
    while (bytes.endsWith('\0'))
        bytes.chop(1);
    return bytes;
}

// The first mount point other than the root folder (a card is never the system itself), without trailing
// slash.
QString mountPoint(const QVariant& value) {
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("aay"))
        return {};
    QString found;
    argument.beginArray();
    while (!argument.atEnd()) {
        QByteArray bytes;
        argument >> bytes;
        QString path = QFile::decodeName(byteString(bytes));
        while (path.endsWith(u'/'))
            path.chop(1);
        if (found.isEmpty())
            found = path;
    }
    argument.endArray();
    return found;
}

// Whether the drive takes cards or is a USB stick; many sticks report their medium as not removable. That
// the drive itself can be unplugged doesn't matter: so can a USB hard disk.
bool isRemovable(const Interfaces& drive) {
    const QVariantMap properties = drive.value(QStringLiteral("org.freedesktop.UDisks2.Drive"));
    QStringList media = properties.value(QStringLiteral("MediaCompatibility")).toStringList();
    media.append(properties.value(QStringLiteral("Media")).toString());
    const bool optical = properties.value(QStringLiteral("Optical")).toBool() ||
                         std::any_of(media.cbegin(), media.cend(), [](const QString& medium) {
                             return medium.startsWith(QLatin1String("optical"));
                         });
    return !optical && (properties.value(QStringLiteral("MediaRemovable")).toBool() ||
                        media.contains(QLatin1String("thumb")));
}

struct Volume {
    QByteArray device;
    DriveInfo info;
};

QList<DriveInfo> removableVolumes(const ManagedObjects& objects) {
    std::vector<Volume> volumes;
    for (const Interfaces& object : objects) {
        const QVariantMap block = object.value(QStringLiteral("org.freedesktop.UDisks2.Block"));
        const auto drive = block.value(QStringLiteral("Drive")).value<QDBusObjectPath>().path();
        if (!isRemovable(objects.value(drive)))
            continue;
        const QVariantMap fileSystem = object.value(QStringLiteral("org.freedesktop.UDisks2.Filesystem"));
        const QString path = mountPoint(fileSystem.value(QStringLiteral("MountPoints")));
        if (path.isEmpty())
            continue;
        volumes.push_back({byteString(block.value(QStringLiteral("Device")).toByteArray()),
                           {path, block.value(QStringLiteral("IdLabel")).toString().toLocal8Bit(),
                            block.value(QStringLiteral("IdType")).toString().toLocal8Bit()}});
    }
    std::stable_sort(volumes.begin(), volumes.end(),
                     [](const Volume& a, const Volume& b) { return a.device < b.device; });
    QList<DriveInfo> drives;
    qCDebug(lcCard) << "the drive service named" << objects.size() << "objects," << volumes.size()
                    << "of them volumes of a card or stick";
    for (const Volume& volume : volumes) {
        qCDebug(lcCard) << QString::fromLocal8Bit(volume.device) << volume.info.drive
                        << QString::fromLocal8Bit(volume.info.fileSystem)
                        << QString::fromLocal8Bit(volume.info.label);
        drives.append(volume.info);
    }
    return drives;
}

} // namespace

QList<DriveInfo> UDisksDrives::removableDrives() {
    BusConnection bus;
    if (!bus.join())
        return {};
    const QDBusMessage question =
        busCall({"org.freedesktop.UDisks2", "/org/freedesktop/UDisks2", "org.freedesktop.DBus.ObjectManager"},
                "GetManagedObjects");
    return removableVolumes(managedObjects(bus.ask(question)));
}

} // namespace ql240
