// What may happen in a run, by whose doing, and how often.
#pragma once

#include <span>

namespace ql240::moments {

class Run;

struct Action {
    const char* name;
    int weight;
    void (*perform)(Run&);
    bool navigates = false; // may choose another clip
};

std::span<const Action> actions();

} // namespace ql240::moments
