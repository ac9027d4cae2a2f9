// The steps of a run, drawn from its seed. Each has random numbers of its own, so that leaving some out
// doesn't change the others.
#pragma once

#include <QString>

#include <random>
#include <vector>

namespace ql240::moments {

class Luck {
public:
    void reseed(quint32 seed) { m_engine.seed(seed); }
    int below(int limit) { return static_cast<int>(m_engine() % static_cast<quint32>(limit)); }
    bool chance(int percent) { return below(100) < percent; }
    // An index, each as probable as its weight.
    template <typename Range, typename Weight>
    int pick(const Range& range, Weight weightOf) {
        int total = 0;
        for (const auto& each : range)
            total += weightOf(each);
        int at = below(total);
        int picked = 0;
        for (const auto& each : range) {
            if (at < weightOf(each))
                break;
            at -= weightOf(each);
            ++picked;
        }
        return picked;
    }
    template <typename Range>
    auto& oneOf(Range& range) {
        return std::begin(range)[below(static_cast<int>(std::size(range)))];
    }

private:
    std::mt19937 m_engine;
};

// Whether a stranger's card, which leads elsewhere, is in the reader and the user looks at it.
constexpr bool meetsStranger(quint32 seed) {
    return seed % 3 == 0;
}

struct Step {
    int action = 0; // index in the plan's table
    int delayMs = 0;
    quint32 luck = 0;
};

// One kind of run: over fakes or on the pipeline.
struct Plan {
    std::vector<Step> (*steps)(quint32 seed, int count);
    const char* (*nameOf)(const Step& step);
    // Plays the steps; returns the first fault found, or an empty text.
    QString (*play)(quint32 seed, const std::vector<Step>& steps);
};

} // namespace ql240::moments
