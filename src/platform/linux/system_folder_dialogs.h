// The folder dialog of a Linux desktop. The desktops' own dialogs can't forbid a choice while they are open,
// so this one is drawn here: places at the left, the tree of folders, the path as text.
#pragma once

#include "platform/folder_dialogs.h"

namespace ql240 {

class SystemFolderDialogs : public FolderDialogs {
public:
    std::optional<QString> browseForFolder(QWidget* owner, const FolderCallback& callback) override;
};

} // namespace ql240
