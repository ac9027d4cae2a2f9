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

// The dialog as the folder browser runs it, with its rule for the OK button.
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

    // Cancelling with another folder selected keeps the last one.
    void opensOnLastFolder() {
        QVERIFY(QDir(m_root->path()).mkpath("card/.hidden/deep"));
        for (const char* last : {"card/REC", "card/.hidden/deep", "gone/REC", "card/REC/REC_1.MP4"}) {
            const bool found = QFileInfo(folder(last)).isDir();
            writeLastFolder(folder(last));
            browse([&](FolderTreeDialog& dialog) {
                QTRY_COMPARE(dialog.selectedPath(), found ? folder(last) : QDir::homePath());
                QTRY_COMPARE(ok(dialog)->isEnabled(), qstrcmp(last, "card/REC") == 0);
                auto* tree = dialog.findChild<QTreeWidget*>();
                const QPoint current = tree->visualItemRect(tree->currentItem()).center();
                QVERIFY(!found || tree->viewport()->rect().contains(current));
                // Each place and each folder appears once.
                QSet<QString> seen;
                for (QTreeWidgetItemIterator it(tree); found && *it; ++it) {
                    const QString path = (*it)->toolTip(0);
                    QVERIFY(!(*it)->parent() || !std::exchange(seen, seen + QSet{path}).contains(path));
                }
                dialog.setSelection(folder("named"));
                QTest::keyClick(&dialog, Qt::Key_Escape);
            });
            QCOMPARE(m_chosen, QString());
            QCOMPARE(lastFolder(), folder(last));
        }
    }

    void okOnlyWithRecordings() {
        for (const char* name : {"card/REC", "card", "empty", "named"}) {
            const bool allowed = qstrcmp(name, "card/REC") == 0 || qstrcmp(name, "named") == 0;
            // Starts from the opposite state, so that an unchanged button fails.
            writeLastFolder(folder(allowed ? "empty" : "card/REC"));
            const bool chosen = browse([&](FolderTreeDialog& dialog) {
                dialog.setSelection(folder(name));
                QTRY_COMPARE(ok(dialog)->isEnabled(), allowed);
                QTest::mouseClick(ok(dialog), Qt::LeftButton);
            });
            QCOMPARE(chosen, allowed);
            QCOMPARE(m_chosen, allowed ? folder(name) : QString());
            QCOMPARE(lastFolder(), folder(allowed ? name : "card/REC"));
        }
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

    // By Cancel, and by typing a path that is no folder.
    void leavesWithoutAFolder() {
        for (const bool typed : {false, true}) {
            FolderTreeDialog dialog(nullptr, [](const auto&...) { return 0; });
            dialog.show();
            if (typed) {
                type(dialog, "/nonexistent");
                QTest::keyClick(dialog.findChild<QLineEdit*>(), Qt::Key_Return);
            } else {
                const auto* buttons = dialog.findChild<QDialogButtonBox*>();
                QTest::mouseClick(buttons->button(QDialogButtonBox::Cancel), Qt::LeftButton);
            }
            QTRY_VERIFY(!dialog.isVisible());
            QCOMPARE(dialog.result(), int(QDialog::Rejected));
        }
    }

    // The requested folder is listed even past the limit.
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

    // The user goes elsewhere before the folder to be selected has answered.
    void lateSelection() {
        constexpr int kNothing = -2, kTyped = -1, kCurrent = 0, kLast = 1;
        for (const int where : {kNothing, kTyped, kCurrent, kLast}) {
            HeldJobs jobs;
            FolderTreeDialog dialog(nullptr, [](const auto&...) { return 1; });
            jobs.answer();
            dialog.show();
            QCOMPARE(dialog.selectedPath(), QDir::homePath());
            dialog.setSelection(folder("card"));
            auto* tree = dialog.findChild<QTreeWidget*>();
            if (where == kTyped) {
                type(dialog, "/typed");
            } else if (where != kNothing) {
                const auto* place = tree->topLevelItem(where * (tree->topLevelItemCount() - 1));
                QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualItemRect(place).center());
            }
            jobs.answer();
            const QString shown[] = {folder("card"), "/typed", QDir::homePath(), "/"};
            QCOMPARE(dialog.findChild<QLineEdit*>()->text(), shown[where - kNothing]);
        }
    }

private:
    // Runs the browser; calls `answer` once the dialog is shown.
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
    static QString lastFolder() {
        QString stored;
        return readLastFolder(stored) ? stored : QString();
    }
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
