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

// A decimal number; 0 for anything else, including "nan" and "inf". Must be Qt's conversion, whose results
// for ties and limits are the product's.
double toNumber(QByteArrayView field) {
    const double value = field.toByteArray().toDouble();
    return std::isfinite(value) ? value : 0.0;
}
std::int32_t toInteger(QByteArrayView field) {
    return field.toByteArray().toInt();
}

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
    line = {{},
            fields[0],
            toNumber(fields[1]),
            toNumber(fields[2]),
            toInteger(fields[3]),
            static_cast<std::int16_t>(toInteger(fields[4])),
            static_cast<std::int16_t>(toInteger(fields[5])),
            static_cast<std::int16_t>(toInteger(fields[6]))};
    return true;
}

} // namespace

std::optional<qsizetype> findTrailer(QByteArrayView tail) {
    const qsizetype marker = tail.indexOf(kMarker);
    if (marker <= 0)
        return std::nullopt;
    return std::min(marker + kMarker.size() + 1, tail.size());
}

bool forEachTrailerLine(QByteArrayView tail, const std::function<void(const TrailerLine&)>& visit) {
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
        if (!bytes.isEmpty() && parseLine(bytes, line)) {
            line.text = whole;
            visit(line);
        }
    }
    return true;
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
