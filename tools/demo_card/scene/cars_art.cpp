#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include "demo_card/scene/art.h"

namespace ql240 {
namespace {

enum class Body { Sedan, Tall, Bus, Truck };

struct CarStyle {
    Body body;
    Rgb paint;
    float width, height, length;
    bool taxi = false;
};

CarStyle styleOf(CarLook look) {
    switch (look) {
        case CarLook::SilverSedan:
            return {Body::Sedan, hex(0xb9bfc6), 1.84f, 1.47f, 4.8f};
        case CarLook::BlackSedan:
            return {Body::Sedan, hex(0x25282e), 1.87f, 1.48f, 4.9f};
        case CarLook::WhiteSuv:
            return {Body::Tall, hex(0xe9ebec), 1.88f, 1.70f, 4.6f};
        case CarLook::RedHatch:
            return {Body::Tall, hex(0xb5262c), 1.72f, 1.50f, 4.0f};
        case CarLook::OrangeTaxi:
            return {Body::Sedan, hex(0xd9792b), 1.83f, 1.48f, 4.8f, true};
        case CarLook::BlueBus:
            return {Body::Bus, hex(0x2a62b0), 2.49f, 3.20f, 10.9f};
        case CarLook::Truck:
            return {Body::Truck, hex(0x3a6ea8), 2.10f, 2.70f, 6.0f};
    }
    return {};
}

constexpr int kFaceWidth = 384;
constexpr int kSideLength = 640;

// A painter over a blank picture whose unit is the metre, the origin at the lower left.
class MetrePainter {
public:
    MetrePainter(float width, float height, int pixelsWide) : m_scale(pixelsWide / double(width)) {
        picture = QImage(pixelsWide, int(height * m_scale), QImage::Format_ARGB32_Premultiplied);
        picture.fill(0);
        painter.begin(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.translate(0, picture.height());
        painter.scale(m_scale, -m_scale);
    }
    QImage finish() {
        painter.end();
        return picture;
    }
    void box(double x, double y, double w, double h, const QBrush& brush, double radius = 0) {
        painter.setBrush(brush);
        painter.drawRoundedRect(QRectF(x, y, w, h), radius, radius);
    }
    void shape(const QBrush& brush, const QList<QPointF>& points) {
        painter.setBrush(brush);
        painter.drawPolygon(points.constData(), int(points.size()));
    }
    QBrush upright(double low, double high, Rgb below, Rgb above) const {
        QLinearGradient gradient(0, low, 0, high);
        gradient.setColorAt(0, toColor(below));
        gradient.setColorAt(1, toColor(above));
        return gradient;
    }

    QImage picture;
    QPainter painter;

private:
    double m_scale;
};

const QColor kTyre(22, 23, 26);
const QColor kGlassLow(28, 36, 46);
const QColor kPlate(228, 232, 226);

QBrush glass(const MetrePainter& p, double low, double high) {
    return p.upright(low, high, hex(0x1a222c), hex(0x6d8496));
}

void paintTyres(MetrePainter& p, float width) {
    p.box(0.06, 0, 0.24, 0.5, kTyre, 0.05);
    p.box(width - 0.30, 0, 0.24, 0.5, kTyre, 0.05);
}

double waistOf(const CarStyle& s) {
    return s.height * (s.body == Body::Sedan ? 0.65 : 0.61);
}

// The trapezoid of the cabin with its window, and the deck between it and the body's end.
void paintCabin(MetrePainter& p, const CarStyle& s) {
    const double w = s.width;
    const double h = s.height;
    const double waist = waistOf(s);
    const double inset = s.body == Body::Sedan ? 0.30 : 0.22;
    p.box(0.06, waist - 0.4, w - 0.12, 0.41, toColor(s.paint * 1.12f), 0.05);
    p.shape(p.upright(waist, h, s.paint * 0.8f, s.paint * 1.15f), {{0.08, waist},
                                                                   {inset, h - 0.04},
                                                                   {inset + 0.12, h},
                                                                   {w - inset - 0.12, h},
                                                                   {w - inset, h - 0.04},
                                                                   {w - 0.08, waist}});
    p.shape(glass(p, waist, h - 0.1), {{0.18, waist + 0.03},
                                       {inset + 0.08, h - 0.12},
                                       {w - inset - 0.08, h - 0.12},
                                       {w - 0.18, waist + 0.03}});
}

// The body below the windows, for cars seen along the road.
void paintBodyEnd(MetrePainter& p, const CarStyle& s) {
    const double w = s.width;
    const double waist = waistOf(s);
    p.box(0.02, 0.24, w - 0.04, waist - 0.24, p.upright(0.3, waist, s.paint * 0.62f, s.paint * 1.1f), 0.09);
    p.box(0.04, 0.19, w - 0.08, 0.27, p.upright(0.2, 0.46, hex(0x1c1d20), s.paint * 0.7f), 0.06);
    p.box(0.10, waist - 0.03, w - 0.20, 0.03, toColor(s.paint * 1.25f), 0.01);
}

void paintLamps(MetrePainter& p, const CarStyle& s, double y, QColor colour, double wide, double high) {
    p.box(0.07, y, wide, high, colour, 0.05);
    p.box(s.width - 0.07 - wide, y, wide, high, colour, 0.05);
}

void paintPlate(MetrePainter& p, const CarStyle& s, double y) {
    p.box(s.width / 2 - 0.26, y, 0.52, 0.13, kPlate, 0.02);
    p.box(s.width / 2 - 0.19, y + 0.04, 0.38, 0.05, QColor(60, 66, 70));
}

void paintCarBack(MetrePainter& p, const CarStyle& s, bool braking) {
    const double waist = waistOf(s);
    paintTyres(p, s.width);
    paintBodyEnd(p, s);
    paintLamps(p, s, waist - 0.24, braking ? QColor(255, 70, 50) : QColor(168, 24, 28), 0.36, 0.16);
    p.box(0.11, waist - 0.15, 0.12, 0.05, braking ? QColor(255, 214, 190) : QColor(222, 120, 90), 0.02);
    p.box(s.width - 0.23, waist - 0.15, 0.12, 0.05, braking ? QColor(255, 214, 190) : QColor(222, 120, 90),
          0.02);
    paintPlate(p, s, waist - 0.30);
}

void paintCarFront(MetrePainter& p, const CarStyle& s) {
    const double waist = waistOf(s);
    paintTyres(p, s.width);
    paintBodyEnd(p, s);
    paintLamps(p, s, waist - 0.26, QColor(250, 250, 236), 0.34, 0.15);
    p.box(s.width / 2 - 0.42, waist - 0.27, 0.84, 0.16, QColor(30, 32, 36), 0.04);
    p.box(s.width / 2 - 0.38, waist - 0.20, 0.76, 0.02, QColor(150, 156, 160));
    paintPlate(p, s, 0.32);
}

// Buses and trucks: a box with its window or doors.
void paintBoxFace(MetrePainter& p, const CarStyle& s, bool back, bool braking) {
    const double w = s.width;
    const double h = s.height;
    paintTyres(p, s.width);
    const bool cargo = s.body == Body::Truck && back;
    const Rgb paint = cargo ? hex(0xd5d8da) : s.paint;
    p.box(0, 0.34, w, h - 0.36, p.upright(0.3, h, paint * 0.75f, paint * 1.1f), 0.05);
    if (cargo) {
        p.box(w / 2 - 0.012, 0.7, 0.024, h - 0.85, QColor(110, 114, 118));
        p.box(0.12, 0.34, w - 0.24, 0.22, QColor(40, 42, 46), 0.03);
    } else {
        const double sill = s.body == Body::Bus ? (back ? 1.75 : 1.15) : 1.35;
        p.box(0.16, sill, w - 0.32, h - sill - 0.42, glass(p, sill, h), 0.1);
    }
    if (s.body == Body::Bus) {
        p.box(w / 2 - 0.6, h - 0.34, 1.2, 0.22, QColor(20, 20, 22), 0.03);
        p.box(w / 2 - 0.5, h - 0.28, 0.7, 0.09, QColor(255, 170, 60));
    }
    if (back)
        paintLamps(p, s, 0.62, braking ? QColor(255, 70, 50) : QColor(160, 22, 26), 0.14, 0.34);
    else
        paintLamps(p, s, 0.60, QColor(250, 250, 236), 0.32, 0.17);
    paintPlate(p, s, 0.42);
}

void paintWheels(MetrePainter& p, std::initializer_list<double> places, double radius) {
    for (double x : places) {
        p.painter.setBrush(kTyre);
        p.painter.drawEllipse(QPointF(x, radius), radius, radius);
        p.painter.setBrush(QColor(150, 154, 160));
        p.painter.drawEllipse(QPointF(x, radius), radius * 0.6, radius * 0.6);
        p.painter.setBrush(QColor(70, 74, 80));
        p.painter.drawEllipse(QPointF(x, radius), radius * 0.22, radius * 0.22);
    }
}

void paintCarSide(MetrePainter& p, const CarStyle& s) {
    const double l = s.length;
    const double h = s.height;
    const bool tall = s.body == Body::Tall;
    const double waist = waistOf(s);
    const double rear = tall ? 0.02 : 0.09;
    p.shape(p.upright(waist, h, s.paint * 0.8f, s.paint * 1.15f), {{l * rear, waist},
                                                                   {l * (tall ? 0.05 : 0.26), h - 0.03},
                                                                   {l * (tall ? 0.1 : 0.34), h},
                                                                   {l * 0.56, h},
                                                                   {l * 0.62, h - 0.05},
                                                                   {l * 0.76, waist}});
    p.shape(glass(p, waist, h), {{l * (rear + 0.05), waist + 0.03},
                                 {l * (tall ? 0.09 : 0.29), h - 0.12},
                                 {l * 0.46, h - 0.11},
                                 {l * 0.46, waist + 0.03}});
    p.shape(
        glass(p, waist, h),
        {{l * 0.475, waist + 0.03}, {l * 0.475, h - 0.11}, {l * 0.585, h - 0.13}, {l * 0.70, waist + 0.03}});
    p.box(0.02, 0.22, l - 0.04, waist - 0.16, p.upright(0.22, waist, s.paint * 0.6f, s.paint * 1.12f), 0.06);
    p.box(l * 0.465, 0.3, 0.015, waist - 0.3, toColor(s.paint * 0.6f));
    p.box(0.03, waist - 0.24, 0.22, 0.14, QColor(170, 26, 30), 0.04);
    p.box(l - 0.3, waist - 0.27, 0.25, 0.12, QColor(246, 246, 232), 0.05);
    paintWheels(p, {l * 0.19, l * 0.81}, 0.33);
}

void paintBoxSide(MetrePainter& p, const CarStyle& s) {
    const double l = s.length;
    const double h = s.height;
    if (s.body == Body::Bus) {
        p.box(0, 0.34, l, h - 0.36, p.upright(0.3, h, s.paint * 0.75f, s.paint * 1.1f), 0.05);
        for (int i = 0; i < 7; ++i)
            p.box(0.3 + i * (l - 0.5) / 7, 1.35, (l - 0.5) / 7 - 0.14, 1.25, glass(p, 1.3, 2.7), 0.08);
        p.box(0.2, 0.9, l - 0.4, 0.1, QColor(236, 238, 240));
        paintWheels(p, {l * 0.24, l * 0.78}, 0.48);
        return;
    }
    p.box(0, 0.34, l * 0.69, h - 0.36, p.upright(0.3, h, hex(0xb9bdc0), hex(0xe6e8e9)), 0.05);
    p.box(l * 0.71, 0.4, l * 0.28, h * 0.72, p.upright(0.4, h, s.paint * 0.7f, s.paint * 1.1f), 0.18);
    p.box(l * 0.80, 1.3, l * 0.15, 0.62, glass(p, 1.3, 2), 0.08);
    p.box(0.1, 0.34, l * 0.7, 0.22, QColor(40, 42, 46));
    paintWheels(p, {l * 0.2, l * 0.82}, 0.42);
}

void paintTaxiSign(MetrePainter& p, double middle, double height) {
    p.box(middle - 0.28, height - 0.02, 0.56, 0.16, QColor(248, 240, 200), 0.05);
}

template <typename Paint>
QImage painted(const CarStyle& s, float width, int pixels, Paint paint) {
    MetrePainter p(width, s.height + 0.15f, pixels);
    paint(p);
    return p.finish();
}

template <typename Paint>
Mipmap end(const CarStyle& s, Paint paint) {
    return Mipmap(painted(s, s.width, kFaceWidth, paint));
}

void paintSide(MetrePainter& p, const CarStyle& s) {
    if (s.body == Body::Bus || s.body == Body::Truck)
        return paintBoxSide(p, s);
    paintCarSide(p, s);
    if (s.taxi)
        paintTaxiSign(p, s.length * 0.45, s.height);
}

} // namespace

CarArt paintCar(CarLook look) {
    const CarStyle s = styleOf(look);
    const bool box = s.body == Body::Bus || s.body == Body::Truck;
    const auto back = [&](bool braking) {
        return end(s, [&](MetrePainter& p) {
            box ? paintBoxFace(p, s, true, braking) : paintCarBack(p, s, braking);
        });
    };
    CarArt art;
    art.back = back(false);
    art.backBraking = back(true);
    art.front =
        end(s, [&](MetrePainter& p) { box ? paintBoxFace(p, s, false, false) : paintCarFront(p, s); });
    if (!box) {
        art.cabin = end(s, [&](MetrePainter& p) {
            paintCabin(p, s);
            if (s.taxi)
                paintTaxiSign(p, double(s.width) / 2, s.height);
        });
    }
    art.cabinFromBack = s.body == Body::Tall ? 0.12f : 0.85f;
    art.cabinFromFront = 1.35f;
    art.width = s.width;
    art.height = s.height + 0.15f;
    art.length = s.length;
    art.lampHeight = box ? 0.75f : s.height * 0.54f;
    art.side = WallCover(painted(s, s.length, kSideLength, [&](MetrePainter& p) { paintSide(p, s); }),
                         art.length, art.height);
    return art;
}

} // namespace ql240
