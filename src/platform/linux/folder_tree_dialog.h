// A dialog with a tree of folders, which begins with the places where cards and recordings are found, and the
// path as editable text. Folders are read when they are opened, so that a large or slow neighbour costs
// nothing. Who runs the dialog says through the callback what may be chosen. Interface thread only.
#pragma once

#include <QDialog>

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

    // Nothing changes for a path that is no folder.
    void setSelection(const QString& path) override;
    void enableOk(bool enabled) override;

    QString selectedPath() const;

    // A path typed and not yet looked at goes before the one selected.
    void accept() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void addPlaces();
    void addPlace(const QString& name, const QString& path);
    void placeWidgets();
    void readFolder(QTreeWidgetItem* item);
    QTreeWidgetItem* placeAbove(const QString& path) const;
    QTreeWidgetItem* childNamed(QTreeWidgetItem* item, const QString& name);
    void currentChanged();
    bool isPathEdited() const;
    void takeTypedPath();

    FolderCallback m_callback;
    QTreeWidget* m_tree;
    QLineEdit* m_path;
    QDialogButtonBox* m_buttons;
};

} // namespace ql240
