// The actions of a run: what they do and how likely they are.
#pragma once

#include <span>

namespace ql240::moments {

class Run;

// A run prefers the actions of one theme.
enum class Theme { Any, Picture, Card, Folder, Transport };
inline constexpr int kThemes = 5;

struct Action {
    const char* name;
    int weight;
    Theme theme;
    void (*perform)(Run&);
    bool navigates = false; // may select another clip
};

std::span<const Action> actions();

} // namespace ql240::moments
