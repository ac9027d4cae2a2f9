#include "platform/linux/system_folder_dialogs.h"

#include "platform/linux/folder_tree_dialog.h"

namespace ql240 {

std::optional<QString> SystemFolderDialogs::browseForFolder(QWidget* owner, const FolderCallback& callback) {
    FolderTreeDialog dialog(owner, callback);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.selectedPath();
}

} // namespace ql240
