// All windows with a card whose label, folders, files and version are markup, control characters, characters
// that change the writing direction, or very long.
#include <sys/inotify.h>
#include <unistd.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <QDesktopServices>
#include <QHelpEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QScreen>
#include <QTextDocumentFragment>
#include <QToolTip>
#include <climits>

#include "mainwindow/viewer.h"
#include "platform/linux/desktop_url_opener.h"
#include "platform/linux/folder_tree_dialog.h"
#include "support/fake_media.h"
#include "support/modal.h"
#include "support/settings_fixture.h"
#include "widgets/plain_text.h"

using namespace ql240;
namespace {

// The picture "trap.png" in the current folder, which must not be opened.
class Trap {
public:
    explicit Trap(const QString& path = "trap.png") {
        QFile file(path);
        if (!file.open(QFile::WriteOnly))
            qFatal("no trap");
        file.close();
        inotify_add_watch(m_watch, path.toUtf8(), IN_OPEN);
    }
    ~Trap() { close(m_watch); }
    Q_DISABLE_COPY_MOVE(Trap)
    bool sprung() const {
        inotify_event event;
        return read(m_watch, &event, sizeof event) > 0;
    }

private:
    int m_watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
};

// The faults in the texts of all widgets.
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
    int seen = 0; // texts that contain the word from the card

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
        const QString line = QString(text).remove(u'\n');
        if (shownText(line, INT_MAX) != line)
            fault(QStringLiteral("steers"), text);
    }
    // Showing it springs the trap if Qt takes it for markup.
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
    void init() {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir::setCurrent(m_folder->path()));
        m_trap = std::make_unique<Trap>();
    }
    void cleanup() {
        m_trap.reset();
        QDir::setCurrent(QDir::rootPath());
    }

    void viewer_data() { hostileWords(); }
    void viewer() {
        QFETCH(QString, word);
        FakeMedia media;
        Viewer viewer;
        host().media = &media;
        MadeCard card;
        card.put("update/version.txt", word.toUtf8());
        card.put(word + "/REC_" + word.left(240) + ".mp4", "x");
        viewer.drives.drives = {{card.drive(), word.toUtf8(), "vfat"}};
        viewer.show();
        viewer.openFolder(card.path(word));
        QCOMPARE(viewer.list()->count(), 1);
        verify(word, "viewer");
    }

    void settings_data() { hostileWords(); }
    void settings() {
        QFETCH(QString, word);
        SettingsFixture fixture;
        MadeCard card;
        makeCamera(card, "QL240 " + word.toUtf8() + ' ' + word.toUtf8().repeated(5000));
        fixture.insert(card, word.toUtf8());
        ReadyWindow window;
        window.show();
        auto* drives = window.findChild<QComboBox*>();
        rest(*drives, drives->rect().center());
        QVERIFY2(!m_trap->sprung(), "the hover text of the drives has opened what the label names");
        for (QComboBox* list : window.findChildren<QComboBox*>()) {
            list->showPopup();
            QVERIFY(list->view()->window()->width() <= window.screen()->geometry().width());
            list->hidePopup();
        }
        for (int page = 0; page < 7; ++page) {
            ModalAnswer answer([&](QWidget*) { verify(word, "page"); });
            openPage(window, page);
        }
        verify(word, "settings");
    }

    // Right-to-left letters change neither the brackets nor the drive between them.
    void labelKeepsItsPlace() {
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

    void folderDialog_data() { hostileWords(); }
    void folderDialog() {
        QFETCH(QString, word);
        const QString deep = m_folder->filePath(word + u'/' + word);
        QVERIFY(QDir().mkpath(deep));
        FolderTreeDialog dialog(nullptr, [](const auto&...) { return 1; });
        dialog.show();
        dialog.setSelection(deep);
        QTRY_COMPARE(dialog.selectedPath(), deep);
        verify(word, "folder dialog");
        dialog.accept();
        QCOMPARE(dialog.result(),
                 int(QDialog::Accepted)); // an escaped path wasn't typed
    }

    // The question whether to overwrite a file names it. The trap is in a folder that Qt's dialog doesn't
    // list, since it reads the beginnings of the files that it lists.
    void saveDialog() {
        const QTemporaryDir elsewhere;
        QString trap = elsewhere.filePath("trap.png");
        m_trap = std::make_unique<Trap>(trap);
        const QString name = "<img src=" + trap.replace('/', "&#47;") + ">.png";
        QVERIFY(QFile(m_folder->filePath(name)).open(QFile::WriteOnly));
        bool asked = false;
        ModalAnswer outer([&](QWidget* dialog) {
            ModalAnswer inner([&](QWidget* box) {
                asked = qobject_cast<QMessageBox*>(box);
                verify(name, "question");
            });
            QMetaObject::invokeMethod(dialog, "accept");
        });
        WindowDialogs().askSaveFile(nullptr, {}, m_folder->filePath(name), "(*.png)");
        QVERIFY(asked);
    }

    // Qt's file dialog has lists of paths with tooltips.
    void listOfQts() {
        QListWidget list;
        auto* item = new QListWidgetItem("x", &list);
        item->setToolTip("/media/<img src=trap.png>");
        list.show();
        rest(*list.viewport(), list.visualItemRect(item).center());
        QVERIFY(!m_trap->sprung());
        QVERIFY(QToolTip::text().contains(u"&lt;img"));
        QToolTip::hideText();
    }

    void texts() {
        for (const char* text :
             {"", "/media/ü/Ελλ/블랙박스 (E:)", "<b>&amp;</b>", "a  b", "שלום", "👩‍🚒"})
            QCOMPARE(shownName(text), QString(text));
        QCOMPARE(shownName("a\r\nb\tc"), "a  b c");
        const QString steering = QStringLiteral("\x1b\x7f\u200e\u200f\u061c\u202a\u202e\u2066\u2069");
        QCOMPARE(shownName("a" + steering + "b"), "a" + QString(steering.size(), u'\ufffd') + "b");
        QCOMPARE(shownName(QString(255, u'x')), QString(255, u'x'));
        QCOMPARE(shownName(QString(256, u'x')), QString(254, u'x') + u'…');
        const QString pair = "😀";
        QCOMPARE(shownName(u'x' + pair.repeated(128)), u'x' + pair.repeated(126) + u'…');
    }

    void addresses() {
        const char* const schemes[] = {"http", "file", "mailto"};
        for (const char* scheme : schemes)
            QDesktopServices::setUrlHandler(scheme, this, "open");
        DesktopUrlOpener opener;
        for (const char* bad :
             {"file:///etc/passwd", "mailto:a@b", "http:", "/usr/bin/env", "http://a b/", ""})
            QVERIFY2(!opener.openUrl(bad), bad);
        QVERIFY(opener.openUrl("http://h/?a=%3Cb%3E"));
        QCOMPARE(m_opened, QList<QUrl>{QUrl("http://h/?a=%3Cb%3E")});
        for (const char* scheme : schemes)
            QDesktopServices::unsetUrlHandler(scheme);
    }

private:
    static void hostileWords() {
        QTest::addColumn<QString>("word");
        QTest::newRow("markup") << "<img src=trap.png>";
        QTest::newRow("markup escaped") << "&lt;<b>&amp;";
        QTest::newRow("control characters") << QStringLiteral("a\x1b[31m\r\n\t\x7f\u0085\u2028z");
        QTest::newRow("directions") << QStringLiteral("\u202e\u2066\u200f4pm\u061cz");
        QTest::newRow("long") << QString(250, u'W');
    }
    // Rests the pointer until a tooltip appears.
    static void rest(QWidget& widget, QPoint place) {
        QHelpEvent rests(QEvent::ToolTip, place, widget.mapToGlobal(place));
        QCoreApplication::sendEvent(&widget, &rests);
    }
    void verify(const QString& word, const char* where) const {
        const Walk walk(word.contains(u'<') ? word : word.right(1)); // its harmless part
        QVERIFY2(walk.faults.isEmpty(), qPrintable(walk.faults.join(u'\n')));
        QVERIFY2(walk.seen > 0, where);
        QVERIFY(!m_trap->sprung());
    }

    QList<QUrl> m_opened;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Trap> m_trap;
};

QTEST_MAIN(TestShownTexts)
#include "test_shown_texts.moc"
