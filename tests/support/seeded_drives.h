// Accelerations from a seed: gravity, road noise, impacts and potholes. To test and measure the shock finder.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

#include "clips/moments.h"

namespace ql240 {

struct SeededDrive {
    std::deque<RecordedAcceleration> samples;
    std::vector<double> impactsS; // when each begins
};

struct DriveScore {
    int impacts = 0;
    int found = 0;
    int falseOnes = 0;
};

// A car at rest.
inline SeededDrive quietDrive(int rate, int seconds) {
    SeededDrive drive;
    for (int i = 0; i < rate * seconds; ++i)
        drive.samples.push_back({i * 1'000'000LL / rate, 0, 0, 1});
    return drive;
}

inline void addHalfSine(SeededDrive& drive, double startS, double lengthS, double sizeG, int axis) {
    constexpr std::array kAxes{&RecordedAcceleration::x, &RecordedAcceleration::y, &RecordedAcceleration::z};
    constexpr double kPi = 3.14159265358979;
    for (RecordedAcceleration& sample : drive.samples) {
        const double part = (static_cast<double>(sample.timeUs) / 1e6 - startS) / lengthS;
        if (part >= 0 && part <= 1)
            sample.*kAxes[axis] += static_cast<float>(sizeG * std::sin(kPi * part));
    }
}

// A minute with up to three impacts (80–200 ms, 0.6–6 g), noise of 0.2 g and two potholes (to 20 ms, 1.5 g).
inline SeededDrive seededDrive(int rate, unsigned seed) {
    std::mt19937 random(seed);
    const auto between = [&random](double low, double high) {
        return low + (high - low) * static_cast<double>(random()) / 4294967296.0;
    };
    const auto sign = [&random] { return random() % 2 ? 1 : -1; };
    SeededDrive drive = quietDrive(rate, 60);
    for (RecordedAcceleration& sample : drive.samples)
        for (float RecordedAcceleration::*axis :
             {&RecordedAcceleration::x, &RecordedAcceleration::y, &RecordedAcceleration::z})
            sample.*axis += static_cast<float>(between(-0.2, 0.2));
    for (size_t left = random() % 4; left > 0;) {
        const double start = between(2, 57);
        const bool isFree = std::all_of(drive.impactsS.begin(), drive.impactsS.end(),
                                        [start](double other) { return std::abs(start - other) > 4; });
        if (!isFree)
            continue;
        drive.impactsS.push_back(start);
        addHalfSine(drive, start, between(0.08, 0.2), sign() * between(0.6, 6),
                    static_cast<int>(random() % 3));
        --left;
    }
    for (int i = 0; i < 2; ++i)
        addHalfSine(drive, between(0, 59.9), between(0.002, 0.02), sign() * between(0.3, 1.5), 2);
    return drive;
}

inline DriveScore scoreOfDrives(int rate, int drives) {
    DriveScore score;
    for (int i = 0; i < drives; ++i) {
        const SeededDrive drive = seededDrive(rate, static_cast<unsigned>(rate * 100'000 + i));
        const std::vector<Shock> shocks = findShocks(drive.samples);
        const auto isOf = [](const Shock& shock, double start) {
            const double behind = static_cast<double>(shock.timeUs) / 1e6 - start;
            return behind >= -0.1 && behind <= 0.3;
        };
        score.impacts += static_cast<int>(drive.impactsS.size());
        for (const double start : drive.impactsS)
            score.found += std::any_of(shocks.begin(), shocks.end(),
                                       [&](const Shock& shock) { return isOf(shock, start); });
        for (const Shock& shock : shocks)
            score.falseOnes += std::none_of(drive.impactsS.begin(), drive.impactsS.end(),
                                            [&](double start) { return isOf(shock, start); });
    }
    return score;
}

} // namespace ql240
