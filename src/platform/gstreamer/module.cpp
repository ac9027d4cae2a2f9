// The module's only entry.
#include <QtGlobal>

#include "platform/gstreamer/gst_media_platform.h"

extern "C" Q_DECL_EXPORT ql240::MediaPlatform* ql240CreateMediaPlatform() {
    return new ql240::gstreamer::GstMediaPlatform;
}
