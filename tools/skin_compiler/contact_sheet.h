// All pictures of a table on one sheet, each with its name, for looking at them beside each other.
#pragma once

#include <QImage>

#include "picture_table.h"

namespace ql240::skin {

// At one device pixel for a logical one. On a mistake in the table the image is null and `error` tells it.
QImage contactSheet(const PictureTable& table, const QString& sourceFolder, QString& error);

} // namespace ql240::skin
