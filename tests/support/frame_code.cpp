#include "support/frame_code.h"

#include <algorithm>

namespace ql240 {
namespace {

// White, black, stream, 14 bits of the number (highest first), 5 check bits, black, white.
constexpr int kNumberBits = 14;
constexpr int kCheckBits = 5;
constexpr int kCells = 2 + 1 + kNumberBits + kCheckBits + 2;

// The strips' edges in sixteenths of the height.
constexpr int kCodeTop = 2;
constexpr int kCodeBottom = 7;
constexpr int kGreyTop = 12;
constexpr int kGreyBottom = 15;

// No power of two is a multiple of 31, so a single misread cell never passes.
unsigned checkBits(unsigned payload) {
    return payload % 31;
}

unsigned cellsOf(FrameMark mark) {
    const unsigned payload = unsigned(mark.stream & 1) << kNumberBits | unsigned(mark.number & 0x3fff);
    return 1u << (kCells - 1) | payload << (kCheckBits + 2) | checkBits(payload) << 2 | 1u;
}

uchar coded(int level, bool fullRange) {
    return uchar(fullRange ? level : 16 + (level * 219 + 127) / 255);
}

// A gradient that moves with the frame number, so that neighbouring frames differ everywhere.
int backgroundLevel(int x, int y, int width, int number) {
    return 60 + ((x * 128 / width + y / 4 + number * 4) & 127);
}

int mean(const QImage& picture, QRect area) {
    qint64 sum = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            sum += qGray(picture.pixel(x, y));
    return int(sum / std::max<qint64>(1, qint64(area.width()) * area.height()));
}

// The middle half of cell `index` of `count` in the strip between `top` and `bottom`.
QRect core(int index, int count, int top, int bottom, QSize size) {
    const int left = (size.width() * (index * 4 + 1)) / (count * 4);
    const int right = (size.width() * (index * 4 + 3)) / (count * 4);
    const int upper = size.height() * (top * 4 + 3) / 64;
    const int lower = size.height() * (bottom * 4 - 3) / 64;
    return {left, upper, std::max(1, right - left), std::max(1, lower - upper)};
}

} // namespace

void paintFrameLuma(std::span<uchar> luma, int width, int height, FrameMark mark, bool fullRange) {
    const unsigned cells = cellsOf(mark);
    for (int y = 0; y < height; ++y) {
        const int band = y * 16 / height;
        for (int x = 0; x < width; ++x) {
            int level = backgroundLevel(x, y, width, mark.number);
            if (band >= kCodeTop && band < kCodeBottom)
                level = (cells >> (kCells - 1 - x * kCells / width) & 1) ? 255 : 0;
            else if (band >= kGreyTop && band < kGreyBottom)
                level = kGreyLevels[size_t(x) * kGreyLevels.size() / size_t(width)];
            luma[size_t(y) * size_t(width) + size_t(x)] = coded(level, fullRange);
        }
    }
}

std::optional<FrameMark> readFrameMark(const QImage& frame) {
    if (frame.width() < kCells || frame.height() < 16)
        return {};
    std::array<int, kCells> level;
    for (int i = 0; i < kCells; ++i)
        level[size_t(i)] = mean(frame, core(i, kCells, kCodeTop, kCodeBottom, frame.size()));
    const int white = std::min(level[0], level[kCells - 1]);
    const int black = std::max(level[1], level[kCells - 2]);
    if (white - black < 24)
        return {};
    unsigned cells = 0;
    for (int value : level)
        cells = cells << 1 | unsigned(value > (white + black) / 2);
    const unsigned payload = cells >> (kCheckBits + 2) & ((2u << kNumberBits) - 1);
    const FrameMark mark{int(payload & 0x3fff), int(payload >> kNumberBits)};
    return cells == cellsOf(mark) ? std::optional(mark) : std::nullopt;
}

int readFrameNumber(const QImage& frame) {
    const auto mark = readFrameMark(frame);
    return mark ? mark->number : -1;
}

std::array<int, 5> readGreyLevels(const QImage& frame) {
    std::array<int, 5> levels;
    for (int i = 0; i < int(levels.size()); ++i)
        levels[size_t(i)] = mean(frame, core(i, int(levels.size()), kGreyTop, kGreyBottom, frame.size()));
    return levels;
}

} // namespace ql240
