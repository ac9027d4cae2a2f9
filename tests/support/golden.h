// Compares a picture with its reference in tests/golden. Fonts and frames may differ slightly; the smallest
// button moved by a pixel, 8 pixels in all, fails. A failure saves both pictures and their difference.
#pragma once

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QTest>
#include <cstdlib>

namespace ql240 {

inline constexpr int kGoldenChannelTolerance = 32;
inline constexpr int kGoldenPixels = 4;

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

// Black where both are equal.
inline QImage differenceOf(const QImage& a, const QImage& b) {
    QImage difference = a;
    QPainter painter(&difference);
    painter.setCompositionMode(QPainter::CompositionMode_Difference);
    painter.drawImage(0, 0, b);
    return difference;
}

// With QL240_UPDATE_GOLDEN set, writes the reference instead.
inline bool matchesGolden(const QImage& painted, const QString& name, QByteArray& report) {
    const QString kept = QStringLiteral(QL240_GOLDEN_FOLDER "/%1.png").arg(name);
    QImage actual = painted.convertToFormat(QImage::Format_RGB32);
    actual.setDevicePixelRatio(1);
    if (qEnvironmentVariableIsSet("QL240_UPDATE_GOLDEN"))
        return actual.save(kept);
    const QImage expected = QImage(kept).convertToFormat(QImage::Format_RGB32);
    const bool sameSize = expected.size() == actual.size();
    const int count = sameSize ? differingPixels(actual, expected) : -1;
    if (sameSize && count <= kGoldenPixels)
        return true;
    const QString folder = QStringLiteral(QL240_GOLDEN_FAILURES);
    QDir().mkpath(folder);
    actual.save(QStringLiteral("%1/%2-actual.png").arg(folder, name));
    expected.save(QStringLiteral("%1/%2-expected.png").arg(folder, name));
    differenceOf(actual, expected).save(QStringLiteral("%1/%2-difference.png").arg(folder, name));
    report = QStringLiteral("%1: %2 pixels differ, see %3").arg(name).arg(count).arg(folder).toLocal8Bit();
    return false;
}

} // namespace ql240
