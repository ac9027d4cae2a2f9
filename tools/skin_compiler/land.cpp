#include "land.h"

#include <QFile>
#include <algorithm>

namespace ql240::skin {

QList<QPolygonF> readLand(const QString& sourceFolder) {
    QFile file(sourceFolder + QStringLiteral("/world.txt"));
    QList<QPolygonF> land;
    if (!file.open(QIODevice::ReadOnly))
        return land;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).section(QLatin1Char('#'), 0, 0).trimmed();
        QPolygonF polygon;
        for (const QString& point : line.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            polygon << QPointF(point.section(QLatin1Char(','), 0, 0).toDouble(),
                               point.section(QLatin1Char(','), 1, 1).toDouble());
        }
        if (polygon.size() > 2)
            land << polygon;
    }
    return land;
}

bool isLand(const QList<QPolygonF>& land, QPointF degrees) {
    return std::any_of(land.begin(), land.end(), [&](const QPolygonF& polygon) {
        return polygon.containsPoint(degrees, Qt::OddEvenFill);
    });
}

} // namespace ql240::skin
