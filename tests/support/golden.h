// Compares a painted picture with the one kept under tests/golden. A few pixels may differ, as fonts are
// drawn a little otherwise from version to version; a digit or a lamp more or less is too much. A failure
// saves the picture painted to the build folder and names the place.
#pragma once

#include <QDir>
#include <QImage>
#include <QTest>
#include <cstdlib>

namespace ql240 {

inline constexpr int kGoldenChannelTolerance = 32;
inline constexpr double kGoldenPixelShare = 0.0001;

inline int differingPixels(const QImage& a, const QImage& b) {
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            count += std::max({std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                               std::abs(qBlue(p) - qBlue(q))}) > kGoldenChannelTolerance;
        }
    }
    return count;
}

// QVERIFY2(matchesGolden(…), goldenReport(…)). With QL240_UPDATE_GOLDEN set the kept picture is written anew
// instead.
inline bool matchesGolden(const QImage& painted, const QString& name, QByteArray& report) {
    const QString kept = QStringLiteral(QL240_GOLDEN_FOLDER "/%1.png").arg(name);
    const QImage actual = painted.convertToFormat(QImage::Format_RGB32);
    if (qEnvironmentVariableIsSet("QL240_UPDATE_GOLDEN"))
        return actual.save(kept);
    const QImage expected = QImage(kept).convertToFormat(QImage::Format_RGB32);
    const bool sameSize = expected.size() == actual.size();
    const int count = sameSize ? differingPixels(actual, expected) : -1;
    if (sameSize && count <= kGoldenPixelShare * actual.width() * actual.height())
        return true;
    const QString folder = QStringLiteral(QL240_GOLDEN_FAILURES);
    QDir().mkpath(folder);
    actual.save(QStringLiteral("%1/%2-actual.png").arg(folder, name));
    report = QStringLiteral("%1: %2 pixels differ, see %3").arg(name).arg(count).arg(folder).toLocal8Bit();
    return false;
}

} // namespace ql240
