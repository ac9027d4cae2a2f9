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

enum class Checksum { None, Right, Wrong };

// Removes "*hh", which is the exclusive or of the characters before it.
Checksum takeChecksum(QByteArrayView& sentence) {
    const qsizetype star = sentence.indexOf('*');
    if (star < 0)
        return Checksum::None;
    int sum = 0;
    for (const char c : sentence.first(star))
        sum ^= static_cast<std::uint8_t>(c);
    bool isNumber = false;
    const int stated = sentence.sliced(star + 1, std::min<qsizetype>(2, sentence.size() - star - 1))
                           .toByteArray()
                           .toInt(&isNumber, 16);
    sentence = sentence.first(star);
    return isNumber && stated == sum ? Checksum::Right : Checksum::Wrong;
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

// False if there is a position that isn't valid.
bool setPlace(RecordedFix& fix, std::span<const QByteArrayView> place) {
    fix.latitude = signedDegrees(place[0], place[1], 'N', 'S');
    fix.longitude = signedDegrees(place[2], place[3], 'E', 'W');
    return fix.isValid() ||
           std::all_of(place.begin(), place.end(), [](QByteArrayView field) { return field.isEmpty(); });
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

bool readRmc(const Fields& fields, RecordedFix& fix) {
    fix.clockMs = clockOf(fields[1], fields[9]);
    if (fields[2] != QByteArrayView("A") && !fields[2].isEmpty())
        return true;
    fix.speedKmh = number(fields[7]) * kKmhPerKnot;
    fix.headingDeg = number(fields[8]);
    return setPlace(fix, std::span(fields).subspan(3, 4));
}

bool readGga(const Fields& fields, RecordedFix& fix) {
    if (fields[6] == QByteArrayView("0"))
        return true;
    fix.altitudeM = number(fields[9]);
    return setPlace(fix, std::span(fields).subspan(2, 4));
}

// Adds the sentence's fix; returns what is wrong with it, or nullptr.
const char* addFixOf(const SentencePlace& place, QByteArrayView sentence, bool isRmc, RecordSink& sink) {
    Fields fields;
    const Checksum checksum = takeChecksum(sentence);
    if (checksum == Checksum::Wrong)
        return "wrong checksum";
    if (checksum == Checksum::None && !place.isWhole)
        return "no line end and no checksum";
    if (!split(sentence, fields))
        return "sentence too short";
    if (!place.timeUs)
        return "no clock before it";
    RecordedFix fix;
    fix.timeUs = *place.timeUs;
    const bool isValid = isRmc ? readRmc(fields, fix) : readGga(fields, fix);
    sink.addFix(fix);
    return isValid ? nullptr : "no valid position";
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
    if (const char* problem = addFixOf(place, sentence, isRmc, sink))
        sink.addStop({place.unit, place.number, place.offset, problem});
}

} // namespace ql240::sensorfiles
