// The streams of a clip as its container describes them.
#pragma once

#include <QString>
#include <vector>

#include "clips/formats/clip_layout.h"

namespace ql240 {

struct ClipStream {
    enum class Kind { Video, Sound, Data };

    Kind kind = Kind::Data;
    QString codec; // "H.264", or the container's four-character code
    int width = 0;
    int height = 0;
    double framesASecond = 0;
    int samplesASecond = 0;
    int channels = 0;
    std::int64_t lengthMs = 0;
};

struct CameraText {
    QString camera;
    QString firmware;
};

namespace sensorfiles {

std::vector<ClipStream> readStreams(ByteSource& source, const ClipLayout& clip);
CameraText readCameraText(ByteSource& source, const ClipLayout& clip);
// "moov"; "?" replaces unprintable characters.
QString typeText(std::uint32_t type);

} // namespace sensorfiles
} // namespace ql240
