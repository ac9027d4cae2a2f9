// A clip's summary, as text for people and as a JSON object for programs.
#pragma once

#include <QJsonObject>

#include "cli/clip_input.h"
#include "clips/moments.h"

namespace ql240::cli {

struct ClipSummary {
    std::int64_t fixes = 0; // valid ones
    std::optional<std::int64_t> firstMs;
    std::optional<std::int64_t> lastMs;
    double distanceM = 0;
    std::optional<double> highestKmh;
    std::optional<Shock> strongest;
};

ClipSummary summaryOf(const ClipRecord& record);

QByteArray summaryText(const ClipInput& input);
QJsonObject summaryObject(const ClipInput& input);

// "x", "y" or "z".
QString axisName(Shock::Axis axis);

// Rounds to three decimals; further ones exceed the sensors' precision.
double thousandths(double value);

} // namespace ql240::cli
