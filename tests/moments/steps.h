// The steps of a run, drawn from its seed, and the two kinds of run. Main thread.
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

// Whether a hostile card is in the reader and the user opens its settings.
constexpr bool meetsStranger(quint32 seed) {
    return seed % 3 == 0;
}

struct Step {
    int action = 0; // index in the plan's table
    int delayMs = 0;
    quint32 luck = 0; // seed of the step's own random numbers
};

// One kind of run: over fakes or on the pipeline.
struct Plan {
    std::vector<Step> (*steps)(quint32 seed, int count);
    const char* (*nameOf)(const Step& step);
    // Plays the steps; returns the first fault found, or an empty text.
    QString (*play)(quint32 seed, const std::vector<Step>& steps);
};

Plan fakesPlan();
// On the real pipeline, in real time, with clips that have sound and numbered frames. A paused clip shows the
// frame at its position; a playing one advances and ends only at its end.
Plan pipelinePlan();

} // namespace ql240::moments
