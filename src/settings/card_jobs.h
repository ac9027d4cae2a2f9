// Reading a card off the interface thread, since a dying reader may hold a read for minutes.
#pragma once

#include <optional>

#include "platform/drives.h"
#include "settings/setting_values.h"

namespace ql240 {

// What the settings dialog shows of one drive.
struct CardContents {
    QString drive;
    QString settingFolder;
    QString updateFolder;
    std::optional<QString> versionText; // nothing if there is no version file: then this is no card
    SettingValues values;
};

CardContents readCard(const QString& drive);

} // namespace ql240
