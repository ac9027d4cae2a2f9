// A folder on a reader that stops answering: the window stays usable, shows the wait, and can leave it.
#include <QDropEvent>
#include <QElapsedTimer>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>

#include "mainwindow/viewer.h"
#include "mainwindow/wait_note.h"
#include "support/own_mount.h"
#include "support/silent_file_system.h"

using namespace ql240;
namespace {

// How long a call may block the window, even on a busy machine.
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
        m_viewer = std::make_unique<Viewer>();
        QVERIFY(QDir().mkpath(slowPath()));
        m_reader = std::make_unique<SilentFileSystem>(slowPath());
        if (!m_reader->isMounted())
            QSKIP(SilentFileSystem::kNeeds);
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
        // What arrives afterwards is dropped.
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
        QTRY_VERIFY_WITH_TIMEOUT(note()->isVisible(), kWaitMs);
        QVERIFY(note()->accessibleName().contains(slowPath()));
    }

    std::unique_ptr<Viewer> m_viewer;
    std::unique_ptr<SilentFileSystem> m_reader;
};

int main(int argc, char** argv) {
    return runOnOwnMounts<QApplication, TestSlowFolder>(argc, argv);
}
#include "test_slow_folder.moc"
