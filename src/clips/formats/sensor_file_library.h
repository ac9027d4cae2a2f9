// The sensor library's interface, implemented by this program's own format readers. Holds the records of the
// clip opened last. One thread at a time.
#pragma once

#include <QDateTime>

#include "clips/formats/sensor_records.h"
#include "platform/sensor_library.h"

class QIODevice;

namespace ql240 {

class SensorFileLibrary : public SensorLibrary {
public:
    Handle getInformationData(const char* path) override;
    // The same for a clip that is already open, from any kind of device.
    Handle readClip(QIODevice& clip);

    // "yyyy-MM-dd-hh-mm-ss" from the container, usually UTC.
    int getCreateTime(Handle handle, char* buffer) override;
    int getLatLonSpeed(Handle handle, std::int64_t timeMs, std::int32_t* latitude, std::int32_t* longitude,
                       std::int8_t* latitudeLetter, std::int8_t* longitudeLetter,
                       std::int32_t* speed) override;
    int getAccXYZ(Handle handle, std::int64_t timeMs, std::int16_t* x, std::int16_t* y,
                  std::int16_t* z) override;

private:
    bool answers(Handle handle, std::int64_t timeMs) const;

    Handle m_last = 0; // the newest handle returned; older ones are no longer valid
    sensorfiles::SensorRecords m_records;
    QDateTime m_createdAt;
};

} // namespace ql240
