#include "demo_card/scene/art.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace ql240::demo {
namespace {

constexpr double kCarPixels = 200; // a metre

class Drawing : public QSvgRenderer {
public:
    explicit Drawing(const QString& name, Rgb colour = {}) : m_part(name.section(QLatin1Char('#'), 1)) {
        QFile file(QStringLiteral(":/demo_card/%1.svg").arg(name.section(QLatin1Char('#'), 0, 0)));
        if (!file.open(QIODevice::ReadOnly))
            qFatal("no drawing %s", qPrintable(name));
        load(file.readAll().replace("currentColor", toColor(colour).name().toLatin1()));
    }

    QRectF frame() const { return m_part.isEmpty() ? viewBoxF() : boundsOnElement(m_part); }
    QSizeF metres() const { return QSizeF(defaultSize()) / 100; } // covers' files give centimetres

    QImage paint() {
        QImage image(frame().size().toSize(), QImage::Format_ARGB32_Premultiplied);
        image.fill(0);
        QPainter painter(&image);
        m_part.isEmpty() ? render(&painter) : render(&painter, m_part);
        return image;
    }

private:
    QString m_part;
};

struct CarModel {
    const char *file, *kind; // kind: prefix of side and cabin
    unsigned colour;
    double size;
    float cabinFromBack; // m
};
constexpr CarModel kModels[] = {{"sedan", "", 0xb9bfc6, 1, 0.85f},      {"sedan", "", 0x25282e, 1, 0.85f},
                                {"tall", "", 0xe9ebec, 1, 0.12f},       {"tall", "", 0xb5262c, 0.89, 0.12f},
                                {"sedan", "taxi-", 0xd9792b, 1, 0.85f}, {"bus", "", 0x2a62b0, 1, 0},
                                {"truck", "", 0x3a6ea8, 1, 0}};

Picture pictureOf(Drawing drawing) {
    Picture picture{Mipmap(drawing.paint())};
    const auto place = [&](const char* element) {
        const QPointF middle = drawing.boundsOnElement(QLatin1String(element)).center();
        return QPointF(middle.x() / drawing.frame().width(), middle.y() / drawing.frame().height());
    };
    if (drawing.elementExists(QStringLiteral("foot")))
        picture.foot = place("foot").x();
    if (drawing.elementExists(QStringLiteral("light")))
        picture.light = place("light");
    return picture;
}

CarArt carOf(const CarModel& model) {
    const auto part = [&](const char* kind, const char* name) {
        return Drawing(QStringLiteral("%1#%2%3").arg(QLatin1String(model.file), QLatin1String(kind),
                                                     QLatin1String(name)),
                       hex(model.colour));
    };
    Drawing side = part(model.kind, "side");
    const QSizeF end = part("", "back").frame().size() * (model.size / kCarPixels);
    const QSizeF flank = side.frame().size() * (model.size / kCarPixels);
    CarArt art{pictureOf(part("", "back")),
               pictureOf(part("", "braking")),
               pictureOf(part("", "front")),
               {},
               WallCover(side.paint(), flank),
               static_cast<float>(end.width()),
               static_cast<float>(end.height()),
               static_cast<float>(flank.width()),
               model.cabinFromBack};
    if (model.cabinFromBack > 0)
        art.cabin = pictureOf(part(model.kind, "cabin"));
    return art;
}

WallCover coverOf(const QString& name, float lampLight) {
    Drawing drawing(name);
    if (!drawing.elementExists(QStringLiteral("lit")))
        return {drawing.paint(), drawing.metres()};
    QImage wall = Drawing(name + QStringLiteral("#wall")).paint();
    QPainter painter(&wall);
    painter.fillRect(wall.rect(), QColor::fromRgbF(0, 0, 0, 0.86f * lampLight));
    painter.setOpacity(static_cast<double>(lampLight));
    drawing.render(&painter, QStringLiteral("lit"));
    painter.end();
    return {wall, drawing.metres()};
}

// The value of a key, created on first use.
template <typename Map, typename Make>
const auto& ensured(Map& map, const typename Map::key_type& key, Make make) {
    const auto found = map.find(key);
    return found != map.end() ? found->second : map.emplace(key, make()).first->second;
}

} // namespace

const Picture& Art::picture(const QString& name, Rgb colour) {
    return ensured(m_pictures, {name, toPixel(colour)}, [&] { return pictureOf(Drawing(name, colour)); });
}

const CarArt& Art::car(CarLook look) {
    return ensured(m_cars, look, [&] { return carOf(kModels[static_cast<int>(look)]); });
}

const WallCover& Art::cover(const QString& name, float lampLight) {
    return ensured(m_covers, name, [&] { return coverOf(name, lampLight); });
}

} // namespace ql240::demo
