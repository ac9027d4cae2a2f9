// The dialog in which the user picks a folder of recordings. Opens on the folder chosen last in any run,
// enables OK only for a folder that holds recordings, and remembers the choice. Interface thread only.
#pragma once

#include <QString>

class QWidget;

namespace ql240 {

class FolderBrowser {
public:
    // `owner` is the dialog's parent window; may be null.
    explicit FolderBrowser(QWidget* owner) : m_owner(owner) {}

    // True if a folder was chosen; otherwise path() is empty.
    bool exec();
    const QString& path() const { return m_path; }

private:
    QWidget* m_owner;
    QString m_path;
};

} // namespace ql240
