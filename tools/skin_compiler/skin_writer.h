// Renders the pictures of a table and writes them with the list from which the resource compiler packs them.
#pragma once

#include <QDir>
#include <QImage>

#include "picture_table.h"

namespace ql240::skin {

// The picture at `scale` device pixels for a logical one. On a mistake in the table the image is null and
// `error` tells it.
QImage renderPicture(const Picture& picture, const Palette& palette, const QString& sourceFolder, int scale,
                     QString& error);

// Writes every picture at 1× and, but for icons, at 2× ("name@2x.png") below `output`/gfx_r, and
// `output`/skin.qrc. False and `error` at the first failure.
bool writeSkin(const PictureTable& table, const QString& sourceFolder, const QDir& output, QString& error);

} // namespace ql240::skin
