// Folders, files and clips: opening, listing, closing; the settings dialog.
#include <QFileInfo>
#include <QLabel>

#include "base/preferences.h"
#include "clips/clip.h"
#include "clips/clip_folder.h"
#include "clips/clip_name.h"
#include "mainwindow/commands.h"
#include "mainwindow/folder_browser.h"
#include "mainwindow/incident_desk.h"
#include "mainwindow/main_window.h"
#include "mainwindow/my_list_widget.h"
#include "playback/video_view.h"
#include "sensors/map_view.h"
#include "sensors/widget_progress.h"
#include "settings/config_window.h"
#include "widgets/plain_text.h"

namespace ql240 {

void MainWindow::OnSlotsfolder_open() {
    const QString path = m_questions.ask([this](WindowDialogs&) {
        FolderBrowser browser(this);
        return browser.exec() ? browser.path() : QString();
    });
    if (!path.isEmpty())
        openFolder(path);
}

void MainWindow::openFolder(const QString& path, const QString& clipName) {
    readFolder(path, clipName, false);
}

// With `remember`, stores the folder as the last one once it turns out to hold recordings.
void MainWindow::readFolder(const QString& path, const QString& clipName, bool remember) {
    m_folderReader.stop();
    m_clipList->clear();
    releaseFolder();
    m_folderReader.read(path, [this, clipName, remember](const FolderListing& listing) {
        if (remember && listing.hasNames)
            writeLastFolder(listing.path);
        showListing(listing, clipName);
    });
}

void MainWindow::showListing(const FolderListing& listing, const QString& clipName) {
    auto folder = std::make_unique<ClipFolder>(listing);
    if (folder->count() != 0) {
        showFolder(std::move(folder), clipName);
        setControlsEnabled(true);
    } else {
        folder.reset();
        m_questions.warn(tr("QL240 Viewer"), tr("Please select proper folder"));
    }
}

void MainWindow::showFolder(std::unique_ptr<ClipFolder> folder, const QString& clipName) {
    m_folder = std::move(folder);
    if (m_incident)
        m_incident->setFolder(m_folder.get());
    const Clip* wanted = nullptr;
    for (const Clip* clip : m_folder->values()) {
        if (!wanted || clip->file().fileName() == clipName)
            wanted = clip;
        m_clipList->appendClip(clip);
    }
    m_clipList->setCurrentRow(m_clipList->rowOf(wanted));
    if (m_folder) // opening the clip may have run a dialog, in which the folder was closed
        showFolderPath(m_folder->path());
}

void MainWindow::showFolderPath(const QString& path) {
    // Characters that the local encoding lacks show as question marks.
    m_folderLabel->setText(shownText(QString::fromLocal8Bit(path.toLocal8Bit())));
    m_folderLabel->setToolTip(hoverText(path));
    m_folderLabel->setAccessibleName(path.isEmpty() ? tr("No folder") : tr("Folder %1").arg(shownText(path)));
}

void MainWindow::releaseFolder() {
    if (m_incident)
        m_incident->setFolder(nullptr);
    m_folder.reset();
    showFolderPath({});
    releaseRetiredClips(m_mainView->player()->clip());
}

void MainWindow::OnSlotsfile_open() {
    const QString path = m_questions.ask([this](WindowDialogs& dialogs) {
        return dialogs.askOpenFile(this, tr("Open QL240"), tr("QL240 Data Files (*.mp4)"));
    });
    if (!path.isEmpty())
        m_clipList->appendName(QFileInfo(path).fileName());
}

void MainWindow::OnSlotsselectFile(QListWidgetItem* current, QListWidgetItem*) {
    closeCurrent();
    if (current) {
        current->setSelected(true); // before a message box about its clip
        m_progressPanel->clearSensorData();
        loadClip(MyListWidget::clipOf(current));
    }
    OnSlotsplay();
}

void MainWindow::closeCurrent() {
    OnSlotsstop();
    m_mainView->closeClip();
    m_session.close();
    m_progressPanel->setRange(0, 0);
    m_progressPanel->setValue(0);
    m_progressPanel->resetIndicators();
    OnZoomWinMode(false);
}

void MainWindow::loadClip(const Clip* clip) {
    if (m_adjustment.settingsChanged())
        m_adjustment.loadPictureAdjustment();
    m_adjustment.await();
    if (showClipInView(clip)) {
        updateClipInformation(clip);
        m_session.open(*clip);
    } else {
        m_questions.warn(tr("QL240 Viewer"), tr("Failed to open clip file"));
    }
}

bool MainWindow::showClipInView(const Clip* clip) {
    if (!clip)
        return false;
    const bool opened = m_mainView->openClip(clip);
    Player* player = m_mainView->player();
    m_progressPanel->setDateText(clipDateText(clip->file().fileName()));
    m_progressPanel->setClipPath(clip->file().absoluteFilePath());
    m_mainView->setFrameSize(player->videoSize(0));
    m_mainView->setImageAdjust(m_adjustment.brightness(), m_adjustment.contrast());
    if (opened) {
        m_currentPlayer = player;
        m_subView->setSecondPlayer(player);
        m_subView->setVideoVisible(false);
        m_subView->setVideoVisible(true);
        m_subView->setFrameSize(player->videoSize(1));
        mayFail(player->setRate(1.0));
        OnSlotsstopF();
    }
    if (isFullScreen())
        setFullScreenLayout();
    else
        setNormalLayout();
    return opened;
}

void MainWindow::updateClipInformation(const Clip* clip) {
    if (clip->category() == kOtherClip && !m_folder)
        return;
    const int row = m_clipList->rowOf(clip);
    if (row < 0)
        return;
    m_clipList->setCurrentRow(row);
    if (m_currentPlayer->clip())
        m_progressPanel->loadSensorData(m_currentPlayer->durationMs());
    else
        m_progressPanel->clearSensorData();
}

void MainWindow::showMoment(const QString& path, std::int32_t ms) {
    const int row = m_clipList->rowOfPath(path);
    if (row < 0)
        return;
    const Clip* clip = MyListWidget::clipOf(m_clipList->item(row));
    if (m_session.clip() != clip)
        m_clipList->setCurrentRow(row);
    OnSlotspause();
    if (m_session.clip() == clip) // it was opened, and no dialog has closed it
        OnSlotsProgress(ms);
}

void MainWindow::runInIncident(const Command& command) {
    if (!m_incident) {
        m_incident = std::make_unique<IncidentDesk>(
            IncidentDesk::Parts{*this, m_session, *m_progressPanel, *m_clipList, *m_mainView, *m_subView});
        m_incident->setFolder(m_folder.get());
    }
    m_incident->run(command.id);
}

void MainWindow::OnSlotssetting() {
    OnSlotspause();
    ConfigWindow dialog;
    dialog.setViewerSpeedUnit(m_progressPanel->kilometres() ? SpeedUnit::Kmh : SpeedUnit::Mph);
    if (!m_questions.ask([&dialog](WindowDialogs&) { return dialog.exec(); }))
        return;
    m_adjustment.setSettingsChanged();
    m_progressPanel->setKilometres(dialog.viewerSpeedUnit() == SpeedUnit::Kmh);
    storeSpeedUnit(dialog.viewerSpeedUnit());
    m_buttons.retranslateButtons();
}

// The card's answer may come after the clip was opened.
void MainWindow::adjustPicture() {
    if (m_mainView->player()->clip())
        m_mainView->setImageAdjust(m_adjustment.brightness(), m_adjustment.contrast());
}

} // namespace ql240
