#include "mainwindow/card_model.h"

#include "settings/card.h"

namespace ql240 {

std::function<std::optional<QString>()> cardModelLook(Drives* drives) {
    return [drives] {
        std::optional<QString> last;
        const QList<DriveInfo> found = listRemovableDrives(drives);
        for (const DriveInfo& drive : found) {
            if (std::optional<QString> text = openVersionText(updateFolder(drive.drive)))
                last = std::move(text);
        }
        return last;
    };
}

} // namespace ql240
