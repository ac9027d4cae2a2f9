// A folder dialog whose user has already decided.
#pragma once

#include "platform/folder_dialogs.h"

namespace ql240 {

struct FakeFolderDialogs : FolderDialogs {
    std::optional<QString> choice;
    int shown = 0;

    std::optional<QString> browseForFolder(QWidget*, const FolderCallback&) override {
        ++shown;
        return choice;
    }
};

} // namespace ql240
