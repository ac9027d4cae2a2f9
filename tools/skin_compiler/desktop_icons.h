// The program's icon in the sizes that desktops use.
#pragma once

#include <QDir>
#include <QString>

namespace ql240::skin {

// Writes `output`/hicolor/<size>x<size>/apps/ql240-viewer.png for each size, and the vector source under
// scalable/, from the skin's app_icon. Stops at the first failure with false and `error`.
bool writeDesktopIcons(const QString& sourceFolder, const QDir& output, QString& error);

} // namespace ql240::skin
