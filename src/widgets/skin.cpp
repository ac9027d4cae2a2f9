#include "widgets/skin.h"

#include <QGuiApplication>
#include <QPixmapCache>

namespace ql240 {
namespace {

QString doubledPath(const QString& path) {
    const qsizetype dot = path.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? QString() : path.left(dot) + QStringLiteral("@2x") + path.mid(dot);
}

} // namespace

QString skinPath(const QString& name) {
    return QStringLiteral(":/gfx_r/2012/") + name + QStringLiteral(".png");
}

QPixmap readSkinPixmap(const QString& path) {
    if (qApp->devicePixelRatio() > 1.0) {
        QPixmap doubled(doubledPath(path));
        if (!doubled.isNull()) {
            doubled.setDevicePixelRatio(2.0);
            return doubled;
        }
    }
    return QPixmap(path);
}

QPixmap skinPixmap(const QString& path) {
    const QString key = QStringLiteral("%1|%2").arg(path).arg(qApp->devicePixelRatio());
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = readSkinPixmap(path);
        if (!pixmap.isNull())
            QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

const QPixmap& SkinPicture::pixmap() const {
    if (!m_pixmap)
        m_pixmap = skinPixmap(m_path);
    return *m_pixmap;
}

QIcon skinIcon(const QString& path) {
    const QPixmap pixmap = skinPixmap(path);
    return pixmap.isNull() ? QIcon() : QIcon(pixmap);
}

} // namespace ql240
