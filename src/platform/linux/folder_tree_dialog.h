// A dialog with a tree of folders, starting from the places where cards and recordings are usually found, and
// the path as editable text. Folders are read when they are expanded, and off the interface thread: the
// contents of a slow folder appear once they have been read. The caller decides through the callback what can
// be chosen. Interface thread only.
#pragma once

#include <QDialog>

#include "base/background_jobs.h"
#include "platform/folder_dialogs.h"

class QDialogButtonBox;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace ql240 {

class FolderTreeDialog : public QDialog, public FolderDialog {
    Q_OBJECT
public:
    FolderTreeDialog(QWidget* owner, FolderCallback callback);

    // Ignored unless `path` is a folder. A slow folder is selected once it has answered, unless another
    // selection was made or a path typed in the meantime.
    void setSelection(const QString& path) override;
    void enableOk(bool enabled) override;

    QString selectedPath() const;

    // A typed path not checked yet takes precedence over the selected folder.
    void accept() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void addPlaces();
    void addPlace(int row, const QString& name, const QString& path);
    void placeWidgets();
    void readFolder(QTreeWidgetItem* item);
    void fill(QTreeWidgetItem* item, const QStringList& names);
    void select(QTreeWidgetItem* place, const QStringList& names, const QList<QStringList>& levels);
    QTreeWidgetItem* placeAbove(const QString& path) const;
    QTreeWidgetItem* childNamed(QTreeWidgetItem* item, const QString& name);
    void currentChanged(QTreeWidgetItem* now, QTreeWidgetItem* before);
    bool isPathEdited() const;
    void takeTypedPath();
    void takeTypedPath(const QString& typed, bool isFolder);

    FolderCallback m_callback;
    BackgroundJobs m_readers;   // read expanded folders, and the volumes
    BackgroundJobs m_selection; // the last selection asked for
    QTreeWidget* m_tree;
    QLineEdit* m_path;
    QDialogButtonBox* m_buttons;
};

} // namespace ql240
