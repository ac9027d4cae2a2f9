#include "settings/card_jobs.h"

#include "settings/card.h"
#include "settings/device_settings.h"

namespace ql240 {

CardContents readCard(const QString& drive) {
    CardContents contents;
    contents.drive = drive;
    contents.settingFolder = settingFolder(drive);
    contents.updateFolder = updateFolder(drive);
    contents.versionText = openVersionText(contents.updateFolder);
    contents.values = DeviceSettings(contents.settingFolder);
    return contents;
}

} // namespace ql240
