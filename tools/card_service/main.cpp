// Answers on the bus of DBUS_SYSTEM_BUS_ADDRESS in place of UDisks2, with drives made from the given folders.
// Lets anyone try the settings tool with a folder as the card (scripts/demo-card-service), and serves the
// tests of the drive list.
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QFile>
#include <QRegularExpression>
#include <QTextStream>
#include <QTimer>

namespace {

using Interfaces = QMap<QString, QVariantMap>;
using ManagedObjects = QMap<QDBusObjectPath, Interfaces>;
using ByteStrings = QList<QByteArray>;

// "key=value,key=value": device, mount (repeatable), label, type, removable, media-removable, media, fits
// (the media that the drive takes, separated by spaces), optical.
using DriveText = QMultiMap<QString, QString>;

DriveText parseDrive(const QString& text) {
    DriveText drive;
    // Not at a comma within a folder's name, which no key follows.
    static const QRegularExpression comma(QStringLiteral(",(?=[a-z-]+=)"));
    const QStringList parts = text.split(comma);
    for (const QString& part : parts)
        drive.insert(part.section(u'=', 0, 0), part.section(u'=', 1));
    return drive;
}

QByteArray byteString(const QString& text) {
    return QFile::encodeName(text) + '\0';
}

ByteStrings mountPoints(const DriveText& drive) {
    ByteStrings points;
    const QStringList mounts = drive.values(QStringLiteral("mount"));
    for (const QString& mount : mounts)
        points.prepend(byteString(mount));
    return points;
}

void addDrive(ManagedObjects& objects, const DriveText& drive, int number) {
    const QString root = QStringLiteral("/org/freedesktop/UDisks2/");
    const QString yes = QStringLiteral("1");
    const QDBusObjectPath drivePath(root + QStringLiteral("drives/d%1").arg(number));
    const QDBusObjectPath blockPath(root + QStringLiteral("block_devices/b%1").arg(number));
    objects[drivePath][QStringLiteral("org.freedesktop.UDisks2.Drive")] = {
        {QStringLiteral("Removable"), drive.value(QStringLiteral("removable"), yes) == yes},
        {QStringLiteral("MediaRemovable"), drive.value(QStringLiteral("media-removable"), yes) == yes},
        {QStringLiteral("Media"), drive.value(QStringLiteral("media"))},
        {QStringLiteral("MediaCompatibility"), drive.value(QStringLiteral("fits")).split(u' ')},
        {QStringLiteral("Optical"), drive.value(QStringLiteral("optical")) == yes}};
    const QString device =
        drive.value(QStringLiteral("device"), QStringLiteral("/dev/sd%1").arg(QChar(u'b' + number)));
    objects[blockPath][QStringLiteral("org.freedesktop.UDisks2.Block")] = {
        {QStringLiteral("Device"), byteString(device)},
        {QStringLiteral("Drive"), QVariant::fromValue(drivePath)},
        {QStringLiteral("IdLabel"), drive.value(QStringLiteral("label"))},
        {QStringLiteral("IdType"), drive.value(QStringLiteral("type"), QStringLiteral("vfat"))}};
    if (drive.contains(QStringLiteral("mount"))) {
        objects[blockPath][QStringLiteral("org.freedesktop.UDisks2.Filesystem")] = {
            {QStringLiteral("MountPoints"), QVariant::fromValue(mountPoints(drive))}};
    }
}

class Service : public QDBusVirtualObject {
public:
    Service(QVariant answer, int answerAfterMs)
        : m_answer(std::move(answer)), m_answerAfterMs(answerAfterMs) {}

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.member() != u"GetManagedObjects")
            return false;
        QTimer::singleShot(m_answerAfterMs, this,
                           [this, message, connection] { connection.send(message.createReply(m_answer)); });
        return true;
    }

private:
    QVariant m_answer;
    int m_answerAfterMs;
};

QCommandLineOption option(const char* name, const char* description, const char* value = "") {
    return QCommandLineOption(QLatin1String(name), QString::fromUtf8(description), QString::fromUtf8(value));
}

ManagedObjects objectsOf(const QStringList& drives) {
    ManagedObjects objects;
    for (int i = 0; i < drives.size(); ++i)
        addDrive(objects, parseDrive(drives[i]), i);
    return objects;
}

bool serve(Service& service) {
    QDBusConnection bus = QDBusConnection::systemBus();
    if (bus.registerVirtualObject(QStringLiteral("/org/freedesktop/UDisks2"), &service,
                                  QDBusConnection::SubPath) &&
        bus.registerService(QStringLiteral("org.freedesktop.UDisks2")))
        return true;
    QTextStream(stderr) << "There is no bus, or somebody else answers for its drives. "
                        << bus.lastError().message() << '\n';
    return false;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    qDBusRegisterMetaType<Interfaces>();
    qDBusRegisterMetaType<ManagedObjects>();
    qDBusRegisterMetaType<ByteStrings>();

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Shows folders as removable drives to the programs on the same system bus."));
    parser.addHelpOption();
    const auto drive =
        option("drive", "One drive; may be repeated.", "mount=FOLDER,label=TEXT,device=NAME,…");
    const auto after = option("answer-after", "Wait before each answer.", "milliseconds");
    const auto nonsense = option("nonsense", "Answer with something of another type.");
    parser.addOptions({drive, after, nonsense});
    parser.process(app);

    const QVariant drives = QVariant::fromValue(objectsOf(parser.values(drive)));
    Service service(parser.isSet(nonsense) ? QVariant(42) : drives, parser.value(after).toInt());
    if (!serve(service))
        return 1;
    QTextStream(stdout) << "ready\n" << Qt::flush;
    return QCoreApplication::exec();
}
