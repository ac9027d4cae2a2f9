// The viewer's only main window: video, dashboard, map and clip list in one frameless skin, with every
// command on them. Owns its child widgets, the open ClipFolder and the window helper. Interface thread only.
#pragma once

#include <QMainWindow>
#include <QPixmap>
#include <memory>

#include "clips/clip_session.h"
#include "mainwindow/dropped.h"
#include "mainwindow/folder_reader.h"
#include "mainwindow/full_screen.h"
#include "mainwindow/main_window_buttons.h"
#include "mainwindow/picture_adjustment.h"
#include "mainwindow/questions.h"

class QLabel;
class QListWidgetItem;
class QTimer;

namespace ql240 {

class Clip;
class ClipFolder;
class FlHlp;
class IncidentDesk;
class MapView;
class MyListWidget;
class Player;
class SkinWindow;
class VideoView;
class WidgetProgressA;
class WidgetVolume;
struct Command;

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(QWidget* parent = nullptr, Qt::WindowFlags flags = {});
    ~MainWindow() override;

    void setDialogs(std::unique_ptr<WindowDialogs> dialogs);

    // Opens the folder and plays the clip of that name, or the first clip if there is none. A slow folder is
    // opened once it has been read; until then the list is empty and the user can cancel.
    void openFolder(const QString& path, const QString& clipName = {});
    bool isReadingFolder() const { return m_folderReader.isReading(); }

    QAbstractButton* button(layout::ButtonId id) const { return m_buttons.at(id); }
    // As the buttons show it; unchanged by full screen.
    bool isPlaying() const { return m_playing; }
    const ClipSession& session() const { return m_session; }
    const PictureAdjustment& pictureAdjustment() const { return m_adjustment; }

public Q_SLOTS:
    void OnSlotsplay();
    void OnSlotspause();
    void OnSlotsstop();
    void OnSlotsstopF();
    void OnSlotspre_file();
    void OnSlotsnext_file();
    void OnSlotsrw();
    void OnSlotsfw();
    void OnSlotszoom_in();
    void OnSlotszoom_out();
    void OnSlotszoom_win();
    void OnSlotspan();
    void OnZoomWinMode(bool on);
    void OnSlotsvolume();
    void OnSlotssetting();
    void OnSlotssnapshot();
    void OnSlotsprint();
    void OnSlotsLink();
    void OnSlotsfile_open();
    void OnSlotsfolder_open();
    void OnSlotsselectFile(QListWidgetItem* current, QListWidgetItem* previous);
    void OnSlotsProgress(int ms);
    void OnTimeoutUpdate();
    void OnTimeoutRefreshMap();
    void OnTimeoutRefreshMapB();

    // Opens the clip of that path, unless it is open, and pauses it at this time.
    void showMoment(const QString& path, std::int32_t ms);
    // Runs a command as its key does.
    void run(const Command& command);

    // Fills two images with the streams' last frames; false when there are none.
    bool getSnap(QImage* images);

Q_SIGNALS:
    // Emitted once, after the window was first painted.
    void firstPainted();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void makeWidgets();
    void makeViews();
    void followTrack();
    void sayHowToBegin();
    void connectButtons();

    void setNormalLayout();
    void setFullScreenLayout();
    void setPanelsVisible(bool show);
    void setControlsEnabled(bool on);
    void enterFullScreen();
    void leaveFullScreen();

    void showPlayingState();
    void showPausedState();
    void loadClip(const Clip* clip);
    bool showClipInView(const Clip* clip);
    void updateClipInformation(const Clip* clip);
    void closeCurrent();
    void readFolder(const QString& path, const QString& clipName, bool remember);
    void showListing(const FolderListing& listing, const QString& clipName);
    void showFolder(std::unique_ptr<ClipFolder> folder, const QString& clipName);
    void showFolderPath(const QString& path);
    void releaseFolder();
    void adjustPicture();
    void stepFrame(bool forward);
    // Updates the session after commands, ticks, seeks and steps; `playing` is the state they left.
    void feedSession(bool playing);
    VideoView* zoomTarget() const;
    VideoView* bigView() const;
    bool pausedSnap(QImage* images);
    bool runCommandKey(const QKeyEvent& event);
    void runInIncident(const Command& command);
    bool handToList(QKeyEvent* event);
    bool handToPanel(const QMouseEvent& event);

    WidgetProgressA* m_progressPanel = nullptr;
    Player* m_currentPlayer = nullptr;
    VideoView* m_mainView = nullptr;
    VideoView* m_subView = nullptr;
    MyListWidget* m_clipList = nullptr;
    FullScreen m_fullScreen;
    bool m_zoomWinMode = false;
    QPixmap m_background;
    std::unique_ptr<FlHlp> m_windowHelper;
    Questions m_questions;
    FolderReader m_folderReader;
    std::unique_ptr<ClipFolder> m_folder;
    QLabel* m_folderLabel = nullptr;
    MainWindowButtons m_buttons;
    MapView* m_mapView = nullptr;
    bool m_playing = false;
    WidgetVolume* m_volume = nullptr;
    QTimer* m_updateTimer = nullptr;
    PictureAdjustment m_adjustment;
    ClipSession m_session;
    bool m_painted = false;
    std::optional<Dropped> m_dropped;         // while dragged over the window
    SkinWindow* m_keysWindow = nullptr;       // once it was opened
    std::unique_ptr<IncidentDesk> m_incident; // once the Incident window was opened
};

} // namespace ql240
