// The system's dialog for choosing a folder. Interface thread only.
#pragma once

#include <QString>
#include <functional>
#include <optional>

class QWidget;

namespace ql240 {

enum class FolderMessage { Initialised = 1, SelectionChanged = 2, ValidateFailed = 4 };

// The open dialog, as its callback sees it.
class FolderDialog {
public:
    virtual ~FolderDialog() = default;
    virtual void setSelection(const QString& path) = 0;
    virtual void enableOk(bool enabled) = 0;
};

// Called with Initialised before the dialog is shown; with SelectionChanged and the path of the newly
// selected item (empty if that is not a file-system folder); and with ValidateFailed and the typed text if
// that is not a folder. Returning 1 for ValidateFailed keeps the dialog open.
using FolderCallback = std::function<int(FolderDialog&, FolderMessage, const QString&)>;

class FolderDialogs {
public:
    virtual ~FolderDialogs() = default;

    // Runs the dialog over `owner`. Returns nothing when cancelled, otherwise the chosen item's path, which
    // is empty if the item is not a file-system folder.
    [[nodiscard]] virtual std::optional<QString> browseForFolder(QWidget* owner,
                                                                 const FolderCallback& callback) = 0;
};

} // namespace ql240
