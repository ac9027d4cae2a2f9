#include "clips/formats/sensor_file_library.h"

#include <QFile>
#include <QTimeZone>
#include <cstdlib>
#include <cstring>

#include "base/regular_file.h"
#include "clips/formats/sensor_formats.h"
#include "platform/logging.h"

namespace ql240 {

using namespace sensorfiles;

namespace {

void report(const SensorFormat& format, bool took, std::optional<std::int64_t> end) {
    const char* outcome = took ? "took the clip" : "found nothing";
    if (end)
        qCDebug(lcSensors) << format.name << outcome << "and stopped at byte" << *end;
    else
        qCDebug(lcSensors) << format.name << outcome << "and read nothing";
}

SensorRecords readSensorRecords(ByteSource& source, const ClipLayout& clip) {
    source.takeLastEnd();
    for (const SensorFormat& format : kSensorFormats) {
        SensorRecords records;
        format.read(source, clip, records);
        report(format, !records.isEmpty(), source.takeLastEnd());
        if (!records.isEmpty()) {
            records.finish();
            return records;
        }
    }
    return {};
}

} // namespace

SensorLibrary::Handle SensorFileLibrary::getInformationData(const char* path) {
    m_records = {};
    const QString name = QString::fromLocal8Bit(path);
    QFile file(name);
    QString problem;
    if (!openRegularFile(file, problem)) {
        qCWarning(lcSensors) << name << "doesn't open:" << problem;
        return 0;
    }
    qCDebug(lcSensors) << "reading" << name;
    return readClip(file);
}

SensorLibrary::Handle SensorFileLibrary::readClip(QIODevice& device) {
    ByteSource source(device);
    const ClipLayout clip = readClipLayout(source);
    qCDebug(lcSensors) << clip.tracks.size() << "tracks," << clip.freeBoxes.size() << "free boxes in"
                       << source.size() << "bytes";
    m_records = readSensorRecords(source, clip);
    m_createdAt =
        clip.createdAt ? QDateTime::fromSecsSinceEpoch(*clip.createdAt, QTimeZone::utc()) : QDateTime();
    return m_records.isEmpty() ? 0 : ++m_last;
}

int SensorFileLibrary::getCreateTime(Handle handle, char* buffer) {
    buffer[0] = 0;
    if (handle != m_last || !m_createdAt.isValid())
        return 0;
    const QByteArray text = m_createdAt.toString(QStringLiteral("yyyy-MM-dd-hh-mm-ss")).toLatin1();
    qstrncpy(buffer, text.constData(), kCreateTimeSize);
    return 1;
}

bool SensorFileLibrary::answers(Handle handle, std::int64_t timeMs) const {
    return handle != 0 && handle == m_last && m_records.covers(timeMs);
}

int SensorFileLibrary::getLatLonSpeed(Handle handle, std::int64_t timeMs, std::int32_t* latitude,
                                      std::int32_t* longitude, std::int8_t* latitudeLetter,
                                      std::int8_t* longitudeLetter, std::int32_t* speed) {
    if (!answers(handle, timeMs))
        return 0;
    const Position position = m_records.positionAt(timeMs);
    *latitude = std::abs(position.latitude);
    *longitude = std::abs(position.longitude);
    *latitudeLetter = position.latitude < 0 ? 'S' : 'N';
    *longitudeLetter = position.longitude < 0 ? 'W' : 'E';
    *speed = m_records.speedAt(timeMs);
    return 1;
}

int SensorFileLibrary::getAccXYZ(Handle handle, std::int64_t timeMs, std::int16_t* x, std::int16_t* y,
                                 std::int16_t* z) {
    if (!answers(handle, timeMs))
        return 0;
    const Acceleration acceleration = m_records.accelerationAt(timeMs);
    *x = acceleration.x;
    *y = acceleration.y;
    *z = acceleration.z;
    return 1;
}

} // namespace ql240
