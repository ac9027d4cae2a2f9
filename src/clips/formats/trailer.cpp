#include "clips/formats/trailer.h"

#include <QByteArray>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace ql240::sensorfiles {
namespace {

constexpr QByteArrayView kMarker("ETKLP1");
constexpr int kFieldsPerLine = 7;

// Converts a line's fields; remembers whether all were numbers or empty.
class FieldReader {
public:
    bool isNumeric = true;

    // A decimal number; 0 for anything else, including "nan" and "inf". Must be Qt's conversion, whose
    // results for ties and limits are the product's.
    double number(QByteArrayView field) {
        bool isNumber = false;
        const double value = field.toByteArray().toDouble(&isNumber);
        isNumeric = isNumeric && (field.isEmpty() || (isNumber && std::isfinite(value)));
        return std::isfinite(value) ? value : 0.0;
    }
    // `isGiven` becomes false if there is no such number.
    std::int32_t integer(QByteArrayView field, bool& isGiven) {
        bool isNumber = false;
        const std::int32_t value = field.toByteArray().toInt(&isNumber);
        isNumeric = isNumeric && (field.isEmpty() || isNumber);
        isGiven = isGiven && isNumber;
        return value;
    }
    // The lowest 16 bits of larger numbers.
    std::int16_t count(QByteArrayView field, bool& isGiven) {
        const std::int32_t value = integer(field, isGiven);
        const auto kept = static_cast<std::int16_t>(value);
        isNumeric = isNumeric && kept == value;
        isGiven = isGiven && kept == value;
        return kept;
    }
};

// Parses "clock,latitude,longitude,speed,x,y,z"; false with fewer fields.
bool parseLine(QByteArrayView text, TrailerLine& line) {
    std::array<QByteArrayView, kFieldsPerLine> fields;
    qsizetype start = 0;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (start > text.size())
            return false;
        const qsizetype comma = text.indexOf(',', start);
        const qsizetype end = comma < 0 ? text.size() : comma;
        fields[i] = text.sliced(start, end - start);
        start = end + 1;
    }
    FieldReader reader;
    line.clock = fields[0];
    line.latitude = reader.number(fields[1]);
    line.longitude = reader.number(fields[2]);
    line.hasSpeed = true;
    line.speedKmh = reader.integer(fields[3], line.hasSpeed);
    line.hasAcceleration = true;
    line.x = reader.count(fields[4], line.hasAcceleration);
    line.y = reader.count(fields[5], line.hasAcceleration);
    line.z = reader.count(fields[6], line.hasAcceleration);
    line.isNumeric = reader.isNumeric;
    line.isWhole = start <= text.size(); // more fields follow
    return true;
}

} // namespace

std::optional<qsizetype> findTrailer(QByteArrayView tail) {
    const qsizetype marker = tail.indexOf(kMarker);
    if (marker <= 0)
        return std::nullopt;
    return std::min(marker + kMarker.size() + 1, tail.size());
}

bool forEachTrailerLine(QByteArrayView tail, const std::function<void(const TrailerLine&)>& visit,
                        const std::function<void(QByteArrayView line)>& skip) {
    const std::optional<qsizetype> start = findTrailer(tail);
    if (!start)
        return false;
    QByteArrayView text = tail.sliced(*start);
    while (!text.isEmpty()) {
        const qsizetype feed = text.indexOf('\n');
        QByteArrayView bytes = feed < 0 ? text : text.first(feed);
        const QByteArrayView whole = feed < 0 ? text : text.first(feed + 1);
        text = text.sliced(whole.size());
        if (bytes.endsWith('\r'))
            bytes.chop(1);
        TrailerLine line;
        line.text = whole;
        if (bytes.isEmpty())
            continue;
        if (parseLine(bytes, line)) {
            line.isWhole = line.isWhole || feed >= 0;
            visit(line);
        } else if (skip) {
            skip(whole);
        }
    }
    return true;
}

bool trailerStartsLate(const QString& path) {
    return std::any_of(kLateMarks.begin(), kLateMarks.end(),
                       [&path](QLatin1StringView mark) { return path.indexOf(mark, 1) > 0; });
}

std::size_t trailerPadding(std::size_t lines) {
    const std::size_t third = lines / 3;
    return third + (static_cast<double>(lines) * 0.25 + 0.5 >= static_cast<double>(third + 1) ? 2 : 1);
}

std::uint64_t trailerStepMs(std::int64_t durationMs, std::size_t samples) {
    const auto m = static_cast<std::int64_t>(samples);
    const std::int64_t total = std::min(durationMs, std::numeric_limits<std::int64_t>::max() - 100) + 100;
    const std::int64_t q = total / m;
    const bool roundUp =
        static_cast<double>(total) / static_cast<double>(m) + 0.5 >= static_cast<double>(q + 1);
    return static_cast<std::uint64_t>(roundUp ? q + 1 : q);
}

} // namespace ql240::sensorfiles
