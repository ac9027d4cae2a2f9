// What may happen in a run, by whose doing, and how often.
#pragma once

#include <span>

namespace ql240::moments {

class Run;

// A run leans towards one of these.
enum class Theme { Any, Picture, Card, Folder, Transport };
inline constexpr int kThemes = 5;

struct Action {
    const char* name;
    int weight;
    Theme theme;
    void (*perform)(Run&);
    bool navigates = false; // may choose another clip
};

std::span<const Action> actions();

} // namespace ql240::moments
