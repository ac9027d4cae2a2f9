#include "mainwindow/main_window.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QPainter>
#include <QTimer>

#include "base/preferences.h"
#include "clips/clip_folder.h"
#include "mainwindow/incident_desk.h"
#include "mainwindow/my_list_widget.h"
#include "mainwindow/stay_awake.h"
#include "platform/host.h"
#include "playback/video_view.h"
#include "playback/widget_volume.h"
#include "sensors/map_view.h"
#include "sensors/widget_progress.h"
#include "settings/card.h"
#include "widgets/accessible_parts.h"
#include "widgets/skin.h"
#include "widgets/window_helper.h"

namespace ql240 {

using layout::ButtonId;

namespace {

constexpr QColor kBackgroundColour(9, 9, 9);
constexpr char kLabelStyle[] = R"(color: rgb(220,220,220); font-family: "Segoe UI", Arial; font-size: 10pt;)";

// A path elided at the left, since its end is the most telling part.
class PathLabel : public QLabel {
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setPen(palette().color(foregroundRole()));
        painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(text(), Qt::ElideLeft, width()));
    }
};

} // namespace

MainWindow::MainWindow(QWidget* parent, Qt::WindowFlags flags)
    : QMainWindow(parent, flags),
      m_fullScreen(*this),
      m_background(skinPixmap(skinPath(QStringLiteral("main_viewer_bg")))),
      m_windowHelper(std::make_unique<FlHlp>()),
      m_questions(this),
      m_folderReader(m_questions),
      m_adjustment([this] { adjustPicture(); }) {
    setAutoFillBackground(true);
    QPalette colours = palette();
    colours.setColor(backgroundRole(), kBackgroundColour);
    setPalette(colours);
    resize(layout::kWindow);
    setFixedSize(layout::kWindow);
    setAcceptDrops(true);

    makeWidgets();
    m_buttons.make(this);
    connectButtons();
    setWindowTitle(tr("QL240 Viewer"));
    makeViews();
    sayHowToBegin();

    m_windowHelper->watchWindow(this);
    m_windowHelper->setResizable(false);
    m_windowHelper->setMovable(true);
    showPausedState();
    setControlsEnabled(false);
    OnZoomWinMode(false);
    new StayAwake(m_session);
    m_adjustment.loadPictureAdjustment();
    for (QWidget* widget : QApplication::allWidgets())
        widget->setContextMenuPolicy(Qt::NoContextMenu);
}

MainWindow::~MainWindow() {
    m_incident.reset();
    m_clipList->model()->disconnect(this); // the list's end resets it
    m_clipList->clear();
    m_updateTimer->stop();
    releaseFolder();
    m_windowHelper.reset();
}

void MainWindow::setDialogs(std::unique_ptr<WindowDialogs> dialogs) {
    m_questions.setDialogs(std::move(dialogs));
}

void MainWindow::makeWidgets() {
    m_mapView = new MapView(this);
    m_mapView->setGeometry(layout::kMapView);
    m_updateTimer = new QTimer(this);
    m_updateTimer->setObjectName(QStringLiteral("updateTimer"));
    connect(m_updateTimer, &QTimer::timeout, this, &MainWindow::OnTimeoutUpdate);

    m_progressPanel = new WidgetProgressA(
        this, [drives = host().drives] { return cardVersionText(drives); },
        [this] { m_session.findTrack(m_mainView->player()->clip()); });
    m_progressPanel->setGeometry(layout::kProgressPanel);
    m_progressPanel->setActive(false);
    m_progressPanel->setKilometres(storedSpeedUnit() == SpeedUnit::Kmh);
    m_volume = new WidgetVolume(this);
    m_volume->setGeometry(layout::kVolume);
    // Dragging over the disabled gauge doesn't move the window.
    m_volume->setAttribute(Qt::WA_NoMousePropagation);
    connect(m_progressPanel, &WidgetProgressA::clicked, this, &MainWindow::OnSlotsProgress);

    m_clipList = new MyListWidget(this);
    m_clipList->setGeometry(layout::kClipList);
    connect(m_clipList, &QListWidget::currentItemChanged, this, &MainWindow::OnSlotsselectFile);
    followTrack();

    m_folderReader.showWaitIn(this, layout::kWaitNote);

    m_folderLabel = new PathLabel(this);
    m_folderLabel->setTextFormat(Qt::PlainText);
    m_folderLabel->setStyleSheet(QString::fromLatin1(kLabelStyle));
    m_folderLabel->setGeometry(layout::kFolderLabel);
    showFolderPath({});
}

void MainWindow::followTrack() {
    const auto showOnMap = [this] { m_mapView->setTrack(m_progressPanel->sensorTrack()); };
    connect(&m_session, &ClipSession::opened, m_mapView, showOnMap);
    connect(&m_session, &ClipSession::trackFound, m_mapView, showOnMap);
    connect(&m_session, &ClipSession::trackFound, this, [this] {
        if (m_progressPanel->isEnabled()) // after Stop the readings stay at zero
            OnTimeoutRefreshMapB();
    });
    connect(&m_session, &ClipSession::closed, m_progressPanel, &WidgetProgressA::stopLoading);
    connect(&m_session, &ClipSession::closed, m_mapView, [this] { m_mapView->setTrack({}); });
}

void MainWindow::connectButtons() {
    const auto connectButton = [this](ButtonId id, auto slot) {
        connect(button(id), &QAbstractButton::clicked, this, slot);
    };
    connectButton(ButtonId::Play, &MainWindow::OnSlotsplay);
    connectButton(ButtonId::Pause, &MainWindow::OnSlotspause);
    connectButton(ButtonId::Stop, &MainWindow::OnSlotsstop);
    connectButton(ButtonId::PreviousFile, &MainWindow::OnSlotspre_file);
    connectButton(ButtonId::FrameBack, &MainWindow::OnSlotsrw);
    connectButton(ButtonId::FrameForward, &MainWindow::OnSlotsfw);
    connectButton(ButtonId::NextFile, &MainWindow::OnSlotsnext_file);
    connectButton(ButtonId::ZoomIn, &MainWindow::OnSlotszoom_in);
    connectButton(ButtonId::ZoomOut, &MainWindow::OnSlotszoom_out);
    connectButton(ButtonId::OriginalSize, &MainWindow::OnSlotszoom_win);
    connectButton(ButtonId::Pan, &MainWindow::OnSlotspan);
    connectButton(ButtonId::Volume, &MainWindow::OnSlotsvolume);
    connectButton(ButtonId::Setting, &MainWindow::OnSlotssetting);
    connectButton(ButtonId::Snapshot, &MainWindow::OnSlotssnapshot);
    connectButton(ButtonId::Print, &MainWindow::OnSlotsprint);
    connectButton(ButtonId::Minimise, &MainWindow::showMinimized);
    connectButton(ButtonId::Exit, &QWidget::close);
    connectButton(ButtonId::OpenFile, &MainWindow::OnSlotsfile_open);
    connectButton(ButtonId::OpenFolder, &MainWindow::OnSlotsfolder_open);
    connectButton(ButtonId::Logo, &MainWindow::OnSlotsLink);
}

void MainWindow::makeViews() {
    m_mainView = new VideoView(this);
    describePart(m_mainView, tr("Video"), QAccessible::Animation);
    m_subView = new VideoView(this);
    describePart(m_subView, tr("Second video"), QAccessible::Animation);
    setNormalLayout();
}

// In hover texts over the picture and the list, for as long as they are empty.
void MainWindow::sayHowToBegin() {
    const auto update = [this] {
        const QString text = tr("Ctrl+O opens a folder. F1 shows the keys.");
        m_mainView->setToolTip(m_session.clip() ? QString() : text);
        m_clipList->setToolTip(m_clipList->count() > 0 ? QString() : text);
    };
    const QAbstractItemModel* rows = m_clipList->model();
    connect(rows, &QAbstractItemModel::rowsInserted, this, update);
    connect(rows, &QAbstractItemModel::rowsRemoved, this, update);
    connect(rows, &QAbstractItemModel::modelReset, this, update);
    connect(&m_session, &ClipSession::opened, this, update);
    connect(&m_session, &ClipSession::closed, this, update);
    update();
}

void MainWindow::setNormalLayout() {
    m_mainView->setGeometry(layout::kMainView);
    m_subView->setGeometry(layout::kSubView);
    m_mainView->show();
    m_subView->hide();
    m_mainView->layoutVideo();
    m_subView->layoutVideo();
    setPanelsVisible(true);
}

void MainWindow::setFullScreenLayout() {
    setPanelsVisible(false);
    m_mainView->setGeometry(rect().marginsRemoved(layout::kFullScreenMargins));
    m_mainView->show();
    m_mainView->layoutVideo();
    m_subView->hide();
}

void MainWindow::setPanelsVisible(bool show) {
    if (show && !isFullScreen()) {
        button(m_playing ? ButtonId::Pause : ButtonId::Play)->show();
    } else {
        button(ButtonId::Play)->hide();
        button(ButtonId::Pause)->hide();
    }
    for (const ButtonId id : layout::kPanelButtons)
        button(id)->setVisible(show);
    m_volume->setVisible(show);
    for (const ButtonId id : layout::kFrameButtons)
        button(id)->setVisible(show);
    m_clipList->setVisible(show);
    m_progressPanel->setVisible(show);
    for (const ButtonId id : {ButtonId::Setting, ButtonId::Minimise, ButtonId::Exit})
        button(id)->setVisible(show);
    m_mapView->setVisible(show);
    button(ButtonId::OpenFolder)->setVisible(show);
    m_folderLabel->setVisible(show);
    update();
}

void MainWindow::setControlsEnabled(bool on) {
    for (const ButtonId id : layout::kControls)
        button(id)->setEnabled(on);
    m_volume->setEnabled(on);
    for (const ButtonId id : layout::kFrameButtons)
        button(id)->setEnabled(on);
}

} // namespace ql240
