// The two NMEA 0183 sentences that say where a receiver is.
#pragma once

#include <QByteArrayView>
#include <QString>
#include <optional>

#include "clips/formats/sensor_records.h"

namespace ql240::sensorfiles {

inline constexpr double kKmhPerKnot = 1.852;

// Degrees and minutes in one number, DDDMM.mmmm, as degrees. Not a number where the minutes are none.
double fromDegreesAndMinutes(double value);

// Adds what an RMC or GGA sentence says ("GPRMC,…", with or without "$" and checksum). One with a wrong
// checksum and everything else adds nothing.
void addNmeaSentence(qint64 timeMs, QByteArrayView sentence, SensorRecords& records);

} // namespace ql240::sensorfiles
