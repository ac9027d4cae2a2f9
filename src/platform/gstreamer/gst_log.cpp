#include "platform/gstreamer/gst_log.h"

#include <QString>
#include <memory>

#include "platform/logging.h"

namespace ql240::gstreamer {

void logError(const char* whose, GstMessage* message) {
    if (GST_MESSAGE_TYPE(message) != GST_MESSAGE_ERROR || !lcMedia().isWarningEnabled())
        return;
    GError* error = nullptr;
    gchar* details = nullptr;
    gst_message_parse_error(message, &error, &details);
    const std::unique_ptr<GError, decltype(&g_error_free)> ownError(error, g_error_free);
    const std::unique_ptr<gchar, decltype(&g_free)> ownDetails(details, g_free);
    qCWarning(lcMedia) << whose << "error in" << QString::fromUtf8(GST_MESSAGE_SRC_NAME(message))
                       << QString::fromUtf8(error->message) << QString::fromUtf8(details);
}

} // namespace ql240::gstreamer
