// What a drag over the window brings. Interface thread only.
#pragma once

#include <QString>
#include <optional>

class QMimeData;

namespace ql240 {

// A folder, or the folder of a clip and the clip's name in it.
struct Dropped {
    QString folder;
    QString clipName;
};

// Nothing where the data bring neither. What doesn't answer at once is what its name says: the reader of
// folders waits for it then.
std::optional<Dropped> droppedOf(const QMimeData& data);

} // namespace ql240
