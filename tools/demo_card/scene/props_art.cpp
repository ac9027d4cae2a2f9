#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QRadialGradient>
#include <cmath>

#include "demo_card/scene/art.h"
#include "demo_card/scene/dot_text.h"

namespace ql240 {
namespace {

QImage blank(int width, int height) {
    QImage picture(width, height, QImage::Format_ARGB32_Premultiplied);
    picture.fill(0);
    return picture;
}

struct Foliage {
    QRectF crown;
    double taper; // 0 round … 1 pointed at the top
    int blobs;
    double blobSize;
    Rgb dark, bright;
};

// Blobs from dark below and behind to bright on the upper left, inside an egg-shaped crown.
void paintFoliage(QPainter& painter, const Foliage& foliage, std::uint32_t seed) {
    painter.setPen(Qt::NoPen);
    const QRectF& c = foliage.crown;
    for (int i = 0; i < foliage.blobs; ++i) {
        const double y = std::sqrt(hashNoise(seed, i * 5));
        const double half =
            std::sqrt(std::max(0.0, 1 - std::pow(2 * y - 1, 2))) * (1 - foliage.taper * (1 - y));
        const double x = (2 * hashNoise(seed, i * 5 + 1) - 1) * half;
        const double depth = double(i) / foliage.blobs;
        const double sun = std::clamp(
            0.55 - 0.35 * x - 0.6 * (y - 0.45) + 0.3 * (hashNoise(seed, i * 5 + 2) - 0.5), 0.0, 1.0);
        const double size =
            foliage.blobSize * (1.25 - 0.6 * depth) * (0.7 + 0.6 * hashNoise(seed, i * 5 + 3));
        QColor colour = toColor(mix(foliage.dark, foliage.bright, float(sun * depth)));
        colour.setAlphaF(0.92f);
        painter.setBrush(colour);
        painter.drawEllipse(QPointF(c.center().x() + x * c.width() / 2, c.top() + y * c.height()), size,
                            size * 0.8);
    }
}

PropArt paintTree(Prop prop, std::uint32_t seed) {
    QImage picture = blank(300, 400);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient bark(138, 0, 164, 0);
    bark.setColorAt(0, QColor(116, 96, 78));
    bark.setColorAt(1, QColor(58, 46, 38));
    painter.setBrush(bark);
    painter.setPen(Qt::NoPen);
    QPainterPath trunk(QPointF(140, 400));
    trunk.quadTo(146, 300, 146, 180);
    trunk.lineTo(156, 180);
    trunk.quadTo(156, 300, 163, 400);
    painter.drawPath(trunk);
    if (prop == Prop::Pine)
        paintFoliage(painter, {QRectF(55, 14, 190, 330), 0.85, 420, 17, hex(0x16301f), hex(0x4f7a4a)}, seed);
    else if (prop == Prop::Ginkgo)
        paintFoliage(painter, {QRectF(42, 10, 216, 290), 0.5, 420, 20, hex(0x2c4a1c), hex(0xa9c65a)}, seed);
    else
        paintFoliage(painter, {QRectF(28, 12, 244, 250), 0.1, 420, 23, hex(0x24421f), hex(0x82ad56)}, seed);
    return {Mipmap(picture), 0.5f, false};
}

PropArt paintBush(std::uint32_t seed) {
    QImage picture = blank(256, 128);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    paintFoliage(painter, {QRectF(24, 22, 208, 110), 0, 200, 17, hex(0x1f3a1c), hex(0x77a04e)}, seed);
    return {Mipmap(picture), 0.5f, false};
}

// A wooded hill over the tunnel's mouth.
PropArt paintHill(std::uint32_t seed) {
    QImage picture = blank(1400, 420);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath hill(QPointF(0, 420));
    hill.cubicTo(180, 250, 360, 70, 700, 60);
    hill.cubicTo(1040, 70, 1220, 250, 1400, 420);
    painter.setClipPath(hill);
    painter.fillRect(picture.rect(), QColor(44, 66, 36));
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < 2600; ++i) {
        const double down = double(i) / 2600;
        const double x = hashNoise(seed, i * 3) * 1400;
        const double y = 40 + down * 400 + 20 * hashNoise(seed, i * 3 + 1);
        const double sun = 0.25 + 0.6 * hashNoise(seed, i * 3 + 2) * (1 - down * 0.6);
        painter.setBrush(toColor(mix(hex(0x26421f), hex(0x8fb05a), float(sun))));
        painter.drawEllipse(QPointF(x, y), 19 - 5 * sun, 14 - 3 * sun);
    }
    return {Mipmap(picture), 0.5f, false};
}

// Pole at the right edge, arm and lamp over the road to its left.
PropArt paintLamp() {
    QImage picture = blank(160, 512);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(120, 126, 132), 7, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(146, 512, 146, 40);
    painter.setPen(QPen(QColor(128, 134, 140), 5, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(QRect(40, 18, 106, 90), 0, 90 * 16);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(96, 100, 106));
    painter.drawRoundedRect(QRectF(14, 13, 86, 13), 6, 6);
    painter.setBrush(QColor(255, 246, 220));
    painter.drawRoundedRect(QRectF(20, 22, 62, 7), 3, 3);
    return {Mipmap(picture), 0.91f, true};
}

PropArt paintPost() {
    QImage picture = blank(40, 200);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(214, 216, 214));
    painter.drawRoundedRect(QRectF(12, 4, 16, 196), 5, 5);
    painter.setBrush(QColor(240, 150, 40));
    painter.drawRect(QRectF(12, 26, 16, 30));
    return {Mipmap(picture), 0.5f, false};
}

void drawDots(QPainter& painter, QRectF area, const QString& text) {
    const QImage dots = dotTextPicture(text);
    painter.drawImage(area, dots.scaled(dots.width() * 8, dots.height() * 8));
}

PropArt paintSpeedSign() {
    QImage picture = blank(120, 400);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRectF(56, 60, 8, 340), QColor(140, 144, 148));
    painter.setPen(QPen(QColor(206, 36, 38), 13));
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(60, 60), 49, 49);
    painter.setPen(Qt::NoPen);
    QImage dots = dotTextPicture(QStringLiteral("60")).scaled(88, 56);
    QPainter tint(&dots);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(dots.rect(), QColor(20, 22, 30));
    tint.end();
    painter.drawImage(QRectF(27, 38, 74, 46), dots);
    return {Mipmap(picture), 0.5f, false};
}

// A green direction board that hangs over the road from a pole on the right.
PropArt paintBoard(const QString& text) {
    QImage picture = blank(640, 640);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRectF(604, 60, 18, 580), QColor(132, 138, 142));
    painter.fillRect(QRectF(60, 92, 550, 12), QColor(132, 138, 142));
    painter.setPen(QPen(Qt::white, 6));
    painter.setBrush(QColor(16, 106, 74));
    painter.drawRoundedRect(QRectF(40, 20, 430, 210), 14, 14);
    const double width = std::min(390.0, text.size() * 34.0);
    drawDots(painter, QRectF(255 - width / 2, 46, width, 46), text);
    QPainterPath arrow(QPointF(255, 118));
    for (const QPointF& point : {QPointF(290, 160), QPointF(266, 154), QPointF(266, 212), QPointF(244, 212),
                                 QPointF(244, 154), QPointF(220, 160)})
        arrow.lineTo(point);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawPath(arrow);
    return {Mipmap(picture), 0.95f, true};
}

} // namespace

PropArt paintProp(Prop prop, const World& world) {
    switch (prop) {
        case Prop::Ginkgo:
        case Prop::Maple:
        case Prop::Pine:
            return paintTree(prop, world.seed * 7 + unsigned(prop));
        case Prop::Bush:
            return paintBush(world.seed);
        case Prop::Hill:
            return paintHill(world.seed);
        case Prop::Lamp:
            return paintLamp();
        case Prop::Post:
            return paintPost();
        case Prop::SpeedSign:
            return paintSpeedSign();
        case Prop::Board:
            return paintBoard(world.board);
    }
    return {};
}

Mipmap paintSignal(SignalColour colour) {
    QImage picture = blank(512, 512);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRectF(490, 40, 14, 472), QColor(150, 150, 140));
    painter.fillRect(QRectF(60, 58, 440, 9), QColor(150, 150, 140));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(26, 28, 30));
    painter.drawRoundedRect(QRectF(70, 34, 156, 54), 14, 14);
    const QColor lit[] = {QColor(255, 66, 48), QColor(255, 196, 40), QColor(70, 255, 170)};
    const QColor dim[] = {QColor(70, 20, 18), QColor(70, 54, 18), QColor(16, 60, 44)};
    for (int i = 0; i < 3; ++i) {
        painter.setBrush(i == int(colour) ? lit[i] : dim[i]);
        painter.drawEllipse(QPointF(98 + i * 50, 61), 19, 19);
    }
    return Mipmap(picture);
}

Mipmap paintWalker(Rgb coat, bool stride) {
    QImage picture = blank(140, 260);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const double reach = stride ? 26 : 6;
    painter.setPen(QPen(QColor(42, 44, 60), 19, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(68, 150), QPointF(70 - reach, 246));
    painter.drawLine(QPointF(72, 150), QPointF(70 + reach, 246));
    painter.setPen(QPen(toColor(coat * 0.75f), 15, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(70, 74), QPointF(70 + reach * 0.9, 140));
    painter.setPen(Qt::NoPen);
    painter.setBrush(toColor(coat));
    painter.drawRoundedRect(QRectF(47, 58, 46, 104), 20, 20);
    painter.setBrush(QColor(222, 184, 152));
    painter.drawEllipse(QPointF(72, 36), 17, 20);
    painter.setBrush(QColor(34, 28, 26));
    painter.drawChord(QRectF(53, 14, 37, 40), 40 * 16, 200 * 16);
    return Mipmap(picture);
}

Mipmap paintGlow() {
    QImage picture = blank(128, 128);
    QPainter painter(&picture);
    QRadialGradient light(QPointF(64, 64), 64);
    for (int i = 0; i <= 16; ++i) {
        const double away = i / 16.0;
        light.setColorAt(away, QColor(255, 255, 255, int(255 * std::pow(1 - away, 2.4))));
    }
    painter.fillRect(picture.rect(), light);
    return Mipmap(picture);
}

Mipmap paintShadow() {
    QImage picture = blank(128, 64);
    QPainter painter(&picture);
    painter.scale(1, 0.5);
    QRadialGradient dark(QPointF(64, 64), 64);
    dark.setColorAt(0, QColor(0, 0, 0, 190));
    dark.setColorAt(0.7, QColor(0, 0, 0, 150));
    dark.setColorAt(1, QColor(0, 0, 0, 0));
    painter.fillRect(QRectF(0, 0, 128, 128), dark);
    return Mipmap(picture);
}

} // namespace ql240
