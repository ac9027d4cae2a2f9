#pragma once

// The bar code in every frame of the test clips: a strip of black and white cells with the frame number and
// the stream, and below it five grey patches. It survives compression, scaling down to a width of about 120
// pixels, and any adjustment that keeps white brighter than black.

#include <QtGui/QImage>
#include <array>
#include <optional>
#include <span>

namespace ql240 {

struct FrameMark {
    int number = 0; // 0 … 16383
    int stream = 0; // 0 or 1
    bool operator==(const FrameMark&) const = default;
};

// The grey patches from left to right, as RGB levels, whatever the clip's sample range.
inline constexpr std::array<int, 5> kGreyLevels{0, 64, 128, 192, 255};

// Paints a frame's luma into width × height bytes; fullRange selects the coding of the levels.
void paintFrameLuma(std::span<uchar> luma, int width, int height, FrameMark mark, bool fullRange);

// Nothing if the strip's markers or check bits don't match.
std::optional<FrameMark> readFrameMark(const QImage& frame);

// Only the number; -1 without a readable code.
int readFrameNumber(const QImage& frame);

// The mean grey of each patch (0 … 255).
std::array<int, 5> readGreyLevels(const QImage& frame);

} // namespace ql240
