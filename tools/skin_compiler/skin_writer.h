// Renders the pictures of a table and writes them with the resource file that lists them.
#pragma once

#include <QDir>
#include <QImage>

#include "picture_table.h"

namespace ql240::skin {

// The picture at `scale` device pixels per logical pixel. If the table has an error the image is null and
// `error` describes it.
QImage renderPicture(const Picture& picture, const Palette& palette, const QString& sourceFolder, int scale,
                     QString& error);

// Writes every picture at 1× and, except icons, at 2× ("name@2x.png") below `output`/gfx_r, and
// `output`/skin.qrc. Stops at the first failure with false and `error`.
bool writeSkin(const PictureTable& table, const QString& sourceFolder, const QDir& output, QString& error);

} // namespace ql240::skin
