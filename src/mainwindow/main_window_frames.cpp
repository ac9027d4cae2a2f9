// Snapshot, print and the link.
#include <QImage>
#include <QPainter>
#include <QPrinter>

#include "mainwindow/frame_output.h"
#include "mainwindow/main_window.h"
#include "platform/host.h"
#include "platform/logging.h"
#include "platform/url_opener.h"
#include "playback/video_view.h"

namespace ql240 {
namespace {

constexpr char kMakerAddress[] = "https://ql240.example/";
constexpr int kExtensionLength = 4;

// The painter's origin is the corner of the printable area, so the page rectangle begins at (0, 0).
void printFrames(QPrinter& printer, const FramePair& frames, int streams) {
    const QRect page(QPoint(0, 0), printer.pageRect(QPrinter::DevicePixel).toRect().size());
    const auto places = printPlaces(page, frames, streams);
    QPainter painter(&printer);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        if (!places[i].isEmpty())
            painter.drawImage(places[i], frames[i]);
    }
}

// A failure has no message on screen.
void saveOrLog(const QImage& frame, const QString& path) {
    if (!saveFrame(frame, path))
        qCWarning(lcMedia) << "no snapshot written to" << path;
}

} // namespace

bool MainWindow::getSnap(QImage* images) {
    if (!m_currentPlayer) {
        m_questions.warn(tr("QL240 Viewer"), tr("Play first"));
        return false;
    }
    for (int i = 0; i < Player::videoStreamCount; ++i)
        images[i] = m_currentPlayer->frame(i, true).copy();
    return !images[0].isNull() || !images[1].isNull();
}

bool MainWindow::pausedSnap(QImage* images) {
    OnSlotspause();
    return getSnap(images);
}

void MainWindow::OnSlotssnapshot() {
    FramePair frames;
    if (!pausedSnap(frames.data()))
        return;
    const QString path = m_questions.ask([this](WindowDialogs& dialogs) {
        return dialogs.askSaveFile(this, tr("QL240 Save File"), snapshotName(QDateTime::currentDateTime()),
                                   tr("Image Files (*.png *.jpg)"));
    });
    if (path.size() <= kExtensionLength) {
        m_questions.warn(tr("QL240"), tr("Save File Cancelled"));
        return;
    }
    saveOrLog(frames[0], path);
    if (!frames[1].isNull())
        saveOrLog(frames[1], secondSnapshotPath(path));
}

void MainWindow::OnSlotsprint() {
    FramePair frames;
    if (!pausedSnap(frames.data()))
        return;
    const int streams = Player::videoStreamCount; // read before the dialog, in which the clip may change
    QPrinter printer(QPrinter::ScreenResolution);
    if (m_questions.ask([&](WindowDialogs& dialogs) { return dialogs.askPrinter(this, printer); }))
        printFrames(printer, frames, streams);
}

void MainWindow::OnSlotsLink() {
    if (UrlOpener* opener = host().urlOpener)
        opener->openUrl(QString::fromLatin1(kMakerAddress));
}

} // namespace ql240
