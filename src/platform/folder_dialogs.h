// The host's dialog for choosing one folder. Interface thread only.
#pragma once

#include <QString>
#include <functional>
#include <optional>

class QWidget;

namespace ql240 {

enum class FolderMessage { Initialised = 1, SelectionChanged = 2, ValidateFailed = 4 };

// The dialog on screen, as its callback sees it.
class FolderDialog {
public:
    virtual ~FolderDialog() = default;
    virtual void setSelection(const QString& path) = 0;
    virtual void enableOk(bool enabled) = 0;
};

// Called with Initialised before the dialog is shown, with SelectionChanged and the path of the item newly
// selected (empty where it is no file-system folder), with ValidateFailed and the text typed that is no
// folder. A result of 1 to ValidateFailed keeps the dialog open.
using FolderCallback = std::function<int(FolderDialog&, FolderMessage, const QString&)>;

class FolderDialogs {
public:
    virtual ~FolderDialogs() = default;

    // Runs the dialog over `owner`. Nothing when it was cancelled; otherwise the path of the item chosen,
    // empty where that is no file-system folder.
    [[nodiscard]] virtual std::optional<QString> browseForFolder(QWidget* owner,
                                                                 const FolderCallback& callback) = 0;
};

} // namespace ql240
