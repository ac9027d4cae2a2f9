#include "clips/clip_name.h"

#include <QTimeZone>

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
    const QDate date = QDate::fromString(fileName.mid(4, 10), QStringLiteral("yyyy_MM_dd"));
    const QTime time = QTime::fromString(fileName.mid(14, 9), QStringLiteral("_hh_mm_ss"));
    return date.isValid() && time.isValid() ? QDateTime(date, time, QTimeZone::utc()) : QDateTime();
}

} // namespace ql240
