// Access to the skin's pictures by their resource paths (":/gfx_r/…"). Interface thread only.
#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>
#include <optional>

namespace ql240 {

// ":/gfx_r/2012/" + name + ".png"
QString skinPath(const QString& name);

// The picture at `path`, its "@2x" variant if any screen's device pixel ratio is above 1.
// deviceIndependentSize() is its size in interface pixels. Empty when there is no such picture.
QPixmap skinPixmap(const QString& path);

// A picture loaded on first use, so that pictures not shown yet cost nothing at start-up.
class SkinPicture {
public:
    explicit SkinPicture(const QString& path) : m_path(path) {}
    const QPixmap& pixmap() const;

private:
    QString m_path;
    mutable std::optional<QPixmap> m_pixmap;
};

// The same without the cache, for callers that keep a converted copy.
QPixmap readSkinPixmap(const QString& path);

// The same as an icon; null when there is no such picture.
QIcon skinIcon(const QString& path);

} // namespace ql240
