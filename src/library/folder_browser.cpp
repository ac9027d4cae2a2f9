#include "library/folder_browser.h"

#include "base/preferences.h"
#include "library/clip_folder.h"
#include "platform/folder_dialogs.h"
#include "platform/host.h"

namespace ql240 {
namespace {

int answer(FolderDialog& dialog, FolderMessage message, const QString& path) {
    switch (message) {
        case FolderMessage::Initialised: {
            QString last;
            if (readLastFolder(last))
                dialog.setSelection(last);
            return 0;
        }
        case FolderMessage::SelectionChanged:
            if (!path.isEmpty())
                dialog.enableOk(holdsRecordings(path));
            return 0;
        case FolderMessage::ValidateFailed:
            return 1;
    }
    return 0;
}

} // namespace

bool FolderBrowser::exec() {
    FolderDialogs* dialogs = host().folderDialogs;
    const auto chosen = dialogs ? dialogs->browseForFolder(m_owner, answer) : std::nullopt;
    m_path = chosen.value_or(QString());
    if (!m_path.isEmpty())
        writeLastFolder(m_path);
    return !m_path.isEmpty();
}

} // namespace ql240
