#include "platform/logging.h"

namespace ql240 {

// Without a rule not even warnings are printed, since they would only puzzle users of a terminal.
Q_LOGGING_CATEGORY(lcMedia, "ql240.media", QtCriticalMsg)
Q_LOGGING_CATEGORY(lcSensors, "ql240.sensors", QtCriticalMsg)
Q_LOGGING_CATEGORY(lcCard, "ql240.card", QtCriticalMsg)
Q_LOGGING_CATEGORY(lcMap, "ql240.map", QtCriticalMsg)
Q_LOGGING_CATEGORY(lcDesktop, "ql240.desktop", QtCriticalMsg)

} // namespace ql240
