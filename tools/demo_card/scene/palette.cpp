#include "demo_card/scene/palette.h"

namespace ql240 {

Palette dayPalette() {
    return {.skyTop = hex(0x2f6fb8),
            .skyMiddle = hex(0x7fb2de),
            .skyLow = hex(0xdcebf3),
            .sun = hex(0xfff6e0),
            .sunHeight = 0.36f,
            .cloud = hex(0xffffff),
            .cloudiness = 0.45f,
            .ridge = hex(0x5d7f86),
            .haze = hex(0xc9dbe6),
            .hazeDistance = 420,
            .light = {1, 1, 1},
            .lampLight = 0,
            .shadows = 0.34f};
}

Palette goldenPalette() {
    return {.skyTop = hex(0x45699f),
            .skyMiddle = hex(0xe3b083),
            .skyLow = hex(0xffdf9e),
            .sun = hex(0xfff0b8),
            .sunHeight = 0.1f,
            .cloud = hex(0xffc992),
            .cloudiness = 0.5f,
            .ridge = hex(0x8a6a5c),
            .haze = hex(0xf3c68c),
            .hazeDistance = 300,
            .light = {1.0f, 0.85f, 0.68f},
            .lampLight = 0.12f,
            .shadows = 0.42f};
}

Palette duskPalette() {
    return {.skyTop = hex(0x1e2a5a),
            .skyMiddle = hex(0x76528a),
            .skyLow = hex(0xf2925e),
            .sun = hex(0xffb070),
            .sunHeight = 0.015f,
            .cloud = hex(0xe0708a),
            .cloudiness = 0.55f,
            .ridge = hex(0x35305a),
            .haze = hex(0x9c6a86),
            .hazeDistance = 420,
            .light = {0.50f, 0.44f, 0.56f},
            .lampLight = 0.75f,
            .shadows = 0};
}

Palette nightPalette() {
    return {.skyTop = hex(0x05070f),
            .skyMiddle = hex(0x0c1224),
            .skyLow = hex(0x2a2b40),
            .sun = hex(0x000000),
            .sunHeight = -1,
            .cloud = hex(0x2c2c3c),
            .cloudiness = 0.3f,
            .ridge = hex(0x0b0e18),
            .haze = hex(0x1a1d2c),
            .hazeDistance = 260,
            .light = {0.20f, 0.21f, 0.27f},
            .lampLight = 1,
            .shadows = 0};
}

} // namespace ql240
