#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <cmath>

#include "demo_card/scene/art.h"

namespace ql240 {
namespace {

constexpr int kSize = 512;

struct Dice {
    std::uint32_t seed;
    std::int64_t next = 0;
    double operator()(double from, double to) { return from + (to - from) * hashNoise(seed, next++); }
};

// A window: glass that mirrors some sky, or a lit room at night.
QColor windowColour(Dice& dice, float lampLight, Rgb glass) {
    const bool lit = dice(0, 1) < 0.42 * double(lampLight);
    const Rgb warm = mix(hex(0xffd890), hex(0xe8f0ff), float(dice(0, 1)));
    if (lit)
        return toColor(warm * float(dice(0.55, 1.0)));
    return toColor(glass * float(dice(0.75, 1.2)) * (1 - 0.82f * lampLight));
}

struct Grid {
    int columns, rows;
    double wide, high; // part of the cell that is window
    Rgb wall, glass;
};

QImage paintWindows(const Grid& grid, float lampLight, std::uint32_t seed) {
    QImage picture(kSize, kSize, QImage::Format_ARGB32_Premultiplied);
    const float dim = 1 - 0.86f * lampLight;
    picture.fill(toColor(grid.wall * dim));
    QPainter painter(&picture);
    Dice dice{seed};
    const double w = double(kSize) / grid.columns;
    const double h = double(kSize) / grid.rows;
    for (int row = 0; row < grid.rows; ++row) {
        painter.fillRect(QRectF(0, (row + 1) * h - h * 0.06, kSize, h * 0.06),
                         toColor(grid.wall * (dim * 0.82f)));
        for (int column = 0; column < grid.columns; ++column) {
            const QRectF pane(column * w + w * (1 - grid.wide) / 2, row * h + h * (1 - grid.high) / 2,
                              w * grid.wide, h * grid.high);
            painter.fillRect(pane, windowColour(dice, lampLight, grid.glass));
            painter.fillRect(QRectF(pane.left(), pane.top(), pane.width(), h * 0.05), QColor(0, 0, 0, 70));
        }
    }
    return picture;
}

// Shop fronts: a sign over glass that mirrors the street by day and shows the bright room at night.
QImage paintShops(float lampLight, std::uint32_t seed) {
    QImage picture(1024, 256, QImage::Format_ARGB32_Premultiplied);
    picture.fill(toColor(hex(0x7d7a74) * (1 - 0.7f * lampLight)));
    QPainter painter(&picture);
    Dice dice{seed};
    for (double x = 0; x < 1024;) {
        const double width = std::min(dice(110, 210), 1024 - x);
        const QColor sign =
            QColor::fromHsvF(float(dice(0, 1)), float(dice(0.4, 0.75)), float(dice(0.5, 0.85)));
        const float tint = float(dice(0.75, 1.1));
        QLinearGradient glass(0, 84, 0, 244);
        glass.setColorAt(0, toColor(mix(hex(0x93a9b4), hex(0xfff0cf), lampLight) * tint));
        glass.setColorAt(1, toColor(mix(hex(0x46525c), hex(0xd9b988), lampLight) * tint));
        painter.fillRect(QRectF(x + 6, 84, width - 12, 160), glass);
        const double pane = (width - 12) / std::round((width - 12) / 62);
        for (double at = x + 6 + pane; at < x + width - 10; at += pane)
            painter.fillRect(QRectF(at - 2, 84, 4, 160), QColor(58, 60, 64));
        painter.fillRect(QRectF(x + 6, 236, width - 12, 8), QColor(58, 60, 64));
        painter.fillRect(QRectF(x + 3, 22, width - 6, 54), sign);
        painter.fillRect(QRectF(x + 14, 38, (width - 28) * dice(0.4, 1), 9), QColor(255, 255, 255, 220));
        painter.fillRect(QRectF(x + 14, 54, (width - 28) * dice(0.2, 0.7), 6), QColor(255, 255, 255, 150));
        painter.fillRect(QRectF(x + 5, 76, width - 10, 8), QColor(0, 0, 0, 90));
        x += width;
    }
    return picture;
}

// A shop at the corner that never closes: bright window, coloured band.
QImage paintCornerShop() {
    QImage picture(640, 256, QImage::Format_ARGB32_Premultiplied);
    picture.fill(QColor(40, 42, 48));
    QPainter painter(&picture);
    QLinearGradient room(0, 70, 0, 250);
    room.setColorAt(0, QColor(250, 255, 250));
    room.setColorAt(1, QColor(190, 205, 200));
    painter.fillRect(QRectF(10, 70, 620, 178), room);
    painter.fillRect(QRectF(0, 14, 640, 26), QColor(20, 150, 90));
    painter.fillRect(QRectF(0, 40, 640, 18), QColor(236, 240, 240));
    Dice dice{9};
    for (int shelf = 0; shelf < 3; ++shelf)
        for (int x = 20; x < 430; x += 14)
            painter.fillRect(QRectF(x, 120 + shelf * 40, 11, 26),
                             QColor::fromHsvF(float(dice(0, 1)), 0.5f, 0.8f));
    for (int pane : {10, 165, 320, 470, 625})
        painter.fillRect(QRectF(pane, 62, 6, 190), QColor(60, 64, 70));
    return picture;
}

QImage paintStone(Rgb stone, int rows, std::uint32_t seed) {
    QImage picture(kSize, kSize / 2, QImage::Format_ARGB32_Premultiplied);
    picture.fill(toColor(stone * 0.62f));
    QPainter painter(&picture);
    Dice dice{seed};
    const double high = double(picture.height()) / rows;
    for (int row = 0; row < rows; ++row)
        for (double x = row % 2 ? -20 : 0; x < kSize;) {
            const double width = dice(0.9, 1.7) * high;
            painter.fillRect(QRectF(x, row * high, width - 3, high - 3),
                             toColor(stone * float(dice(0.8, 1.12))));
            x += width;
        }
    return picture;
}

// The tunnel's wall: bright tiles below, concrete above, a rail of cable trays.
QImage paintTiles() {
    QImage picture(256, 256, QImage::Format_ARGB32_Premultiplied);
    picture.fill(QColor(150, 146, 138));
    QPainter painter(&picture);
    painter.fillRect(QRectF(0, 96, 256, 140), QColor(226, 220, 204));
    painter.fillRect(QRectF(0, 92, 256, 5), QColor(200, 96, 40));
    for (int x = 0; x < 256; x += 32)
        painter.fillRect(QRectF(x, 97, 2, 139), QColor(186, 180, 164));
    for (int y = 120; y < 236; y += 24)
        painter.fillRect(QRectF(0, y, 256, 2), QColor(186, 180, 164));
    painter.fillRect(QRectF(0, 236, 256, 20), QColor(90, 88, 84));
    painter.fillRect(QRectF(0, 60, 256, 4), QColor(96, 94, 90));
    painter.fillRect(QRectF(120, 0, 3, 92), QColor(122, 118, 112));
    return picture;
}

QImage paintBarrier() {
    QImage picture(256, 256, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&picture);
    painter.fillRect(QRectF(0, 0, 256, 110), QColor(138, 168, 176));
    painter.fillRect(QRectF(0, 110, 256, 106), QColor(126, 140, 132));
    painter.fillRect(QRectF(0, 216, 256, 40), QColor(140, 138, 132));
    for (int x = 0; x < 256; x += 128)
        painter.fillRect(QRectF(x, 0, 10, 216), QColor(92, 100, 98));
    for (int y : {4, 58, 108, 160, 212})
        painter.fillRect(QRectF(0, y, 256, 5), QColor(104, 114, 112));
    return picture;
}

QImage paintRailing() {
    QImage picture(256, 64, QImage::Format_ARGB32_Premultiplied);
    picture.fill(0);
    QPainter painter(&picture);
    for (int y : {4, 24, 42})
        painter.fillRect(QRectF(0, y, 256, 5), QColor(176, 182, 186));
    for (int x = 0; x < 256; x += 64)
        painter.fillRect(QRectF(x, 2, 9, 62), QColor(150, 156, 162));
    return picture;
}

QImage paintGuardRail() {
    QImage picture(256, 64, QImage::Format_ARGB32_Premultiplied);
    picture.fill(0);
    QPainter painter(&picture);
    for (int x = 20; x < 256; x += 128)
        painter.fillRect(QRectF(x, 4, 12, 60), QColor(120, 124, 126));
    painter.fillRect(QRectF(0, 6, 256, 11), QColor(206, 210, 212));
    painter.fillRect(QRectF(0, 17, 256, 8), QColor(142, 148, 152));
    painter.fillRect(QRectF(0, 25, 256, 11), QColor(196, 200, 202));
    return picture;
}

} // namespace

WallCover paintCover(Cover cover, float lampLight, std::uint32_t seed) {
    const auto windows = [&](const Grid& grid, float wide, float high) {
        return WallCover(paintWindows(grid, lampLight, seed), wide, high);
    };
    switch (cover) {
        case Cover::Offices:
            return windows({8, 8, 0.86, 0.52, hex(0xb8b0a2), hex(0x5a7890)}, 24, 28);
        case Cover::Glass:
            return windows({10, 8, 0.93, 0.90, hex(0x8aa2b0), hex(0x7ba2bd)}, 26, 30);
        case Cover::Brick:
            return windows({8, 8, 0.52, 0.50, hex(0x9a6a52), hex(0x54646e)}, 26, 26);
        case Cover::Concrete:
            return windows({7, 8, 0.62, 0.46, hex(0xa9a8a4), hex(0x506270)}, 24, 27);
        case Cover::Flats:
            return windows({6, 8, 0.66, 0.55, hex(0xd9d4c8), hex(0x6d8594)}, 32, 24);
        case Cover::Shops:
            return {paintShops(lampLight, seed), 17, 4.2f};
        case Cover::CornerShop:
            return {paintCornerShop(), 10, 3.9f};
        case Cover::Stone:
            return {paintStone(hex(0x9b9689), 6, seed), 6.8f, 3.4f};
        case Cover::Tiles:
            return {paintTiles(), 4, 5.3f};
        case Cover::Barrier:
            return {paintBarrier(), 4.4f, 4.6f};
        case Cover::Railing:
            return {paintRailing(), 4, 1.1f};
        case Cover::GuardRail:
            return {paintGuardRail(), 4, 0.85f};
    }
    return {};
}

} // namespace ql240
