#include "platform/linux/folder_tree_dialog.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QDirIterator>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QStorageInfo>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <memory>

#include "platform/limits.h"
#include "platform/waits.h"
#include "widgets/plain_text.h"

namespace ql240 {
namespace {

constexpr int kPathRole = Qt::UserRole;
constexpr int kReadRole = Qt::UserRole + 1;
constexpr QSize kSize(560, 480);

using Places = QList<std::pair<QString, QString>>; // names and paths

QString pathOf(const QTreeWidgetItem* item) {
    return item ? item->data(0, kPathRole).toString() : QString();
}

// Volumes that a user has inserted, as opposed to the system's own mounts.
bool isUsersVolume(const QStorageInfo& volume) {
    const QString root = volume.rootPath();
    for (const char* parent : {"/media/", "/run/media/", "/mnt/"}) {
        if (root.startsWith(QLatin1String(parent)))
            return volume.isValid() && volume.isReady();
    }
    return false;
}

// May block, like every function below that reads the file system.
Places usersVolumes() {
    Places places;
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (isUsersVolume(volume))
            places.append({volume.displayName(), volume.rootPath()});
    }
    return places;
}

QStringList foldersIn(const QString& path) {
    QStringList names;
    QDirIterator entries(path, QDir::AllEntries | QDir::NoDotAndDotDot);
    for (int i = 0; i < limits::kClipFolderNames && entries.hasNext(); ++i) {
        entries.next();
        if (names.size() < limits::kTreeFolders && entries.fileInfo().isDir())
            names << entries.fileName();
    }
    names.sort(Qt::CaseInsensitive);
    return names;
}

// The subfolders at every level from `path` down through `names`; empty if these don't lead to a folder.
QList<QStringList> levelsBelow(QString path, const QStringList& names) {
    const QString end = QDir(path).filePath(names.join(QLatin1Char('/')));
    QList<QStringList> levels;
    if (!QFileInfo(end).isDir())
        return levels;
    for (const QString& name : names) {
        levels << foldersIn(path);
        path = QDir(path).filePath(name);
    }
    return levels << QStringList();
}

bool isWithin(const QString& path, const QString& folder) {
    return path == folder ||
           path.startsWith(folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/'));
}

QTreeWidgetItem* makeItem(const QString& name, const QString& path, const QIcon& icon) {
    auto* item = new QTreeWidgetItem({shownName(name)});
    item->setIcon(0, icon);
    item->setToolTip(0, hoverText(path));
    item->setData(0, kPathRole, path);
    // Whether it has subfolders is found out when it is expanded.
    item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    return item;
}

} // namespace

FolderTreeDialog::FolderTreeDialog(QWidget* owner, FolderCallback callback)
    : QDialog(owner),
      m_callback(std::move(callback)),
      m_tree(new QTreeWidget(this)),
      m_path(new QLineEdit(this)),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this)) {
    setWindowTitle(tr("Open Folder"));
    resize(kSize);
    placeWidgets();
    addPlaces();
    connect(m_buttons, &QDialogButtonBox::accepted, this, &FolderTreeDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_tree, &QTreeWidget::itemExpanded, this, &FolderTreeDialog::readFolder);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, &FolderTreeDialog::currentChanged);
    connect(m_tree, &QTreeWidget::itemPressed, &m_selection, &BackgroundJobs::forget);
    connect(m_path, &QLineEdit::textEdited, &m_selection, &BackgroundJobs::forget);
    enableOk(false);
    setSelection(QDir::homePath());
    m_callback(*this, FolderMessage::Initialised, QString());
}

void FolderTreeDialog::placeWidgets() {
    m_tree->setAccessibleName(tr("Folders"));
    m_tree->setHeaderHidden(true);
    m_tree->setUniformRowHeights(true);
    m_path->setAccessibleName(tr("Path"));
    auto* column = new QVBoxLayout(this);
    column->addWidget(m_tree, 1);
    column->addWidget(m_path);
    column->addWidget(m_buttons);
    m_tree->setFocus();
}

void FolderTreeDialog::addPlaces() {
    addPlace(0, tr("Home"), QDir::homePath());
    addPlace(1, tr("Computer"), QDir::rootPath());
    const auto volumes = std::make_shared<Places>();
    m_readers.start([volumes] { *volumes = usersVolumes(); },
                    [this, volumes] {
                        int row = 1;
                        for (const auto& [name, path] : *volumes)
                            addPlace(row++, name, path);
                    });
    m_readers.wait(waits::kTreeFolder);
}

void FolderTreeDialog::addPlace(int row, const QString& name, const QString& path) {
    const auto picture = path == QDir::homePath() ? QStyle::SP_DirHomeIcon : QStyle::SP_DriveHDIcon;
    m_tree->insertTopLevelItem(row, makeItem(name, path, style()->standardIcon(picture)));
}

void FolderTreeDialog::readFolder(QTreeWidgetItem* item) {
    if (item->data(0, kReadRole).toBool())
        return;
    const auto names = std::make_shared<QStringList>();
    m_readers.start([names, path = pathOf(item)] { *names = foldersIn(path); },
                    [this, names, item] { fill(item, *names); });
    m_readers.wait(waits::kTreeFolder);
}

void FolderTreeDialog::fill(QTreeWidgetItem* item, const QStringList& names) {
    if (item->data(0, kReadRole).toBool())
        return;
    item->setData(0, kReadRole, true);
    const QDir folder(pathOf(item));
    const QIcon icon = style()->standardIcon(QStyle::SP_DirIcon);
    QList<QTreeWidgetItem*> children;
    for (const QString& name : names)
        children << makeItem(name, folder.filePath(name), icon);
    item->addChildren(children);
    item->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
}

// The top-level item that is closest to the path.
QTreeWidgetItem* FolderTreeDialog::placeAbove(const QString& path) const {
    QTreeWidgetItem* best = nullptr;
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i) {
        QTreeWidgetItem* place = m_tree->topLevelItem(i);
        if (isWithin(path, pathOf(place)) && (!best || pathOf(place).size() > pathOf(best).size()))
            best = place;
    }
    return best;
}

// Hidden folders are listed only when requested by name.
QTreeWidgetItem* FolderTreeDialog::childNamed(QTreeWidgetItem* item, const QString& name) {
    const QString path = QDir(pathOf(item)).filePath(name);
    for (int i = 0; i < item->childCount(); ++i) {
        if (pathOf(item->child(i)) == path)
            return item->child(i);
    }
    auto* child = makeItem(name, path, style()->standardIcon(QStyle::SP_DirIcon));
    item->insertChild(0, child);
    return child;
}

void FolderTreeDialog::setSelection(const QString& path) {
    const QString folder = QDir::cleanPath(path);
    QTreeWidgetItem* item = placeAbove(folder);
    if (!item)
        return;
    const QStringList names = folder.mid(pathOf(item).size()).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const auto levels = std::make_shared<QList<QStringList>>();
    m_selection.forget();
    m_selection.start([levels, names, path = pathOf(item)] { *levels = levelsBelow(path, names); },
                      [this, levels, item, names] { select(item, names, *levels); });
    m_selection.wait(waits::kTreeFolder);
}

void FolderTreeDialog::select(QTreeWidgetItem* item, const QStringList& names,
                              const QList<QStringList>& levels) {
    if (levels.isEmpty())
        return;
    for (qsizetype i = 0; i < names.size(); ++i) {
        fill(item, levels[i]);
        item = childNamed(item, names[i]);
    }
    m_tree->setCurrentItem(item);
    m_path->setText(shownText(selectedPath()));
    layout()->activate(); // before the dialog is shown, the tree gets its height only here
    m_tree->scrollToItem(item, QAbstractItemView::PositionAtCenter);
}

void FolderTreeDialog::enableOk(bool enabled) {
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(enabled);
}

QString FolderTreeDialog::selectedPath() const {
    return pathOf(m_tree->currentItem());
}

void FolderTreeDialog::currentChanged(QTreeWidgetItem*, QTreeWidgetItem* before) {
    // The first item becomes current merely by the tree getting the focus.
    if (before)
        m_selection.forget();
    m_path->setText(shownText(selectedPath()));
    m_callback(*this, FolderMessage::SelectionChanged, selectedPath());
}

bool FolderTreeDialog::isPathEdited() const {
    return m_path->text() != shownText(selectedPath());
}

void FolderTreeDialog::takeTypedPath() {
    const QString typed = m_path->text();
    const auto isFolder = std::make_shared<bool>(false);
    m_selection.forget();
    m_selection.start(
        [isFolder, typed] { *isFolder = QDir::isAbsolutePath(typed) && QFileInfo(typed).isDir(); },
        [this, isFolder, typed] { takeTypedPath(typed, *isFolder); });
    m_selection.wait(waits::kTreeFolder);
}

// Selects a folder; for anything else the caller decides.
void FolderTreeDialog::takeTypedPath(const QString& typed, bool isFolder) {
    if (isFolder)
        setSelection(typed);
    else if (m_callback(*this, FolderMessage::ValidateFailed, typed) != 1)
        reject();
    else
        m_path->selectAll();
}

void FolderTreeDialog::accept() {
    if (isPathEdited())
        takeTypedPath();
    else
        QDialog::accept();
}

void FolderTreeDialog::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    // OK may be disabled for the selected folder although the typed path is valid.
    if (enter && focusWidget() == m_path && isPathEdited())
        takeTypedPath();
    else
        QDialog::keyPressEvent(event);
}

} // namespace ql240
