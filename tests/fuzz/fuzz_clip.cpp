// A whole clip: the containers, the sample tables and whichever format is found, for the dashboard and for
// the whole record with its moments.
#include "clips/formats/sensor_file_library.h"
#include "clips/moments.h"
#include "clips/record_reader.h"
#include "fuzz/sensor_fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    QBuffer buffer;
    buffer.setData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    buffer.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    ql240::SensorFileLibrary library;
    const auto handle = library.readClip(buffer);
    char created[ql240::SensorLibrary::kCreateTimeSize];
    library.getCreateTime(handle, created);
    qint32 latitude = 0;
    qint32 longitude = 0;
    qint32 speed = 0;
    std::int8_t north = 0;
    std::int8_t east = 0;
    for (qint64 t = 0; t <= 61000; t += 500) {
        if (library.getLatLonSpeed(handle, t, &latitude, &longitude, &north, &east, &speed) == 0)
            break;
        ql240::sensorfiles::demand(latitude >= 0 && latitude <= 90000000);
        ql240::sensorfiles::demand(longitude >= 0 && longitude <= 180000000);
    }
    const ql240::ClipContents contents =
        ql240::readClipContents(buffer, QStringLiteral("EVT_2013_04_05_12_30_00.avi"));
    ql240::sensorfiles::checkRecord(contents.record);
    ql240::findShocks(contents.record.accelerations);
    return 0;
}
