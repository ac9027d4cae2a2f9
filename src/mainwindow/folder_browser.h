// The dialog in which the user picks a folder of recordings: opens on the last folder chosen in any run,
// allows OK only on a folder that holds recordings, and remembers the choice. Interface thread only.
#pragma once

#include <QString>

class QWidget;

namespace ql240 {

class FolderBrowser {
public:
    // `owner` is the window that the dialog belongs to; may be null.
    explicit FolderBrowser(QWidget* owner) : m_owner(owner) {}

    // True when a folder was chosen; path() is empty otherwise.
    bool exec();
    const QString& path() const { return m_path; }

private:
    QWidget* m_owner;
    QString m_path;
};

} // namespace ql240
