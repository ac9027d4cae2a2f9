#include "mainwindow/folder_reader.h"

#include <QCoreApplication>
#include <QRect>
#include <QWidget>
#include <utility>

#include "mainwindow/questions.h"
#include "mainwindow/wait_note.h"
#include "platform/waits.h"

namespace ql240 {

FolderReader::FolderReader(const Questions& questions) : m_questions(questions) {
    connect(&questions, &Questions::closed, this, [this] {
        if (m_phase == Phase::Held && !m_questions.isOpen())
            handOver();
    });
}

void FolderReader::showWaitIn(QWidget* window, const QRect& place) {
    m_window = window;
    m_note = new WaitNote(window);
    m_note->setGeometry(place);
    connect(m_note, &WaitNote::cancelled, this, &FolderReader::stop);
}

void FolderReader::read(const QString& path, const Then& then) {
    stop();
    const int number = ++m_number;
    m_phase = Phase::Reading;
    m_then = then;
    m_listing = std::make_shared<FolderListing>();
    m_unwanted = std::make_shared<std::atomic<bool>>(false);
    m_jobs.start(
        [path, listing = m_listing, unwanted = m_unwanted] { *listing = listFolder(path, unwanted.get()); },
        [this] { arrive(); });
    m_jobs.wait(waits::kFolderListing);
    // The continuation may have started another read.
    if (number == m_number && m_phase != Phase::Idle)
        showWait(path);
}

void FolderReader::showWait(const QString& path) {
    m_window->setCursor(Qt::BusyCursor);
    m_note->begin(QCoreApplication::translate("ql240::MainWindow", "Reading %1").arg(path));
}

void FolderReader::arrive() {
    m_phase = Phase::Held;
    if (!m_questions.isOpen())
        handOver();
}

void FolderReader::handOver() {
    const auto listing = m_listing;
    const auto then = std::exchange(m_then, {});
    stop(); // hide the busy note before the continuation opens a dialog
    then(*listing);
}

void FolderReader::stop() {
    if (m_phase == Phase::Idle)
        return;
    m_phase = Phase::Idle;
    m_unwanted->store(true);
    m_jobs.forget();
    m_note->end();
    m_window->unsetCursor();
}

} // namespace ql240
