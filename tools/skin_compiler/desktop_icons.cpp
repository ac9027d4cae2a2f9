#include "desktop_icons.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

namespace ql240::skin {
namespace {

constexpr int kSizes[] = {16, 22, 24, 32, 48, 64, 128, 256};

QString iconPath(const QDir& output, const QString& size, const char* suffix) {
    const QString folder = output.filePath(QStringLiteral("hicolor/%1/apps").arg(size));
    QDir().mkpath(folder);
    return folder + QStringLiteral("/ql240-viewer") + QLatin1String(suffix);
}

QImage draw(QSvgRenderer& icon, int size) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    icon.render(&painter);
    return image;
}

} // namespace

bool writeDesktopIcons(const QString& sourceFolder, const QDir& output, QString& error) {
    const QString source = sourceFolder + QStringLiteral("/glyphs/app_icon.svg");
    QSvgRenderer icon(source);
    if (!icon.isValid()) {
        error = source + QStringLiteral(": can't be read");
        return false;
    }
    for (const int size : kSizes) {
        const QString path = iconPath(output, QStringLiteral("%1x%1").arg(size), ".png");
        if (!draw(icon, size).save(path, "PNG")) {
            error = path + QStringLiteral(": can't be written");
            return false;
        }
    }
    const QString scalable = iconPath(output, QStringLiteral("scalable"), ".svg");
    QFile::remove(scalable);
    if (!QFile::copy(source, scalable)) {
        error = scalable + QStringLiteral(": can't be written");
        return false;
    }
    return true;
}

} // namespace ql240::skin
