// The same clips read by ExifTool: positions, speeds, accelerations and their times agree. Skipped without
// it.
#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>

#include "clips/formats/sensor_file_library.h"
#include "support/sensor_clips.h"

namespace ql240 {
namespace {

using Document = QMap<QString, QJsonValue>;

// The numbered documents of ExifTool's answer, one a sample.
QMap<int, Document> documentsOf(const QByteArray& json) {
    QMap<int, Document> documents;
    const QJsonObject all = QJsonDocument::fromJson(json).array().at(0).toObject();
    for (auto it = all.begin(); it != all.end(); ++it) {
        const QStringList parts = it.key().split(QLatin1Char(':'));
        if (parts.size() == 2 && parts[0].startsWith(QStringLiteral("Doc")))
            documents[parts[0].mid(3).toInt()][parts[1]] = it.value();
    }
    return documents;
}

// Three numbers of a text, multiplied.
QList<double> triple(const QJsonValue& value, char separator, double factor) {
    const QStringList parts = value.toString().split(QLatin1Char(separator));
    QList<double> numbers;
    for (const QString& part : parts.mid(parts.size() - 3))
        numbers.append(part.toDouble() * factor);
    return numbers;
}

// Nothing where the document has none.
QList<double> accelerationOf(const Document& document) {
    if (document.contains(QStringLiteral("Acceleration")))
        return triple(document[QStringLiteral("Acceleration")], ' ', 128 / 9.80665);
    if (document.contains(QStringLiteral("GSensor")))
        return triple(document[QStringLiteral("GSensor")], ',', 128.0 / 512);
    if (!document.contains(QStringLiteral("Accelerometer")))
        return {};
    const double perUnit =
        document.contains(QStringLiteral("TimeCode")) ? 10 : 128; // it divides "3gf " by ten
    return triple(document[QStringLiteral("Accelerometer")], ' ', perUnit);
}

double speedOf(const Document& document) {
    if (document.contains(QStringLiteral("GPSVelocityEast"))) {
        return 3.6 * std::hypot(document[QStringLiteral("GPSVelocityEast")].toDouble(),
                                document[QStringLiteral("GPSVelocityNorth")].toDouble());
    }
    return document[QStringLiteral("GPSSpeed")].toDouble(-1);
}

// When each document is, in ms from the clip's start.
class DocumentClock {
public:
    qint64 msOf(const Document& document) {
        for (const char* name : {"SampleTime", "TimeCode"})
            if (document.contains(QLatin1StringView(name)))
                return std::llround(document[QLatin1StringView(name)].toDouble() * 1000);
        if (!document.contains(QStringLiteral("GPSDateTime")))
            return 200 * m_timeless++;
        const QDateTime clock =
            QDateTime::fromString(document[QStringLiteral("GPSDateTime")].toString().left(19),
                                  QStringLiteral("yyyy:MM:dd hh:mm:ss"));
        m_first = m_first.isValid() ? m_first : clock;
        return m_first.msecsTo(clock);
    }

private:
    QDateTime m_first;
    qint64 m_timeless = 0;
};

} // namespace

class TestSensorExifTool : public QObject {
    Q_OBJECT

private:
    SensorFileLibrary m_library;
    SensorLibrary::Handle m_handle = 0;

    void comparePosition(const Document& document, qint64 timeMs) {
        qint32 latitude = 0;
        qint32 longitude = 0;
        qint32 speed = 0;
        std::int8_t north = 0;
        std::int8_t east = 0;
        QVERIFY(m_library.getLatLonSpeed(m_handle, timeMs, &latitude, &longitude, &north, &east, &speed) !=
                0);
        const bool noFix = document[QStringLiteral("GPSMeasureMode")].toInt(3) == 0;
        const double told = noFix ? 0 : 1e6;
        QVERIFY(std::abs((north == 'N' ? latitude : -latitude) -
                         told * document[QStringLiteral("GPSLatitude")].toDouble()) < 0.501);
        QVERIFY(std::abs((east == 'E' ? longitude : -longitude) -
                         told * document[QStringLiteral("GPSLongitude")].toDouble()) < 0.501);
        if (speedOf(document) >= 0 && latitude != 0)
            QVERIFY(std::abs(speed - speedOf(document)) < 0.501);
    }

    void compareAcceleration(const Document& document, qint64 timeMs) {
        qint16 x = 0;
        qint16 y = 0;
        qint16 z = 0;
        QVERIFY(m_library.getAccXYZ(m_handle, timeMs, &x, &y, &z) != 0);
        const QList<double> told = accelerationOf(document);
        QVERIFY(std::abs(x - told[0]) < 0.501 && std::abs(y - told[1]) < 0.501 &&
                std::abs(z - told[2]) < 0.501);
    }

private Q_SLOTS:
    void agrees_data() {
        if (QStandardPaths::findExecutable(QStringLiteral("exiftool")).isEmpty())
            QSKIP("exiftool isn't installed (libimage-exiftool-perl): its reading was not compared");
        QTest::addColumn<QByteArray>("clip");
        QTest::addColumn<int>("positions");
        QTest::addColumn<int>("accelerations");
        const QMap<QByteArray, std::pair<int, int>> read{
            {"motion", {3, 2}},   {"place", {4, 4}},    {"gps-index", {3, 0}}, {"text", {2, 1}},
            {"free-log", {2, 2}}, {"gps0-mp4", {3, 2}}, {"gps0-avi", {3, 2}}};
        for (const madeclips::NamedClip& clip : madeclips::clipsOfAllFormats()) {
            if (read.contains(clip.name)) {
                const auto [positions, accelerations] = read[clip.name];
                QTest::newRow(clip.name.constData()) << clip.bytes << positions << accelerations;
            }
        }
    }
    void agrees() {
        QFETCH(QByteArray, clip);
        QTemporaryDir folder;
        QFile file(
            folder.filePath(clip.startsWith("RIFF") ? QStringLiteral("a.avi") : QStringLiteral("a.mp4")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(clip);
        file.close();
        QProcess exiftool;
        exiftool.start(QStringLiteral("exiftool"),
                       {QStringLiteral("-ee"), QStringLiteral("-n"), QStringLiteral("-G3"),
                        QStringLiteral("-j"), file.fileName()});
        QVERIFY(exiftool.waitForFinished());
        m_handle = m_library.getInformationData(file.fileName().toLocal8Bit().constData());
        QVERIFY(m_handle != 0);
        int positions = 0;
        int accelerations = 0;
        DocumentClock clock;
        for (const Document& document : documentsOf(exiftool.readAllStandardOutput())) {
            const qint64 timeMs = clock.msOf(document);
            if (document.contains(QStringLiteral("GPSLatitude"))) {
                comparePosition(document, timeMs);
                ++positions;
            }
            if (!accelerationOf(document).isEmpty()) {
                compareAcceleration(document, timeMs);
                ++accelerations;
            }
            if (QTest::currentTestFailed())
                return;
        }
        QTEST(positions, "positions");
        QTEST(accelerations, "accelerations");
    }
};

} // namespace ql240

QTEST_GUILESS_MAIN(ql240::TestSensorExifTool)
#include "test_sensor_exiftool.moc"
