#include "mainwindow/frame_output.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <algorithm>
#include <cstdio>

namespace ql240 {
namespace {

constexpr int kFirstTop = 20;
constexpr int kGap = 30;

QRect placeOnPage(const QRect& page, const QImage& frame, int top) {
    if (frame.isNull())
        return {};
    const double scale = std::min(static_cast<double>(page.width()) / frame.width(),
                                  static_cast<double>(page.height()) / frame.height());
    const auto width = static_cast<int>(frame.width() * scale);
    const auto height = static_cast<int>(frame.height() * scale);
    return {page.left() + (page.width() - width) / 2, top, width, height};
}

} // namespace

QString snapshotName(const QDateTime& time) {
    return QStringLiteral("QL240") + time.toString(QStringLiteral("yyyyMMddhhmmss'.jpg'"));
}

QString secondSnapshotPath(const QString& path) {
    const QString suffix = QFileInfo(path).suffix();
    const qsizetype cut = suffix.isEmpty() ? path.size() : path.size() - suffix.size() - 1;
    for (int number = 2;; ++number) {
        const QString second = path.left(cut) + QStringLiteral("_%1").arg(number) + path.mid(cut);
        // The target of a dangling link does not exist, but the name is taken.
        if (const QFileInfo file(second); !file.exists() && !file.isSymLink())
            return second;
    }
}

bool saveFrame(const QImage& frame, const QString& path) {
    const QFileInfo target(path);
    QFile aside(target.path() +
                QStringLiteral("/.ql240-%1").arg(QRandomGenerator::global()->generate64(), 0, 36));
    if (frame.isNull() || target.isDir() || !aside.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return false;
    const bool written = frame.save(&aside, target.suffix().toLatin1().constData()) && aside.flush();
    aside.close();
    if (written && std::rename(QFile::encodeName(aside.fileName()).constData(),
                               QFile::encodeName(path).constData()) == 0)
        return true;
    aside.remove();
    return false;
}

std::array<QRect, 2> printPlaces(const QRect& page, const FramePair& frames, int count) {
    std::array<QRect, 2> places{placeOnPage(page, frames[0], kFirstTop), QRect()};
    if (count > 1)
        places[1] = placeOnPage(page, frames[1], places[0].height() + kGap);
    return places;
}

} // namespace ql240
