// The texts that the map view hands to its page: the page itself and the script calls. Free of widgets.
// Numbers are written the same way whatever the locale. Positions in degrees, north and east positive.
#pragma once

#include <QString>

#include "sensors/sensor_track.h"

namespace ql240 {

// The whole page as HTML, with the map at a position.
QString mapPage(double latitude, double longitude);

// go(…): moves the map.
QString goScript(double latitude, double longitude);

// setTrack(…): the clip's track, one list of points for each stretch with a fix; none clears it.
QString trackScript(const SensorTrack& track);

// setTiles(…): the address of the street tiles with {z}, {x} and {y} in it; an empty one switches them off.
// And how large a tile may be.
QString tilesScript(const QString& address);

} // namespace ql240
