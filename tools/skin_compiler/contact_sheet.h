// All pictures of a table on one sheet with their names, for comparing them.
#pragma once

#include <QImage>

#include "picture_table.h"

namespace ql240::skin {

// At one device pixel per logical pixel. If the table has an error the image is null and `error` describes
// it.
QImage contactSheet(const PictureTable& table, const QString& sourceFolder, QString& error);

} // namespace ql240::skin
