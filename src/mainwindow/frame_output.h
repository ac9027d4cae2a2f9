// A frame outside the viewer: its file name, its place on a printed page. Plain functions.
#pragma once

#include <QDateTime>
#include <QImage>
#include <QRect>
#include <QString>
#include <array>

namespace ql240 {

using FramePair = std::array<QImage, 2>;

// "QL240yyyyMMddhhmmss.jpg"
QString snapshotName(const QDateTime& time);

// The second stream's file beside the first one's: "_2" before the suffix, or the next unused number.
QString secondSnapshotPath(const QString& path);

// Saves like QImage::save, in the format of the suffix, but replaces a link at `path` instead of following
// it.
[[nodiscard]] bool saveFrame(const QImage& frame, const QString& path);

// Where the frames of `count` streams go on a page whose printable rectangle is `page`: each is scaled to
// fit, the second below the first. A null frame gets an empty rectangle.
std::array<QRect, 2> printPlaces(const QRect& page, const FramePair& frames, int count);

} // namespace ql240
