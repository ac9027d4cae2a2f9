#include "clips/formats/nmea.h"

#include <QDateTime>
#include <QTimeZone>
#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace ql240::sensorfiles {
namespace {

constexpr std::size_t kFieldsNeeded = 8;
constexpr double kNothing = RecordedFix::kNothing;

// Enough for RMC's date and GGA's altitude.
using Fields = std::array<QByteArrayView, 10>;

// Removes "*hh"; false if it isn't the exclusive or of the characters before it.
bool takeChecksum(QByteArrayView& sentence) {
    const qsizetype star = sentence.indexOf('*');
    if (star < 0)
        return true;
    int sum = 0;
    for (const char c : sentence.first(star))
        sum ^= static_cast<std::uint8_t>(c);
    bool isNumber = false;
    const int stated = sentence.sliced(star + 1, std::min<qsizetype>(2, sentence.size() - star - 1))
                           .toByteArray()
                           .toInt(&isNumber, 16);
    sentence = sentence.first(star);
    return isNumber && stated == sum;
}

// Fields past the last comma stay empty; false with fewer fields than both sentences need.
bool split(QByteArrayView sentence, Fields& fields) {
    std::size_t count = 0;
    while (count < fields.size()) {
        const qsizetype comma = sentence.indexOf(',');
        fields[count++] = comma < 0 ? sentence : sentence.first(comma);
        if (comma < 0)
            break;
        sentence = sentence.sliced(comma + 1);
    }
    return count >= kFieldsNeeded;
}

double number(QByteArrayView field) {
    bool isNumber = false;
    const double value = field.toByteArray().toDouble(&isNumber);
    return isNumber ? value : kNothing;
}

double signedDegrees(QByteArrayView value, QByteArrayView letter, char positive, char negative) {
    if (letter.size() != 1 || (letter[0] != positive && letter[0] != negative))
        return kNothing;
    const double degrees = fromDegreesAndMinutes(number(value));
    return letter[0] == positive ? degrees : -degrees;
}

void setPlace(RecordedFix& fix, std::span<const QByteArrayView> place) {
    fix.latitude = signedDegrees(place[0], place[1], 'N', 'S');
    fix.longitude = signedDegrees(place[2], place[3], 'E', 'W');
}

// "hhmmss.sss" and "ddmmyy".
std::int64_t clockOf(QByteArrayView time, QByteArrayView date) {
    const double seconds = number(time);
    bool isNumber = false;
    const int day = date.toByteArray().toInt(&isNumber);
    if (!(seconds >= 0 && seconds < 240000) || !isNumber || date.size() != 6)
        return RecordedFix::kNoClock;
    const int whole = static_cast<int>(seconds);
    const QDate calendar((day % 100 < 80 ? 2000 : 1900) + day % 100, day / 100 % 100, day / 10000);
    const QTime clock(whole / 10000, whole / 100 % 100, whole % 100);
    if (!calendar.isValid() || !clock.isValid())
        return RecordedFix::kNoClock;
    return QDateTime(calendar, clock, QTimeZone::utc()).toMSecsSinceEpoch() +
           std::llround((seconds - whole) * 1000);
}

RecordedFix readRmc(const Fields& fields) {
    RecordedFix fix;
    fix.clockMs = clockOf(fields[1], fields[9]);
    if (fields[2] == QByteArrayView("A") || fields[2].isEmpty()) {
        setPlace(fix, std::span(fields).subspan(3, 4));
        fix.speedKmh = number(fields[7]) * kKmhPerKnot;
        fix.headingDeg = number(fields[8]);
    }
    return fix;
}

RecordedFix readGga(const Fields& fields) {
    RecordedFix fix;
    if (fields[6] != QByteArrayView("0")) {
        setPlace(fix, std::span(fields).subspan(2, 4));
        fix.altitudeM = number(fields[9]);
    }
    return fix;
}

} // namespace

double fromDegreesAndMinutes(double value) {
    const double degrees = std::trunc(value / 100);
    const double minutes = value - degrees * 100;
    return std::abs(minutes) < 60 ? degrees + minutes / 60 : kNothing;
}

void addNmeaSentence(const SentencePlace& place, QByteArrayView sentence, RecordSink& sink) {
    if (sentence.startsWith('$'))
        sentence = sentence.sliced(1);
    const QByteArrayView name = sentence.first(std::max<qsizetype>(0, sentence.indexOf(',')));
    const bool isRmc = name.endsWith("RMC");
    if (name.size() != 5 || (!isRmc && !name.endsWith("GGA")))
        return;
    Fields fields;
    if (!takeChecksum(sentence)) {
        sink.addStop({place.unit, place.number, place.offset, "wrong checksum"});
    } else if (!split(sentence, fields)) {
        sink.addStop({place.unit, place.number, place.offset, "sentence too short"});
    } else {
        RecordedFix fix = isRmc ? readRmc(fields) : readGga(fields);
        fix.timeUs = place.timeUs;
        sink.addFix(fix);
    }
}

} // namespace ql240::sensorfiles
