// A dialog with the tree of folders, the places where cards and recordings are found, and the path as
// editable text. Who runs it says through the callback what may be chosen. Interface thread only.
#pragma once

#include <QDialog>
#include <QFileSystemModel>

#include "platform/folder_dialogs.h"

class QDialogButtonBox;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QTreeView;

namespace ql240 {

class FolderTreeDialog : public QDialog, public FolderDialog {
    Q_OBJECT
public:
    FolderTreeDialog(QWidget* owner, FolderCallback callback);

    // Nothing changes for a path that is no folder.
    void setSelection(const QString& path) override;
    void enableOk(bool enabled) override;

    QString selectedPath() const;

    // A path typed and not yet looked at goes before the one selected.
    void accept() override;

protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void addPlaces();
    void addPlace(const QString& name, const QString& path);
    void placeWidgets();
    void connectWidgets();
    void currentChanged(const QModelIndex& index);
    bool isPathEdited() const;
    void takeTypedPath();
    void showCurrent();

    FolderCallback m_callback;
    QFileSystemModel m_model;
    QLineEdit* m_path;
    QListWidget* m_places;
    QTreeView* m_tree;
    QDialogButtonBox* m_buttons;
};

} // namespace ql240
