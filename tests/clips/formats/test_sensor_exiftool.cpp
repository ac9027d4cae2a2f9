// The same clips read by ExifTool: positions, speeds, headings, altitudes, clocks, accelerations and their
// times agree. Skipped without it.
#include <QBuffer>
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
#include <QTimeZone>
#include <cmath>

#include "clips/record_reader.h"
#include "support/sensor_clips.h"

namespace ql240 {
namespace {

using namespace madeclips;
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

double numberOf(const Document& document, const char* name) {
    return document[QLatin1StringView(name)].toVariant().toString().isEmpty()
               ? RecordedFix::kNothing
               : document[QLatin1StringView(name)].toVariant().toDouble();
}

// The last three numbers of a text in g; nothing where the document has none.
QList<double> accelerationOf(const Document& document) {
    const struct {
        const char* name;
        char separator;
        double perG;
    } rows[] = {{"Acceleration", ' ', 9.80665},
                {"GSensor", ',', 512},
                // It divides the counts of "3gf " by ten.
                {"Accelerometer", ' ', document.contains(QStringLiteral("TimeCode")) ? 12.8 : 1}};
    for (const auto& row : rows) {
        const QStringList parts =
            document[QLatin1StringView(row.name)].toString().split(QLatin1Char(row.separator));
        if (parts.size() >= 3) {
            const auto at = [&](int i) { return parts[parts.size() - 3 + i].toDouble() / row.perG; };
            return {at(0), at(1), at(2)};
        }
    }
    return {};
}

double speedOf(const Document& document) {
    const double east = numberOf(document, "GPSVelocityEast");
    return std::isnan(east) ? numberOf(document, "GPSSpeed")
                            : 3.6 * std::hypot(east, numberOf(document, "GPSVelocityNorth"));
}

qint64 clockOf(const Document& document) {
    const QString text = document[QStringLiteral("GPSDateTime")].toString();
    QDateTime clock = QDateTime::fromString(text.left(19), QStringLiteral("yyyy:MM:dd hh:mm:ss"));
    clock.setTimeZone(QTimeZone::utc());
    return clock.isValid() ? clock.toMSecsSinceEpoch() : RecordedFix::kNoClock;
}

// When each document is, in ms from the clip's start.
class DocumentTimes {
public:
    qint64 msOf(const Document& document) {
        for (const char* name : {"SampleTime", "TimeCode"})
            if (document.contains(QLatin1StringView(name)))
                return std::llround(document[QLatin1StringView(name)].toDouble() * 1000);
        if (clockOf(document) == RecordedFix::kNoClock)
            return 200 * m_timeless++;
        m_first = m_first.value_or(clockOf(document));
        return clockOf(document) - *m_first;
    }

private:
    std::optional<qint64> m_first;
    qint64 m_timeless = 0;
};

template <typename Records>
auto* at(const Records& records, qint64 timeMs) {
    const auto found = std::find_if(records.begin(), records.end(), [timeMs](const auto& record) {
        return std::abs(record.timeUs - timeMs * 1000) <= 1000;
    });
    return found != records.end() ? &*found : nullptr;
}

// Either says nothing of it, or both the same to the precision that is printed.
bool agree(double ours, double theirs, double precision) {
    return std::isnan(theirs) || std::abs(ours - theirs) <= precision;
}

} // namespace

class TestSensorExifTool : public QObject {
    Q_OBJECT

private:
    void compareFix(const RecordedFix* fix, const Document& document, qint64 leapMs) {
        QVERIFY(fix != nullptr);
        QCOMPARE(fix->isValid(), numberOf(document, "GPSMeasureMode") != 0);
        // Where a fix says no clock, it makes one up from the clip's date.
        const qint64 made = 1365165000000 + fix->timeUs / 1000;
        QCOMPARE(fix->hasClock() ? fix->clockMs : made, clockOf(document) - leapMs);
        if (!fix->isValid())
            return;
        QVERIFY(agree(fix->latitude, numberOf(document, "GPSLatitude"), 1e-9));
        QVERIFY(agree(fix->longitude, numberOf(document, "GPSLongitude"), 1e-9));
        QVERIFY(agree(fix->altitudeM, numberOf(document, "GPSAltitude"), 1e-4));
        QVERIFY(agree(fix->headingDeg, numberOf(document, "GPSTrack"), 1e-4));
        QVERIFY(agree(fix->speedKmh, speedOf(document), 1e-3));
    }

private Q_SLOTS:
    void agrees_data() {
        if (QStandardPaths::findExecutable(QStringLiteral("exiftool")).isEmpty())
            QSKIP("exiftool isn't installed (libimage-exiftool-perl): its reading was not compared");
        QTest::addColumn<QByteArray>("clip");
        QTest::addColumn<int>("positions");
        QTest::addColumn<int>("accelerations");
        QTest::addColumn<qint64>("leapMs");
        const QMap<QByteArray, std::pair<int, int>> read{
            {"motion", {3, 2}},   {"place", {4, 4}},    {"gps-index", {3, 0}}, {"text", {2, 1}},
            {"free-log", {2, 2}}, {"gps0-mp4", {3, 2}}, {"gps0-avi", {3, 2}}};
        for (const NamedClip& clip : clipsOfAllFormats()) {
            if (read.contains(clip.name)) {
                const auto [positions, accelerations] = read[clip.name];
                QTest::newRow(clip.name.constData()) << clip.bytes << positions << accelerations << qint64(0);
            }
        }
        // It leaves the leap seconds in clocks that count from 1980.
        Track track;
        track.samples = {motionFix(3, -33.8568, 151.2153, 10, 0, 1365165016.0 - 315964800)};
        QTest::newRow("clock of the satellites") << mp4({track}) << 1 << 0 << qint64(16000);
    }
    void agrees() {
        QFETCH(QByteArray, clip);
        QFETCH(qint64, leapMs);
        QTemporaryDir folder;
        const QString name = clip.startsWith("RIFF") ? QStringLiteral("a.avi") : QStringLiteral("a.mp4");
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::ReadWrite));
        file.write(clip);
        file.flush();
        const ClipRecord record = readClipContents(file, name).record;
        QProcess exiftool;
        exiftool.start(QStringLiteral("exiftool"),
                       {QStringLiteral("-ee3"), QStringLiteral("-n"), QStringLiteral("-G3"),
                        QStringLiteral("-j"), file.fileName()});
        QVERIFY(exiftool.waitForFinished());
        int positions = 0;
        int accelerations = 0;
        DocumentTimes times;
        for (const Document& document : documentsOf(exiftool.readAllStandardOutput())) {
            const qint64 timeMs = times.msOf(document);
            if (document.contains(QStringLiteral("GPSLatitude"))) {
                // The record at 0,0 is one without a fix, which it doesn't know.
                if (numberOf(document, "GPSLatitude") != 0)
                    compareFix(at(record.fixes, timeMs), document, leapMs);
                ++positions;
            }
            if (const QList<double> told = accelerationOf(document); !told.isEmpty()) {
                const RecordedAcceleration* ours = at(record.accelerations, timeMs);
                QVERIFY(ours && agree(ours->x, told[0], 1e-5) && agree(ours->y, told[1], 1e-5) &&
                        agree(ours->z, told[2], 1e-5));
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
