#include "platform/linux/folder_tree_dialog.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStorageInfo>
#include <QTreeView>
#include <QVBoxLayout>

namespace ql240 {
namespace {

constexpr int kPathRole = Qt::UserRole;
constexpr QSize kSize(680, 460);
constexpr int kPlacesWidth = 180;

// Volumes that a user puts in, in contrast to what the system mounts for itself.
bool isUsersVolume(const QStorageInfo& volume) {
    const QString root = volume.rootPath();
    for (const char* parent : {"/media/", "/run/media/", "/mnt/"}) {
        if (root.startsWith(QLatin1String(parent)))
            return volume.isValid() && volume.isReady();
    }
    return false;
}

} // namespace

FolderTreeDialog::FolderTreeDialog(QWidget* owner, FolderCallback callback)
    : QDialog(owner),
      m_callback(std::move(callback)),
      m_path(new QLineEdit(this)),
      m_places(new QListWidget(this)),
      m_tree(new QTreeView(this)),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this)) {
    setWindowTitle(tr("Open Folder"));
    resize(kSize);
    m_model.setFilter(QDir::Dirs | QDir::Drives | QDir::NoDotAndDotDot);
    m_model.setOption(QFileSystemModel::DontUseCustomDirectoryIcons);
    m_model.setRootPath(QString());
    m_tree->setModel(&m_model);
    placeWidgets();
    addPlaces();
    connectWidgets();
    enableOk(false);
    setSelection(QDir::homePath());
    m_callback(*this, FolderMessage::Initialised, QString());
}

void FolderTreeDialog::placeWidgets() {
    m_path->setAccessibleName(tr("Path"));
    m_places->setAccessibleName(tr("Places"));
    m_places->setMaximumWidth(kPlacesWidth);
    m_tree->setAccessibleName(tr("Folders"));
    m_tree->setHeaderHidden(true);
    m_tree->setUniformRowHeights(true);
    for (int column = 1; column < m_model.columnCount(); ++column)
        m_tree->hideColumn(column);
    m_tree->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);

    auto* panes = new QHBoxLayout;
    panes->addWidget(m_places);
    panes->addWidget(m_tree, 1);
    auto* all = new QVBoxLayout(this);
    all->addLayout(panes, 1);
    all->addWidget(m_path);
    all->addWidget(m_buttons);
    m_tree->setFocus();
}

void FolderTreeDialog::addPlaces() {
    addPlace(tr("Home"), QDir::homePath());
    addPlace(tr("Computer"), QDir::rootPath());
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (isUsersVolume(volume))
            addPlace(volume.displayName(), volume.rootPath());
    }
}

void FolderTreeDialog::addPlace(const QString& name, const QString& path) {
    auto* item = new QListWidgetItem(name, m_places);
    item->setData(kPathRole, path);
    item->setToolTip(path);
}

void FolderTreeDialog::connectWidgets() {
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_places, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { setSelection(item->data(kPathRole).toString()); });
    connect(m_places, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { setSelection(item->data(kPathRole).toString()); });
    connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &FolderTreeDialog::currentChanged);
    // The rows above the current one arrive later than the row itself.
    connect(&m_model, &QFileSystemModel::directoryLoaded, this, &FolderTreeDialog::showCurrent);
}

void FolderTreeDialog::setSelection(const QString& path) {
    const QString folder = QDir::cleanPath(path);
    if (path.isEmpty() || !QFileInfo(folder).isDir())
        return;
    m_tree->setCurrentIndex(m_model.index(folder));
    m_tree->expand(m_tree->currentIndex());
    showCurrent();
}

void FolderTreeDialog::enableOk(bool enabled) {
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(enabled);
}

QString FolderTreeDialog::selectedPath() const {
    return m_model.filePath(m_tree->currentIndex());
}

void FolderTreeDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    showCurrent();
}

void FolderTreeDialog::currentChanged(const QModelIndex& index) {
    const QString path = m_model.filePath(index);
    m_path->setText(path);
    m_callback(*this, FolderMessage::SelectionChanged, path);
}

bool FolderTreeDialog::isPathEdited() const {
    return m_path->text() != selectedPath();
}

// A folder becomes the selection; anything else is what the caller wants of it.
void FolderTreeDialog::takeTypedPath() {
    const QString typed = m_path->text();
    if (QDir::isAbsolutePath(typed) && QFileInfo(typed).isDir())
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
    // OK may be disabled for the folder selected and still be right for the one typed.
    if (enter && focusWidget() == m_path && isPathEdited())
        takeTypedPath();
    else
        QDialog::keyPressEvent(event);
}

void FolderTreeDialog::showCurrent() {
    m_tree->scrollTo(m_tree->currentIndex(), QAbstractItemView::EnsureVisible);
}

} // namespace ql240
