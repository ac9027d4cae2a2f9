// Access to the skin's pictures by their resource paths (":/gfx_r/…"). Interface thread only.
#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>
#include <optional>

namespace ql240 {

// ":/gfx_r/2012/" + name + ".png"
QString skinPath(const QString& name);

// The picture at `path`, in its "@2x" form where a screen has more than one device pixel a pixel. Its size in
// pixels of the interface is deviceIndependentSize(). Empty when there is no such picture.
QPixmap skinPixmap(const QString& path);

// A picture that is loaded when it is first asked for, so that looks not yet seen cost nothing at start-up.
class SkinPicture {
public:
    explicit SkinPicture(const QString& path) : m_path(path) {}
    const QPixmap& pixmap() const;

private:
    QString m_path;
    mutable std::optional<QPixmap> m_pixmap;
};

// The same, read anew and not kept, for whoever keeps it in another form.
QPixmap readSkinPixmap(const QString& path);

// The same as an icon; null when there is no such picture.
QIcon skinIcon(const QString& path);

} // namespace ql240
