#include "mainwindow/folder_reader.h"

#include <QCoreApplication>
#include <QRect>
#include <QWidget>
#include <chrono>

#include "mainwindow/wait_note.h"

namespace ql240 {
namespace {

using namespace std::chrono_literals;

// A folder that answers is waited for, so that nothing flickers.
constexpr auto kPatience = 50ms;

} // namespace

void FolderReader::showWaitIn(QWidget* window, const QRect& place) {
    m_window = window;
    m_note = new WaitNote(window);
    m_note->setGeometry(place);
    QObject::connect(m_note, &WaitNote::cancelled, &m_jobs, [this] { stop(); });
}

void FolderReader::read(const QString& path, const Then& then) {
    stop();
    const auto listing = std::make_shared<FolderListing>();
    m_unwanted = std::make_shared<std::atomic<bool>>(false);
    m_jobs.start([path, listing, unwanted = m_unwanted] { *listing = listFolder(path, unwanted.get()); },
                 [this, listing, then] {
                     stop(); // what shows of the wait goes before anybody is asked anything
                     then(*listing);
                 });
    if (m_jobs.wait(kPatience))
        return;
    m_window->setCursor(Qt::BusyCursor);
    m_note->begin(QCoreApplication::translate("ql240::MainWindow", "Reading %1").arg(path));
}

void FolderReader::stop() {
    if (!m_unwanted)
        return;
    m_unwanted->store(true);
    m_unwanted.reset();
    m_jobs.forget();
    m_note->end();
    m_window->unsetCursor();
}

} // namespace ql240
