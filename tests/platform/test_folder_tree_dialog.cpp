#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include "base/preferences.h"
#include "mainwindow/folder_browser.h"
#include "platform/host.h"
#include "platform/limits.h"
#include "platform/linux/folder_tree_dialog.h"
#include "platform/linux/system_folder_dialogs.h"
#include "support/held_jobs.h"

using namespace ql240;

// The dialog as the user meets it: run by the folder browser, which brings the rule for the OK button.
class TestFolderTreeDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { host().folderDialogs = &m_dialogs; }

    void init() {
        m_root = std::make_unique<QTemporaryDir>();
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_root->filePath(QStringLiteral("config"))));
        for (const char* name : {"card", "card/REC", "empty", "named", "named/x.avi"})
            QVERIFY(QDir(m_root->path()).mkpath(QLatin1String(name)));
        QFile clip(folder(QStringLiteral("card/REC/REC_1.MP4")));
        QVERIFY(clip.open(QFile::WriteOnly));
        m_chosen.clear();
    }

    void opensOnLastFolder_data() {
        QTest::addColumn<QString>("last");
        QTest::addColumn<bool>("found");
        QTest::newRow("there") << "card/REC" << true;
        QTest::newRow("card taken out") << "gone/REC" << false;
        QTest::newRow("a file by now") << "card/REC/REC_1.MP4" << false;
    }
    // Leaving it with another folder selected keeps the last one.
    void opensOnLastFolder() {
        QFETCH(QString, last);
        QFETCH(bool, found);
        writeLastFolder(folder(last));
        browse([&](FolderTreeDialog& dialog) {
            QTRY_COMPARE(dialog.selectedPath(), found ? folder(last) : QDir::homePath());
            QTRY_COMPARE(ok(dialog)->isEnabled(), found);
            dialog.setSelection(folder(QStringLiteral("named")));
            QTest::keyClick(&dialog, Qt::Key_Escape);
        });
        QCOMPARE(m_chosen, QString());
        QString stored;
        QVERIFY(readLastFolder(stored));
        QCOMPARE(stored, folder(last));
    }

    void okOnlyWithRecordings_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("allowed");
        QTest::newRow("recordings") << "card/REC" << true;
        QTest::newRow("recordings one level down") << "card" << false;
        QTest::newRow("empty") << "empty" << false;
        QTest::newRow("folder named like a recording") << "named" << true;
    }
    void okOnlyWithRecordings() {
        QFETCH(QString, name);
        QFETCH(bool, allowed);
        // From the opposite state, so that a button left as it was shows.
        writeLastFolder(folder(allowed ? QStringLiteral("empty") : QStringLiteral("card/REC")));
        const bool chosen = browse([&](FolderTreeDialog& dialog) {
            dialog.setSelection(folder(name));
            QTRY_COMPARE(ok(dialog)->isEnabled(), allowed);
            QTest::mouseClick(ok(dialog), Qt::LeftButton);
        });
        QCOMPARE(chosen, allowed);
        QCOMPARE(m_chosen, allowed ? folder(name) : QString());
        QString stored;
        QVERIFY(readLastFolder(stored));
        QCOMPARE(stored, allowed ? folder(name) : folder(QStringLiteral("card/REC")));
    }

    void typedPathThatIsNoFolderStays() {
        writeLastFolder(folder(QStringLiteral("card/REC")));
        browse([&](FolderTreeDialog& dialog) {
            for (const char* wrong : {"/nonexistent/x", "relative", "card"}) {
                type(dialog, QLatin1String(wrong));
                QTest::keyClick(dialog.findChild<QLineEdit*>(), Qt::Key_Return);
                QVERIFY(dialog.isVisible());
                QTest::mouseClick(ok(dialog), Qt::LeftButton);
                QVERIFY(dialog.isVisible());
                QTRY_COMPARE(dialog.selectedPath(), folder(QStringLiteral("card/REC")));
            }
        });
    }

    void keyboardAlone() {
        const bool chosen = browse([&](FolderTreeDialog& dialog) {
            type(dialog, folder(QStringLiteral("card")));
            QTest::keyClick(dialog.findChild<QLineEdit*>(), Qt::Key_Return);
            QTRY_COMPARE(dialog.selectedPath(), folder(QStringLiteral("card")));
            auto* tree = dialog.findChild<QTreeWidget*>();
            tree->setFocus();
            QTest::keyClick(tree, Qt::Key_Right);
            QTest::keyClick(tree, Qt::Key_Down);
            QTRY_COMPARE(dialog.selectedPath(), folder(QStringLiteral("card/REC")));
            QTest::keyClick(tree, Qt::Key_Return);
        });
        QVERIFY(chosen);
        QCOMPARE(m_chosen, folder(QStringLiteral("card/REC")));
    }

    void treeShowsTheFolderChosenLast() {
        QVERIFY(QDir(m_root->path()).mkpath(QStringLiteral("card/.hidden/deep")));
        for (const char* name : {"card/REC", "card/.hidden/deep"}) {
            writeLastFolder(folder(QLatin1String(name)));
            browse([&](FolderTreeDialog& dialog) {
                auto* tree = dialog.findChild<QTreeWidget*>();
                QTRY_COMPARE(dialog.selectedPath(), folder(QLatin1String(name)));
                QVERIFY(
                    tree->viewport()->rect().contains(tree->visualItemRect(tree->currentItem()).center()));
                // Each place and each folder stands once.
                QSet<QString> seen;
                for (QTreeWidgetItemIterator it(tree); *it; ++it)
                    if ((*it)->parent())
                        QVERIFY(
                            !std::exchange(seen, seen + QSet{(*it)->toolTip(0)}).contains((*it)->toolTip(0)));
            });
        }
    }

    // The folder asked for is there all the same.
    void crowdedFolder() {
        for (int i = 0; i <= limits::kTreeFolders; ++i)
            QVERIFY(QDir(m_root->path()).mkpath(QStringLiteral("card/%1").arg(i)));
        writeLastFolder(folder(QStringLiteral("card/REC")));
        browse([&](FolderTreeDialog& dialog) {
            QTRY_COMPARE(dialog.selectedPath(), folder(QStringLiteral("card/REC")));
            QCOMPARE_LE(dialog.findChild<QTreeWidget*>()->currentItem()->parent()->childCount(),
                        limits::kTreeFolders + 1);
        });
    }

    // The user has gone elsewhere before the folder that was to be selected has answered.
    void lateSelection_data() {
        QTest::addColumn<int>("place"); // that is clicked; none: a path is typed
        QTest::addColumn<QString>("shown");
        QTest::newRow("no") << -2 << QString(); // the folder asked for
        QTest::newRow("typed") << -1 << "/typed";
        QTest::newRow("another place") << 1 << "/"; // the last one
        QTest::newRow("the place that is current") << 0 << QDir::homePath();
    }
    void lateSelection() {
        QFETCH(int, place);
        QFETCH(QString, shown);
        HeldJobs jobs;
        FolderTreeDialog dialog(nullptr, [](const auto&...) { return 1; });
        jobs.answer();
        dialog.show();
        QCOMPARE(dialog.selectedPath(), QDir::homePath());
        dialog.setSelection(folder(QStringLiteral("card")));
        if (place == -1)
            type(dialog, QStringLiteral("/typed"));
        auto* tree = dialog.findChild<QTreeWidget*>();
        const int last = tree->topLevelItemCount() - 1;
        if (place >= 0)
            QTest::mouseClick(tree->viewport(), Qt::LeftButton, {},
                              tree->visualItemRect(tree->topLevelItem(place * last)).center());
        jobs.answer();
        QCOMPARE(dialog.findChild<QLineEdit*>()->text(),
                 shown.isEmpty() ? folder(QStringLiteral("card")) : shown);
    }

private:
    // Runs the browser; `answer` is given the dialog as soon as it is on screen.
    bool browse(const std::function<void(FolderTreeDialog&)>& answer) {
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            auto* dialog = qobject_cast<FolderTreeDialog*>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible())
                return;
            poll.stop();
            answer(*dialog);
            if (dialog->isVisible())
                dialog->reject();
        });
        poll.start(5);
        FolderBrowser browser(nullptr);
        const bool chosen = browser.exec();
        m_chosen = browser.path();
        return chosen;
    }

    QString folder(const QString& name) const { return m_root->filePath(name); }
    static QPushButton* ok(FolderTreeDialog& dialog) {
        return dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
    }
    static void type(FolderTreeDialog& dialog, const QString& text) {
        auto* edit = dialog.findChild<QLineEdit*>();
        edit->setFocus();
        edit->selectAll();
        QTest::keyClicks(edit, text);
    }

    SystemFolderDialogs m_dialogs;
    std::unique_ptr<QTemporaryDir> m_root;
    QString m_chosen;
};

QTEST_MAIN(TestFolderTreeDialog)
#include "test_folder_tree_dialog.moc"
