// All windows over a card whose label, folders, files and version are markup, control characters, letters
// that turn the writing direction, or very long.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <QDesktopServices>
#include <QFileDialog>
#include <QHelpEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QScreen>
#include <QTextDocumentFragment>
#include <QToolTip>
#include <atomic>
#include <thread>

#include "mainwindow/viewer.h"
#include "mainwindow/window_dialogs.h"
#include "platform/linux/desktop_url_opener.h"
#include "platform/linux/folder_tree_dialog.h"
#include "support/fake_media.h"
#include "support/modal.h"
#include "support/settings_fixture.h"
#include "widgets/plain_text.h"

namespace ql240 {
namespace {

// Stands in the current folder under the name "fifo". Whoever opens it to read would wait for good; here it
// is let go at once, and noted.
class Trap {
public:
    Trap() {
        if (mkfifo("fifo", 0600) != 0)
            qFatal("no fifo");
        m_thread = std::thread([this] {
            while (!m_over) {
                const int writer = open("fifo", O_WRONLY | O_CLOEXEC); // waits for a reader
                m_sprung = m_sprung || !m_over;
                close(writer);
            }
        });
    }
    ~Trap() {
        m_over = true;
        const int reader = open("fifo", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        m_thread.join();
        close(reader);
        unlink("fifo");
    }
    Q_DISABLE_COPY_MOVE(Trap)
    bool sprung() const { return m_sprung; }

private:
    std::atomic<bool> m_over = false;
    std::atomic<bool> m_sprung = false;
    std::thread m_thread;
};

bool isSteering(QChar letter) {
    return (letter.category() == QChar::Other_Control && letter != u'\n') ||
           letter.category() == QChar::Separator_Line || letter.category() == QChar::Separator_Paragraph ||
           QStringView(u"\u200e\u200f\u061c\u202a\u202b\u202c\u202d\u202e\u2066\u2067\u2068\u2069")
               .contains(letter);
}

// What is wrong with the texts of all widgets there are.
class Walk {
public:
    explicit Walk(const QString& word) : m_word(word) {
        const auto all = QApplication::allWidgets();
        for (const QPointer<QWidget>& widget : QList<QPointer<QWidget>>(all.begin(), all.end())) {
            if (!widget || widget->inherits("QTipLabel"))
                continue;
            m_where = QLatin1String(widget->metaObject()->className());
            check(*widget);
            if (qobject_cast<QDialog*>(widget) && widget->width() > widget->screen()->geometry().width())
                fault(QStringLiteral("wider than the screen"), widget->windowTitle());
        }
    }
    QStringList faults;
    int seen = 0; // texts with the card's word in them

private:
    void check(QWidget& widget) {
        for (const QString& text :
             {widget.windowTitle(), widget.accessibleName(), widget.accessibleDescription()})
            letters(text);
        if (auto* part = QAccessible::queryAccessibleInterface(&widget))
            for (const auto kind : {QAccessible::Name, QAccessible::Value, QAccessible::Description})
                letters(part->text(kind));
        hover(widget.toolTip());
        if (auto* label = qobject_cast<QLabel*>(&widget)) {
            letters(label->text());
            if (label->textFormat() == Qt::AutoText && Qt::mightBeRichText(label->text()))
                fault(QStringLiteral("takes for markup"), label->text());
        }
        if (auto* edit = qobject_cast<QLineEdit*>(&widget))
            letters(edit->text());
        if (auto* view = qobject_cast<QAbstractItemView*>(&widget); view && view->model())
            items(*view->model(), {});
    }
    void items(const QAbstractItemModel& model, const QModelIndex& parent) {
        for (int row = 0; row < model.rowCount(parent); ++row) {
            const QModelIndex item = model.index(row, 0, parent);
            letters(item.data(Qt::DisplayRole).toString());
            hover(item.data(Qt::ToolTipRole).toString());
            items(model, item);
        }
    }
    void letters(const QString& text) {
        seen += text.contains(m_word);
        if (std::any_of(text.begin(), text.end(), isSteering))
            fault(QStringLiteral("steers"), text);
    }
    // Shown, it springs the trap if it is markup for Qt.
    void hover(const QString& text) {
        letters(QTextDocumentFragment::fromHtml(text).toPlainText().remove(QChar(0x200b)));
        QToolTip::showText(QPoint(), text);
        const auto widgets = QApplication::topLevelWidgets();
        for (const QWidget* tip : widgets)
            if (tip->inherits("QTipLabel") && tip->isVisible() &&
                tip->width() > tip->screen()->geometry().width())
                fault(QStringLiteral("wider than the screen"), text);
        QToolTip::hideText();
    }
    void fault(const QString& what, const QString& text) {
        faults << QStringLiteral("%1 %2: %3").arg(m_where, what, text.left(60));
    }

    QString m_word;
    QLatin1String m_where;
};

} // namespace

class TestShownTexts : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void open(const QUrl& url) { m_opened << url; }

private Q_SLOTS:
    void initTestCase() { installPlainTexts(*qApp); }
    void init();
    void cleanup();

    void viewer_data() { hostileWords(); }
    void viewer();
    void settings_data() { hostileWords(); }
    void settings();
    void labelKeepsItsPlace();
    void folderDialog_data() { hostileWords(); }
    void folderDialog();
    void saveDialog();
    void listOfQts();
    void texts_data();
    void texts();
    void addresses();

private:
    static void hostileWords() {
        QTest::addColumn<QString>("word");
        QTest::newRow("markup") << "<img src=fifo>";
        QTest::newRow("markup escaped") << "&lt;<b>&amp;";
        QTest::newRow("control characters") << QStringLiteral("a\x1b[31m\r\n\t\x7f\u0085\u2028z");
        QTest::newRow("directions") << QStringLiteral("\u202e\u2066\u200f4pm\u061cz");
        QTest::newRow("long") << QString(250, u'W');
    }
    static QString harmless(const QString& word) { return word.contains(u'<') ? word : word.right(1); }
    void verify(const QString& word, const char* where) const {
        const Walk walk(harmless(word));
        QVERIFY2(walk.faults.isEmpty(), qPrintable(walk.faults.join(u'\n')));
        QVERIFY2(walk.seen > 0, where);
        QVERIFY(!m_trap->sprung());
    }

    QList<QUrl> m_opened;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Trap> m_trap;
};

void TestShownTexts::init() {
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(m_folder->path()));
    m_trap = std::make_unique<Trap>();
}

void TestShownTexts::cleanup() {
    m_trap.reset();
    QDir::setCurrent(QDir::rootPath());
}

void TestShownTexts::viewer() {
    QFETCH(QString, word);
    FakeMedia media;
    {
        Viewer viewer;
        host().media = &media;
        MadeCard card;
        card.put(QStringLiteral("update/version.txt"), word.toUtf8());
        viewer.drives.drives = {{card.drive(), word.toUtf8(), "vfat"}};
        const QString clip = word + QStringLiteral("/REC_") + word.left(240) + QStringLiteral(".mp4");
        card.put(clip, "x");
        viewer.show();
        viewer.openFolder(card.path(word));
        QCOMPARE(viewer.list()->count(), 1);
        viewer.key(Qt::Key_F5); // repaints nothing, reads nothing: the window still answers
        verify(word, "viewer");
    }
}

void TestShownTexts::settings() {
    QFETCH(QString, word);
    SettingsFixture fixture;
    MadeCard card;
    makeCamera(card, "QL240 " + word.toUtf8() + ' ' + word.toUtf8().repeated(5000));
    fixture.insert(card, word.toUtf8());
    ReadyWindow window;
    window.show();
    auto* drives = window.findChild<QComboBox*>();
    QHelpEvent rests(QEvent::ToolTip, drives->rect().center(), drives->mapToGlobal(drives->rect().center()));
    QCoreApplication::sendEvent(drives, &rests);
    QVERIFY2(!m_trap->sprung(), "the hover text of the drives has opened what the label names");
    drives->showPopup();
    QVERIFY(drives->view()->window()->width() <= window.screen()->geometry().width());
    drives->hidePopup();
    for (int page = 0; page < 7; ++page) {
        ModalAnswer answer([&](QWidget*) { verify(word, "page"); });
        openPage(window, page);
    }
    verify(word, "settings");
}

// Letters written from right to left turn neither the brackets round nor the drive in them.
void TestShownTexts::labelKeepsItsPlace() {
    SettingsFixture fixture;
    MadeCard card;
    makeCamera(card, "QL240 1.00 1.00");
    const QString label = QStringLiteral("\u05e9\u05dc 1");
    fixture.insert(card, label.toLocal8Bit());
    const ReadyWindow window;
    const auto* drives = window.findChild<QComboBox*>();
    QCOMPARE(drives->itemText(0), QStringLiteral("\u2068%1\u2069 (%2)").arg(label, card.drive()));
    QVERIFY(!drives->toolTip().contains(QChar::ReplacementCharacter));
}

void TestShownTexts::folderDialog() {
    QFETCH(QString, word);
    const QString deep = m_folder->filePath(word + u'/' + word);
    QVERIFY(QDir().mkpath(deep));
    FolderTreeDialog dialog(nullptr, [](const auto&...) { return 1; });
    dialog.show();
    dialog.setSelection(deep);
    QTRY_COMPARE(dialog.selectedPath(), deep);
    QCOMPARE(dialog.result(), 0);
    verify(word, "folder dialog");
    dialog.accept();
    QCOMPARE(dialog.result(), int(QDialog::Accepted)); // a path that is shown otherwise isn't a path typed
}

// The question whether to write over a file names it.
void TestShownTexts::saveDialog() {
    const QString name = QStringLiteral("<img src=fifo>.png");
    QFile file(m_folder->filePath(name));
    QVERIFY(file.open(QFile::WriteOnly));
    bool asked = false;
    ModalAnswer outer([&](QWidget* dialog) {
        ModalAnswer inner([&](QWidget* box) {
            asked = qobject_cast<QMessageBox*>(box);
            verify(name, "question");
        });
        QMetaObject::invokeMethod(dialog, "accept");
    });
    WindowDialogs().askSaveFile(nullptr, {}, file.fileName(), QStringLiteral("(*.png)"));
    QVERIFY(asked);
}

// Qt's file dialog has lists of paths, with hover texts.
void TestShownTexts::listOfQts() {
    QListWidget list;
    auto* item = new QListWidgetItem(QStringLiteral("x"), &list);
    item->setToolTip(QStringLiteral("/media/<img src=fifo>"));
    list.show();
    const QPoint place = list.visualItemRect(item).center();
    QHelpEvent rests(QEvent::ToolTip, place, list.viewport()->mapToGlobal(place));
    QCoreApplication::sendEvent(list.viewport(), &rests);
    QVERIFY(!m_trap->sprung());
    QVERIFY(QToolTip::text().contains(u"&lt;img"));
    QToolTip::hideText();
}

void TestShownTexts::texts_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    for (const char* name :
         {"", "CAMERA (E:)", "/media/ü/Ελλ/블랙박스", "<b>&amp;</b>", "a  b", "שלום", "👩‍🚒"})
        QTest::newRow(name) << QString::fromUtf8(name) << QString::fromUtf8(name);
    QTest::newRow("lines") << "a\r\nb\tc"
                           << "a  b c";
    QTest::newRow("steering") << QStringLiteral("a\u202eb\x1b") << QStringLiteral("a\ufffdb\ufffd");
    QTest::newRow("longest") << QString(255, u'x') << QString(255, u'x');
    QTest::newRow("too long") << QString(256, u'x') << QString(254, u'x') + u'…';
    QTest::newRow("too long, of pairs")
        << u'x' + QString::fromUtf8("😀").repeated(128) << u'x' + QString::fromUtf8("😀").repeated(126) + u'…';
}

void TestShownTexts::texts() {
    QFETCH(QString, text);
    QTEST(shownName(text), "shown");
}

void TestShownTexts::addresses() {
    for (const char* scheme : {"http", "file", "mailto"})
        QDesktopServices::setUrlHandler(QLatin1String(scheme), this, "open");
    DesktopUrlOpener opener;
    for (const char* address :
         {"file:///etc/passwd", "mailto:a@b", "http:", "/usr/bin/env", "http://a b/", ""})
        QVERIFY2(!opener.openUrl(QLatin1String(address)), address);
    QVERIFY(m_opened.isEmpty());
    QVERIFY(opener.openUrl(QStringLiteral("http://h/?a=%3Cb%3E")));
    QCOMPARE(m_opened, QList<QUrl>{QUrl(QStringLiteral("http://h/?a=%3Cb%3E"))});
    for (const char* scheme : {"http", "file", "mailto"})
        QDesktopServices::unsetUrlHandler(QLatin1String(scheme));
}

} // namespace ql240

QTEST_MAIN(ql240::TestShownTexts)
#include "test_shown_texts.moc"
