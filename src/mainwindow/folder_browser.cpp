#include "mainwindow/folder_browser.h"

#include <memory>

#include "base/background_jobs.h"
#include "base/preferences.h"
#include "clips/clip_folder.h"
#include "platform/folder_dialogs.h"
#include "platform/host.h"
#include "platform/waits.h"

namespace ql240 {
namespace {

// OK is enabled if the folder holds recordings; it stays disabled until a slow folder has been read.
void enableOkForRecordings(FolderDialog& dialog, BackgroundJobs& jobs, const QString& path) {
    const auto holds = std::make_shared<bool>(false);
    jobs.forget();
    jobs.start([holds, path] { *holds = holdsRecordings(path); },
               [&dialog, holds] { dialog.enableOk(*holds); });
    if (!jobs.wait(waits::kRecordingsInFolder))
        dialog.enableOk(false);
}

int answer(FolderDialog& dialog, BackgroundJobs& jobs, FolderMessage message, const QString& path) {
    switch (message) {
        case FolderMessage::Initialised: {
            QString last;
            if (readLastFolder(last))
                dialog.setSelection(last);
            return 0;
        }
        case FolderMessage::SelectionChanged:
            if (!path.isEmpty())
                enableOkForRecordings(dialog, jobs, path);
            return 0;
        case FolderMessage::ValidateFailed:
            return 1;
    }
    return 0;
}

} // namespace

bool FolderBrowser::exec() {
    FolderDialogs* dialogs = host().folderDialogs;
    BackgroundJobs jobs;
    const auto callback = [&jobs](FolderDialog& dialog, FolderMessage message, const QString& path) {
        return answer(dialog, jobs, message, path);
    };
    const auto chosen = dialogs ? dialogs->browseForFolder(m_owner, callback) : std::nullopt;
    m_path = chosen.value_or(QString());
    if (!m_path.isEmpty())
        writeLastFolder(m_path);
    return !m_path.isEmpty();
}

} // namespace ql240
