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
namespace {

bool g_ownMounts = false;

// How long a call may keep the window waiting, with room for a busy machine.
constexpr qint64 kSoonMs = 600;

template <typename Call>
qint64 timeOf(const Call& call) {
    QElapsedTimer time;
    time.start();
    call();
    return time.elapsed();
}

// A dialog whose user selects one folder.
struct SelectingDialogs : FolderDialogs, FolderDialog {
    QString selected;
    bool ok = true;
    qint64 tookMs = 0;

    void setSelection(const QString&) override {}
    void enableOk(bool enabled) override { ok = enabled; }
    std::optional<QString> browseForFolder(QWidget*, const FolderCallback& callback) override {
        tookMs = timeOf([&] { callback(*this, FolderMessage::SelectionChanged, selected); });
        return std::nullopt;
    }
};

} // namespace

class TestSlowFolder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        if (!g_ownMounts)
            QSKIP("a silent file system needs root or a user namespace");
        m_viewer = std::make_unique<Viewer>();
        QVERIFY(QDir().mkpath(slowPath()));
        m_reader = std::make_unique<SilentFileSystem>(slowPath());
        if (!m_reader->isMounted())
            QSKIP("this machine mounts no FUSE file system");
        viewer().playCard({"REC_1.mp4"});
        m_reader->fallSilent();
    }
    void cleanup() {
        m_reader.reset();
        m_viewer.reset();
    }

    void waitCanBeLeft() {
        const std::function<void()> leaves[] = {
            [this] { QTest::mouseClick(note()->findChild<QPushButton*>(), Qt::LeftButton); },
            [this] { viewer().key(Qt::Key_Escape); }, [this] { viewer().openCard(); }};
        for (const auto& leave : leaves) {
            viewer().openCard();
            openSlowFolder();
            leave();
            QVERIFY(!viewer().window->isReadingFolder() && !note()->isVisible());
            QCOMPARE(viewer().child<QLabel>()->text().isEmpty(), viewer().list()->count() == 0);
        }
        // What arrives afterwards is nobody's any more.
        m_reader->end();
        viewer().openCard();
        QCOMPARE(viewer().list()->count(), 1);
        QCOMPARE(viewer().answers.warnings, QStringList());
    }

    void folderDialog() {
        SelectingDialogs dialogs;
        dialogs.selected = slowPath();
        host().folderDialogs = &dialogs;
        viewer().window->OnSlotsfolder_open();
        QVERIFY(!dialogs.ok);
        QVERIFY2(dialogs.tookMs < kSoonMs, qPrintable(QString::number(dialogs.tookMs)));
    }

    // What is dropped may lie on it too.
    void drop() {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(slowPath() + "/drive")});
        const auto send = [this](QDropEvent&& event) {
            const qint64 tookMs = timeOf([&] { QCoreApplication::sendEvent(viewer().window.get(), &event); });
            return event.isAccepted() && tookMs < kSoonMs;
        };
        QVERIFY(send(QDragEnterEvent({300, 200}, Qt::CopyAction, &data, Qt::LeftButton, {})));
        QVERIFY(send(QDropEvent({300, 200}, Qt::CopyAction, &data, Qt::LeftButton, {})));
        QVERIFY(viewer().window->isReadingFolder());
    }

private:
    Viewer& viewer() { return *m_viewer; }
    QString slowPath() const { return m_viewer->path("reader"); }
    WaitNote* note() const { return m_viewer->child<WaitNote>(); }

    void openSlowFolder() {
        const qint64 tookMs = timeOf([this] { viewer().window->openFolder(slowPath()); });
        QVERIFY2(tookMs < kSoonMs, qPrintable(QString::number(tookMs)));
        QVERIFY(viewer().window->isReadingFolder());
        QEvent leave(QEvent::Leave); // the pointer goes, and comes back
        QCoreApplication::sendEvent(viewer().window.get(), &leave);
        QCOMPARE(viewer().window->cursor().shape(), Qt::BusyCursor);
        QTRY_VERIFY_WITH_TIMEOUT(note()->isVisible(), kWaitMs);
        QVERIFY(note()->accessibleName().contains(slowPath()));
    }

    std::unique_ptr<Viewer> m_viewer;
    std::unique_ptr<SilentFileSystem> m_reader;
};

} // namespace ql240

// The namespace has to be entered before there is a second thread.
int main(int argc, char** argv) {
    ql240::g_ownMounts = ql240::enterOwnMounts();
    QApplication app(argc, argv);
    ql240::TestSlowFolder test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_slow_folder.moc"
