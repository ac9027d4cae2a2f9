#pragma once

// What the time of day does to a scene's colours.

#include "demo_card/scene/rgb.h"

namespace ql240 {

struct Palette {
    Rgb skyTop, skyMiddle, skyLow; // from the zenith to the horizon
    Rgb sun;                       // its glow in the sky
    float sunHeight;               // over the horizon, in picture heights; below 0 it has set
    Rgb cloud;
    float cloudiness; // 0 … 1
    Rgb ridge;        // the nearest hills; farther ones fade to the low sky
    Rgb haze;
    float hazeDistance; // metres until two thirds are haze
    Rgb light;          // on everything outside
    float lampLight;    // how brightly street lamps, windows and headlights burn: 0 … 1
    float shadows;      // how dark the trees' shadows are: 0 … 1
};

Palette dayPalette();
Palette goldenPalette(); // an hour before sunset
Palette duskPalette();
Palette nightPalette();

} // namespace ql240
