// Qt logging categories: debug messages report decisions, warnings report losses. Nothing is logged unless a
// rule enables its category (QT_LOGGING_RULES). Log untrusted texts as QString, which Qt quotes and escapes.
// Any thread.
#pragma once

#include <QDebug>
#include <QLoggingCategory>

namespace ql240 {

Q_DECLARE_LOGGING_CATEGORY(lcMedia)   // ql240.media: clips, their graphs, seeks, sound
Q_DECLARE_LOGGING_CATEGORY(lcSensors) // ql240.sensors: the sensor data in clips
Q_DECLARE_LOGGING_CATEGORY(lcCard)    // ql240.card: drives, the card, what is read from it and written to it
Q_DECLARE_LOGGING_CATEGORY(lcMap)     // ql240.map: the map's engine and page
Q_DECLARE_LOGGING_CATEGORY(lcDesktop) // ql240.desktop: other windows, the browser, staying awake

} // namespace ql240
