// What is dragged over the window. Interface thread only.
#pragma once

#include <QString>
#include <optional>

class QMimeData;

namespace ql240 {

// A folder, or a clip's folder and its name in it.
struct Dropped {
    QString folder;
    QString clipName;
};

// Nothing if the data has neither. When the file system is slow, decides by name alone; FolderReader waits
// for it later.
std::optional<Dropped> droppedOf(const QMimeData& data);

} // namespace ql240
