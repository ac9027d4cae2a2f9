// A folder on a reader that stops answering: the window stays in use, the wait shows itself and can be left.
#include <QDropEvent>
#include <QElapsedTimer>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>

#include "mainwindow/viewer.h"
#include "mainwindow/wait_note.h"
#include "support/own_mount.h"
#include "support/silent_file_system.h"

namespace ql240 {
using Leave = void (*)(Viewer&, WaitNote*);
} // namespace ql240

Q_DECLARE_METATYPE(ql240::Leave)

namespace ql240 {
namespace {

bool g_ownMounts = false;

// How long a call may keep the window waiting, with room for a busy machine.
constexpr qint64 kSoonMs = 600;
constexpr int kBoundMs = 15000;

// A dialog whose user selects one folder.
struct SelectingDialogs : FolderDialogs, FolderDialog {
    QString selected;
    QList<bool> ok;
    qint64 longestMs = 0;

    void setSelection(const QString&) override {}
    void enableOk(bool enabled) override { ok << enabled; }
    std::optional<QString> browseForFolder(QWidget*, const FolderCallback& callback) override {
        QElapsedTimer time;
        time.start();
        callback(*this, FolderMessage::SelectionChanged, selected);
        longestMs = time.elapsed();
        return std::nullopt;
    }
};

} // namespace

class TestSlowFolder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void waitCanBeLeft_data();
    void waitCanBeLeft();
    void lateAnswer();
    void folderDialog();
    void drop();

private:
    Viewer& viewer() { return *m_viewer; }
    QString slowPath() const { return m_viewer->path(QStringLiteral("reader")); }
    WaitNote* note() const { return m_viewer->child<WaitNote>(); }
    void openSlowFolder();

    std::unique_ptr<Viewer> m_viewer;
    std::unique_ptr<SilentFileSystem> m_reader;
};

void TestSlowFolder::init() {
    if (!g_ownMounts)
        QSKIP("a silent file system needs root or a user namespace");
    m_viewer = std::make_unique<Viewer>();
    viewer().addClip(QStringLiteral("card/REC_1.mp4"));
    QVERIFY(QDir().mkpath(slowPath()));
    m_reader = std::make_unique<SilentFileSystem>(slowPath());
    if (!m_reader->isMounted())
        QSKIP("this machine mounts no FUSE file system");
    viewer().show();
    m_reader->fallSilent();
}

void TestSlowFolder::cleanup() {
    m_reader.reset();
    m_viewer.reset();
}

void TestSlowFolder::openSlowFolder() {
    QElapsedTimer time;
    time.start();
    viewer().window->openFolder(slowPath());
    QVERIFY2(time.elapsed() < kSoonMs, qPrintable(QString::number(time.elapsed())));
    QVERIFY(viewer().window->isReadingFolder());
    QEvent leave(QEvent::Leave); // the pointer goes, and comes back
    QCoreApplication::sendEvent(viewer().window.get(), &leave);
    QCOMPARE(viewer().window->cursor().shape(), Qt::BusyCursor);
    QTRY_VERIFY_WITH_TIMEOUT(note()->isVisible(), kBoundMs);
    QVERIFY(note()->accessibleName().contains(slowPath()));
}

void TestSlowFolder::waitCanBeLeft_data() {
    QTest::addColumn<Leave>("leave");
    QTest::newRow("button") << Leave(
        [](Viewer&, WaitNote* note) { QTest::mouseClick(note->findChild<QPushButton*>(), Qt::LeftButton); });
    QTest::newRow("escape") << Leave([](Viewer& viewer, WaitNote*) {
        viewer.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(viewer.window.get()));
        viewer.key(Qt::Key_Escape);
    });
    QTest::newRow("another folder") << Leave([](Viewer& viewer, WaitNote*) {
        viewer.openFolder(viewer.path(QStringLiteral("card")));
        QCOMPARE(viewer.list()->count(), 1);
    });
}

void TestSlowFolder::waitCanBeLeft() {
    QFETCH(Leave, leave);
    viewer().openFolder(viewer().path(QStringLiteral("card")));
    openSlowFolder();
    leave(viewer(), note());
    QVERIFY(!viewer().window->isReadingFolder());
    QCOMPARE(viewer().child<QLabel>()->text().isEmpty(), viewer().list()->count() == 0);
    QVERIFY(!note()->isVisible());
    // What arrives afterwards is nobody's any more.
    m_reader->end();
    viewer().openFolder(viewer().path(QStringLiteral("card")));
    QCOMPARE(viewer().list()->count(), 1);
    QCOMPARE(viewer().answers.warnings, QStringList());
}

void TestSlowFolder::lateAnswer() {
    openSlowFolder();
    m_reader->end();
    QTRY_VERIFY_WITH_TIMEOUT(!viewer().window->isReadingFolder(), kBoundMs);
    QVERIFY(!note()->isVisible());
    QCOMPARE(viewer().answers.warnings, QStringList{"QL240 Viewer: Please select proper folder"});
}

void TestSlowFolder::folderDialog() {
    SelectingDialogs dialogs;
    dialogs.selected = slowPath();
    host().folderDialogs = &dialogs;
    viewer().window->OnSlotsfolder_open();
    QCOMPARE(dialogs.ok, QList<bool>{false});
    QVERIFY2(dialogs.longestMs < kSoonMs, qPrintable(QString::number(dialogs.longestMs)));
    dialogs.selected = viewer().path(QStringLiteral("card"));
    viewer().window->OnSlotsfolder_open();
    QVERIFY(dialogs.ok.last());
}

// What is dropped may lie on it too.
void TestSlowFolder::drop() {
    QElapsedTimer time;
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(slowPath() + QStringLiteral("/drive"))});
    const auto send = [this, &time](QDropEvent&& event) {
        time.start();
        QCoreApplication::sendEvent(viewer().window.get(), &event);
        return event.isAccepted() && time.elapsed() < kSoonMs;
    };
    QVERIFY(send(QDragEnterEvent({300, 200}, Qt::CopyAction, &data, Qt::LeftButton, {})));
    QVERIFY(send(QDropEvent({300, 200}, Qt::CopyAction, &data, Qt::LeftButton, {})));
    QVERIFY(viewer().window->isReadingFolder());
}

} // namespace ql240

// The namespace has to be entered before there is a second thread.
int main(int argc, char** argv) {
    ql240::g_ownMounts = ql240::enterOwnMounts();
    QApplication app(argc, argv);
    ql240::TestSlowFolder test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_slow_folder.moc"
