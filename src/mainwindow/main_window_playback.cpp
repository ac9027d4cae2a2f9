// Transport, zoom, sound, and the update that drives dashboard and map while a clip plays.
#include <QTimer>

#include "mainwindow/main_window.h"
#include "mainwindow/my_list_widget.h"
#include "playback/video_view.h"
#include "playback/widget_volume.h"
#include "sensors/map_view.h"
#include "sensors/widget_progress.h"
#include "widgets/image_buttons.h"
#include "widgets/window_helper.h"

namespace ql240 {

using layout::ButtonId;

namespace {

constexpr int kUpdateIntervalMs = 100;
constexpr int kHighestSpeed = 241;

// Stops, rewinds and pauses at the first frame.
void backToStart(Player& player) {
    player.stop();
    player.rewind();
    player.pause();
}

} // namespace

void MainWindow::showPlayingState() {
    if (isFullScreen())
        return;
    m_playing = true;
    m_buttons.replace(ButtonId::Play, ButtonId::Pause);
    m_progressPanel->setActive(true);
}

void MainWindow::showPausedState() {
    if (isFullScreen())
        return;
    m_playing = false;
    m_buttons.replace(ButtonId::Pause, ButtonId::Play);
    m_progressPanel->setAnimating(false);
}

// Depends on whether a clip is open, not on the state shown, which full screen leaves unchanged.
void MainWindow::feedSession(bool playing) {
    const Player& player = *m_mainView->player();
    m_session.find(player.clip(), playing, player.positionMs());
}

void MainWindow::OnSlotsplay() {
    if (m_adjustment.settingsChanged()) {
        m_adjustment.loadPictureAdjustment();
        m_adjustment.await();
        m_mainView->setImageAdjust(m_adjustment.brightness(), m_adjustment.contrast());
    }
    m_subView->player()->play();
    m_mainView->player()->play();
    feedSession(true);
    showPlayingState();
    m_updateTimer->start(kUpdateIntervalMs);
}

void MainWindow::OnSlotspause() {
    m_mainView->player()->pause();
    feedSession(false);
    showPausedState();
}

void MainWindow::OnSlotsstop() {
    m_mainView->zoomStep(0);
    m_subView->zoomStep(0);
    OnZoomWinMode(false);
    backToStart(*m_mainView->player());
    feedSession(false);
    showPausedState();
    m_progressPanel->setActive(false);
}

void MainWindow::OnSlotsstopF() {
    backToStart(*m_mainView->player());
    feedSession(false);
    showPausedState();
}

void MainWindow::stepFrame(bool forward) {
    Player& player = *m_mainView->player();
    player.pause();
    if (forward)
        player.stepForward();
    else
        player.stepBack();
    feedSession(false);
    showPausedState();
    OnTimeoutRefreshMapB();
    m_progressPanel->setValue(static_cast<std::int32_t>(player.positionMs()));
}

void MainWindow::OnSlotsrw() {
    stepFrame(false);
}

void MainWindow::OnSlotsfw() {
    stepFrame(true);
}

void MainWindow::OnSlotspre_file() {
    if (m_clipList->count() == 1)
        return;
    const int row = m_clipList->currentRow();
    m_clipList->setCurrentRow(row < 1 ? m_clipList->count() - 1 : row - 1);
}

void MainWindow::OnSlotsnext_file() {
    if (m_clipList->count() == 1)
        return;
    const int row = m_clipList->currentRow();
    m_clipList->setCurrentRow(row < m_clipList->count() - 1 ? row + 1 : 0);
}

void MainWindow::OnSlotsProgress(int ms) {
    m_progressPanel->setValue(ms);
    m_mainView->player()->seek(ms);
    feedSession(m_session.isPlaying());
    OnTimeoutRefreshMapB();
}

void MainWindow::OnTimeoutUpdate() {
    OnTimeoutRefreshMap();
    if (!m_currentPlayer || !m_currentPlayer->clip()) {
        m_progressPanel->setRange(0, 0);
        m_progressPanel->setValue(0);
        return;
    }
    const auto duration = static_cast<std::int32_t>(m_currentPlayer->durationMs());
    const auto position = static_cast<std::int32_t>(m_currentPlayer->positionMs());
    m_progressPanel->setRange(0, duration);
    m_progressPanel->setValue(position);
    feedSession(m_session.isPlaying());
    // While a dialog is open, a clip that it paused at its end doesn't move on to the next clip.
    const bool ended = position == duration && !(m_questions.isOpen() && !m_session.isPlaying());
    if (!ended)
        return;
    if (m_clipList->count() == 1) {
        OnSlotsstopF();
    } else {
        OnSlotsnext_file();
        OnSlotsplay();
    }
}

void MainWindow::OnTimeoutRefreshMap() {
    if (m_playing)
        OnTimeoutRefreshMapB();
    else
        m_updateTimer->stop();
}

void MainWindow::OnTimeoutRefreshMapB() {
    m_currentPlayer = m_mainView->player();
    const SensorSample sample =
        m_progressPanel->sampleAt(static_cast<std::int32_t>(m_currentPlayer->positionMs()));
    if (sample.timeMs == -1 || !sample.hasPosition())
        return;
    m_mapView->moveTo(sample.latitude, sample.longitude);
    if (sample.speed == m_progressPanel->speed())
        return;
    const std::int32_t speed = sample.speed >= 0 ? sample.speed : m_progressPanel->speed();
    m_progressPanel->setSpeed(speed > kHighestSpeed ? 0 : speed);
}

VideoView* MainWindow::zoomTarget() const {
    return m_mainView->width() == layout::kMainView.width() ? m_mainView : m_subView;
}

void MainWindow::OnSlotszoom_in() {
    zoomTarget()->zoomStep(+1);
}

void MainWindow::OnSlotszoom_out() {
    zoomTarget()->zoomStep(-1);
}

void MainWindow::OnSlotszoom_win() {
    zoomTarget()->zoomStep(0);
}

void MainWindow::OnSlotspan() {
    OnZoomWinMode(!m_zoomWinMode);
}

void MainWindow::OnZoomWinMode(bool on) {
    m_zoomWinMode = on;
    m_buttons.controlAt(ButtonId::Pan)->setLatched(on);
    m_windowHelper->setMovable(!on);
    m_clipList->setEnabled(!on);
    m_mapView->setEnabled(!on);
    m_mainView->setZoomWinMode(on);
    m_subView->setZoomWinMode(on);
}

void MainWindow::OnSlotsvolume() {
    const bool on = !m_volume->isEnabled();
    m_volume->setSoundOn(on);
    m_volume->setEnabled(on);
    m_buttons.controlAt(ButtonId::Volume)->setLatched(!on);
}

} // namespace ql240
