// The program's icon in the sizes that desktops ask for.
#pragma once

#include <QDir>
#include <QString>

namespace ql240::skin {

// Writes `output`/hicolor/<size>x<size>/apps/ql240-viewer.png for each size, and the vector source under
// scalable/, from the skin's app_icon. False and `error` at the first failure.
bool writeDesktopIcons(const QString& sourceFolder, const QDir& output, QString& error);

} // namespace ql240::skin
