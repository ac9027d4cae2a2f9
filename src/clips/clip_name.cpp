#include "clips/clip_name.h"

namespace ql240 {

QString clipDateText(const QString& fileName) {
    QString text = fileName;
    for (const char* part : {"REC_", "EVS_", ".mp4", "_"})
        text.remove(QLatin1String(part));
    // insert() past the end pads with spaces.
    text.insert(4, QLatin1Char('.'));
    text.insert(7, QLatin1Char('.'));
    return text.left(10);
}

QDateTime clipStart(const QString& fileName) {
    return QDateTime::fromString(fileName.mid(4, 19), QStringLiteral("yyyy_MM_dd_hh_mm_ss"));
}

} // namespace ql240
