// The texts that the map view passes to its page: the page itself and the script calls. No widgets. Numbers
// don't depend on the locale. Positions in degrees, north and east positive.
#pragma once

#include <QString>

#include "sensors/sensor_track.h"

namespace ql240 {

// The whole page as HTML, with the map at this position.
QString mapPage(double latitude, double longitude);

// go(…): moves the map.
QString goScript(double latitude, double longitude);

// setTrack(…): the clip's track, one list of points for each stretch with a fix; an empty one clears it.
QString trackScript(const SensorTrack& track);

// setTiles(…): the street tiles' URL template with {z}, {x} and {y}, and the size limits of a tile. An empty
// template turns the tiles off.
QString tilesScript(const QString& address);

} // namespace ql240
