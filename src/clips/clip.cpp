#include "clips/clip.h"

namespace ql240 {

std::int32_t clipCategory(const QString& fileName) {
    if (fileName.startsWith(QLatin1String("REC_"), Qt::CaseInsensitive))
        return kDrivingClip;
    if (fileName.startsWith(QLatin1String("EVS_"), Qt::CaseInsensitive))
        return kEventClip;
    return kOtherClip;
}

} // namespace ql240
