// A dialog with a tree of folders, which begins with the places where cards and recordings are found, and the
// path as editable text. Folders are read when they are opened, so that a large or slow neighbour costs
// nothing, and off the interface thread: what a slow one holds appears when it has answered. Who runs the
// dialog says through the callback what may be chosen. Interface thread only.
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

    // Nothing changes for a path that is no folder. A slow folder is selected when it has answered, unless
    // another was asked for or made meanwhile, or a path typed.
    void setSelection(const QString& path) override;
    void enableOk(bool enabled) override;

    QString selectedPath() const;

    // A path typed and not yet looked at goes before the one selected.
    void accept() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void addPlaces();
    void addPlace(int row, const QString& name, const QString& path);
    void placeWidgets();
    void readFolder(QTreeWidgetItem* item);
    void fill(QTreeWidgetItem* item, const QStringList& names);
    void select(QTreeWidgetItem* place, const QStringList& way, const QList<QStringList>& levels);
    QTreeWidgetItem* placeAbove(const QString& path) const;
    QTreeWidgetItem* childNamed(QTreeWidgetItem* item, const QString& name);
    void currentChanged(QTreeWidgetItem* now, QTreeWidgetItem* before);
    bool isPathEdited() const;
    void takeTypedPath();
    void takeTypedPath(const QString& typed, bool isFolder);

    FolderCallback m_callback;
    BackgroundJobs m_readers;   // of folders opened, and of the volumes
    BackgroundJobs m_selection; // the last one asked for
    QTreeWidget* m_tree;
    QLineEdit* m_path;
    QDialogButtonBox* m_buttons;
};

} // namespace ql240
