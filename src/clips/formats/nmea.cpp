#include "clips/formats/nmea.h"

#include <array>
#include <cmath>
#include <limits>
#include <span>

namespace ql240::sensorfiles {
namespace {

constexpr size_t kFieldsNeeded = 8;
constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();

using Fields = std::array<QByteArrayView, kFieldsNeeded>;

// Cuts "*hh" off; false when it isn't the exclusive or of what stands before it.
bool takeChecksum(QByteArrayView& sentence) {
    const qsizetype star = sentence.indexOf('*');
    if (star < 0) {
        return true;
    }
    int sum = 0;
    for (const char c : sentence.first(star)) {
        sum ^= static_cast<quint8>(c);
    }
    bool isNumber = false;
    const int told = sentence.sliced(star + 1, std::min<qsizetype>(2, sentence.size() - star - 1))
                         .toByteArray()
                         .toInt(&isNumber, 16);
    sentence = sentence.first(star);
    return isNumber && told == sum;
}

// The first eight fields, or false with fewer.
bool split(QByteArrayView sentence, Fields& fields) {
    for (size_t i = 0; i < fields.size(); ++i) {
        const qsizetype comma = sentence.indexOf(',');
        if (comma < 0 && i + 1 < fields.size()) {
            return false;
        }
        fields[i] = comma < 0 ? sentence : sentence.first(comma);
        sentence = comma < 0 ? QByteArrayView() : sentence.sliced(comma + 1);
    }
    return true;
}

double number(QByteArrayView field) {
    bool isNumber = false;
    const double value = field.toByteArray().toDouble(&isNumber);
    return isNumber ? value : kNothing;
}

double signedDegrees(QByteArrayView value, QByteArrayView letter, char positive, char negative) {
    if (letter.size() != 1 || (letter[0] != positive && letter[0] != negative)) {
        return kNothing;
    }
    const double degrees = fromDegreesAndMinutes(number(value));
    return letter[0] == positive ? degrees : -degrees;
}

void addPlace(qint64 timeMs, bool hasFix, std::span<const QByteArrayView> place, SensorRecords& records) {
    if (hasFix) {
        records.addFix(timeMs, signedDegrees(place[0], place[1], 'N', 'S'),
                       signedDegrees(place[2], place[3], 'E', 'W'));
    } else {
        records.addNoFix(timeMs);
    }
}

} // namespace

double fromDegreesAndMinutes(double value) {
    const double degrees = std::trunc(value / 100);
    const double minutes = value - degrees * 100;
    return std::abs(minutes) < 60 ? degrees + minutes / 60 : kNothing;
}

void addNmeaSentence(qint64 timeMs, QByteArrayView sentence, SensorRecords& records) {
    if (sentence.startsWith('$')) {
        sentence = sentence.sliced(1);
    }
    Fields fields;
    if (!takeChecksum(sentence) || !split(sentence, fields) || fields[0].size() != 5) {
        return;
    }
    const std::span<const QByteArrayView> all(fields);
    if (fields[0].endsWith("RMC")) {
        const bool hasFix = fields[2] == QByteArrayView("A") || fields[2].isEmpty();
        addPlace(timeMs, hasFix, all.subspan(3, 4), records);
        if (hasFix) {
            records.addSpeed(timeMs, number(fields[7]) * kKmhPerKnot);
        }
    } else if (fields[0].endsWith("GGA")) {
        addPlace(timeMs, fields[6] != QByteArrayView("0"), all.subspan(2, 4), records);
    }
}

} // namespace ql240::sensorfiles
