#pragma once

// The bar code that test clips carry in every frame: a strip of black and white cells across the whole width
// with the frame's number and its video stream, and below it five grey patches of known brightness. It
// survives compression, conversion and scaling down to about 120 pixels of width, and any picture adjustment
// that keeps white brighter than black.

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

// The grey patches, left to right, as RGB levels whatever range the clip's samples have.
inline constexpr std::array<int, 5> kGreyLevels{0, 64, 128, 192, 255};

// Paints the luma of a frame into width × height bytes; fullRange says how the levels are coded.
void paintFrameLuma(std::span<uchar> luma, int width, int height, FrameMark mark, bool fullRange);

// Nothing where the strip's markers or its check bits don't fit.
std::optional<FrameMark> readFrameMark(const QImage& frame);
std::optional<FrameMark> readFrameMark(const uchar* yuy2, int width, int height);

// The number alone; a picture without a readable code is -1 or nothing.
int readFrameNumber(const QImage& frame);
std::optional<int> readFrameNumber(const uchar* yuy2, int width, int height);

// The mean grey of each patch (0 … 255).
std::array<int, 5> readGreyLevels(const QImage& frame);

} // namespace ql240
