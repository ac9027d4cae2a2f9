// The folder dialog on Linux. The desktops' own dialogs can't disable OK while they are open, so this one is
// our own: a tree of folders, and the path as text.
#pragma once

#include "platform/folder_dialogs.h"

namespace ql240 {

class SystemFolderDialogs : public FolderDialogs {
public:
    std::optional<QString> browseForFolder(QWidget* owner, const FolderCallback& callback) override;
};

} // namespace ql240
