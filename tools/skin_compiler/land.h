// The world's land areas, drawn behind the time zones and on the globe.
#pragma once

#include <QList>
#include <QPolygonF>
#include <QString>

namespace ql240::skin {

// Polygons of degrees, x to the east and y to the north, from the folder's world.txt; empty if it can't be
// read.
QList<QPolygonF> readLand(const QString& sourceFolder);

bool isLand(const QList<QPolygonF>& land, QPointF degrees);

} // namespace ql240::skin
