// The two NMEA 0183 sentences with a position, RMC and GGA.
#pragma once

#include <QByteArrayView>
#include <QString>
#include <optional>

#include "clips/formats/record_sink.h"

namespace ql240::sensorfiles {

inline constexpr double kKmhPerKnot = 1.852;

// Converts degrees and minutes in one number, DDDMM.mmmm, to degrees; NaN if the minutes are 60 or more.
double fromDegreesAndMinutes(double value);

// Where a sentence was read, for the fix's time and for the report of a malformed sentence.
struct SentencePlace {
    std::optional<std::int64_t> timeUs; // nothing: unknown, because no clock precedes it
    const char* unit;
    std::int64_t number;
    std::int64_t offset;
    bool isWhole = true; // false: its end may be missing, unless a checksum says otherwise
};

// Adds the fix of an RMC or GGA sentence ("GPRMC,…", with or without "$" and checksum), or a stop if it
// isn't whole, has no time, too few fields or a wrong checksum. An invalid position gives a fix without one,
// and a stop. Ignores other sentences.
void addNmeaSentence(const SentencePlace& place, QByteArrayView sentence, RecordSink& sink);

} // namespace ql240::sensorfiles
