// The two NMEA 0183 sentences that say where a receiver is.
#pragma once

#include <QByteArrayView>
#include <QString>
#include <optional>

#include "clips/formats/record_sink.h"

namespace ql240::sensorfiles {

inline constexpr double kKmhPerKnot = 1.852;

// Degrees and minutes in one number, DDDMM.mmmm, as degrees. Not a number where the minutes are none.
double fromDegreesAndMinutes(double value);

// Adds what an RMC or GGA sentence says ("GPRMC,…", with or without "$" and checksum). Other sentences add
// nothing, nor does one with a wrong checksum or too few fields, of which `place` says where it stands.
struct SentencePlace {
    std::int64_t timeUs;
    const char* unit;
    std::int64_t number;
    std::int64_t offset;
};
void addNmeaSentence(const SentencePlace& place, QByteArrayView sentence, RecordSink& sink);

} // namespace ql240::sensorfiles
