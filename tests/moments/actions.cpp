// The actions of a run, and how likely each is.
#include <QAbstractButton>
#include <QComboBox>
#include <QDialog>
#include <QDropEvent>
#include <QMimeData>
#include <QPointer>
#include <QUrl>

#include "mainwindow/main_window_layout.h"
#include "mainwindow/my_list_widget.h"
#include "moments/run.h"
#include "sensors/map_view.h"
#include "sensors/widget_progress.h"
#include "settings/config_layout.h"
#include "settings/config_window.h"
#include "settings/page_layout.h"
#include "settings/settings_page.h"

namespace ql240::moments {
namespace {

using layout::ButtonId;

// --- Mouse, on the main window, even if something covers it ---

void clickButton(Run& run, ButtonId id) {
    MainWindow* window = run.world().window.get();
    const QAbstractButton* button = window->button(id);
    if (button->isVisible())
        run.hands().click(window, button->geometry().center());
}

template <ButtonId id>
void click(Run& run) {
    clickButton(run, id);
}

void clickEntry(Run& run) {
    MainWindow* window = run.world().window.get();
    const auto* list = window->findChild<MyListWidget*>();
    if (list->count() == 0)
        return run.hands().click(window, list->geometry().center());
    const QRect entry = list->visualItemRect(list->item(run.luck().below(list->count())));
    run.hands().click(window, list->viewport()->mapTo(window, entry.center()));
}

QPoint somewhereIn(Run& run, const QRect& rect) {
    return rect.topLeft() + QPoint(run.luck().below(rect.width()), run.luck().below(rect.height()));
}

void dragStrip(Run& run) {
    MainWindow* window = run.world().window.get();
    const QRect strip(layout::kProgressPanel.topLeft(), QSize(layout::kProgressPanel.width(), 40));
    run.hands().press(window, somewhereIn(run, strip), Qt::LeftButton);
    run.hands().move(window, somewhereIn(run, strip));
    const bool below = run.luck().chance(15);
    const QPoint end = below ? strip.bottomLeft() + QPoint(40, 60) : somewhereIn(run, strip);
    if (run.luck().chance(15))
        run.hands().loseRelease();
    else
        run.hands().release(window, end, Qt::LeftButton);
}

// Pixel by pixel, as a careful user does.
void dragSlowly(Run& run) {
    MainWindow* window = run.world().window.get();
    const QRect places[] = {layout::kMainView, QRect(230, 2, 400, 26), layout::kClipList,
                            layout::kProgressPanel};
    QPoint place = somewhereIn(run, places[run.luck().chance(70) ? 0 : run.luck().below(4)]);
    const bool inList = layout::kClipList.contains(place);
    if (inList)
        run.viewer().mayChoose();
    run.hands().press(window, place, run.luck().chance(90) ? Qt::LeftButton : Qt::RightButton);
    const QPoint stride(run.luck().below(3) - 1, run.luck().below(3) - 1);
    const int scale = run.luck().chance(50) ? 1 : 9;
    for (int i = run.luck().below(12); i > 0; --i) {
        place += stride * scale;
        run.viewer().beforeMove();
        run.hands().move(window, place);
        if (!inList)
            run.viewer().afterMove(run.hands(), window->mapToGlobal(place));
    }
    if (run.luck().chance(15))
        return run.hands().loseRelease();
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
        if (run.hands().held() & button)
            run.hands().release(window, place, button);
    }
}

void movePointer(Run& run) {
    MainWindow* window = run.world().window.get();
    for (int i = 1 + run.luck().below(4); i > 0; --i) {
        const QPoint place = somewhereIn(run, window->rect());
        run.viewer().beforeMove();
        run.hands().move(window, place);
        run.viewer().afterMove(run.hands(), window->mapToGlobal(place));
    }
}

// Like a user who changes their mind while the button is down.
void slideOffButton(Run& run) {
    MainWindow* window = run.world().window.get();
    const QAbstractButton* button = window->button(run.luck().oneOf(layout::kControls));
    run.hands().press(window, button->geometry().center(), Qt::LeftButton);
    for (int i = 2; i > 0; --i) {
        const QPoint place = somewhereIn(run, layout::kMainView);
        run.viewer().beforeMove();
        run.hands().move(window, place);
        run.viewer().afterMove(run.hands(), window->mapToGlobal(place));
    }
    run.hands().release(window, somewhereIn(run, layout::kMainView), Qt::LeftButton);
}

void rightClickPicture(Run& run) {
    MainWindow* window = run.world().window.get();
    run.hands().click(window, somewhereIn(run, layout::kMainView), Qt::RightButton);
}

// --- Keys, for the active window ---

std::optional<RowValues> valuesOf(const QWidget* window) {
    if (const auto* settings = qobject_cast<const ConfigWindow*>(window))
        return settings->values();
    if (const auto* page = qobject_cast<const SettingsPage*>(window))
        return page->values();
    return std::nullopt;
}

void typeKey(Run& run) {
    constexpr int kKeys[] = {
        Qt::Key_Space, Qt::Key_Left, Qt::Key_Right,     Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Plus,
        Qt::Key_Minus, Qt::Key_0,    Qt::Key_M,         Qt::Key_S,      Qt::Key_F,        Qt::Key_Up,
        Qt::Key_Down,  Qt::Key_Tab,  Qt::Key_Return,    Qt::Key_Escape, Qt::Key_Home,     Qt::Key_End,
        Qt::Key_R,     Qt::Key_E,    Qt::Key_Backspace, Qt::Key_F1};
    const int key = run.luck().oneOf(kKeys);
    QWidget* front = run.front();
    if (qobject_cast<ConfigWindow*>(front) && (key == Qt::Key_Return || key == Qt::Key_Space))
        run.cards().confirmed(); // OK may have the focus
    const auto before = valuesOf(front);
    const QPointer<QWidget> kept(front);
    const auto played = run.played();
    run.hands().type(front, key, {}, run.luck().chance(20) ? run.luck().below(8) : 0);
    // What the key has changed, unless it opened a window in which other steps were played.
    if (!before || !kept || run.played() != played)
        return;
    const RowValues after = *valuesOf(kept);
    for (const SettingKey& each : kSettingKeys) {
        if (after.*each.value != (*before).*each.value)
            run.cards().chose(each.value, after.*each.value);
    }
    if (after.setsClock != before->setsClock)
        run.cards().chose(&RowValues::setsClock, after.setsClock);
}

// The Incident window's, also while it is closed.
void useIncident(Run& run) {
    constexpr std::pair<int, Qt::KeyboardModifier> kKeys[] = {
        {Qt::Key_I, Qt::ControlModifier},      {Qt::Key_I, Qt::ControlModifier},
        {Qt::Key_M, Qt::ControlModifier},      {Qt::Key_M, Qt::ControlModifier},
        {Qt::Key_Comma, Qt::NoModifier},       {Qt::Key_Period, Qt::NoModifier},
        {Qt::Key_BracketLeft, Qt::NoModifier}, {Qt::Key_BracketRight, Qt::NoModifier},
        {Qt::Key_BracketLeft, Qt::NoModifier}, {Qt::Key_BracketRight, Qt::NoModifier}};
    const auto [key, modifier] = run.luck().oneOf(kKeys);
    run.hands().type(run.front(), key, modifier);
}

void openFolderByKey(Run& run) {
    run.hands().type(run.front(), Qt::Key_O, Qt::ControlModifier);
}

// --- Drops, and what the window system does ---

void drop(Run& run) {
    World& world = run.world();
    QMimeData data;
    const bool folder = run.luck().chance(60);
    const QString path = folder ? world.someFolder() : world.someClip();
    data.setUrls({QUrl::fromLocalFile(path)});
    if (run.front() != world.window.get())
        return;
    const QPoint place(300, 200);
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(world.window.get(), &enter);
    if (!enter.isAccepted())
        return;
    QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(world.window.get(), &event);
}

void changeActivity(Run& run) {
    QWidget* window = run.world().window.get();
    switch (run.luck().below(3)) {
        case 0:
            return window->showMinimized();
        case 1:
            return window->showNormal();
        default:
            return window->activateWindow();
    }
}

// --- The dialog in front ---

void clickRow(Run& run, QWidget* window, std::span<const OptionRow> rows) {
    const OptionRow& row = run.luck().oneOf(rows);
    if (row.kind == RowKind::ShownOnly || row.choices.empty())
        return;
    const Choice& choice = run.luck().oneOf(row.choices);
    run.cards().chose(row.value, choice.value);
    run.hands().click(window, choice.hit.center());
}

void clickIn(Run& run, QWidget* window, const QRect& rect) {
    run.hands().click(window, rect.center());
}

void useConfigWindow(Run& run, ConfigWindow* dialog) {
    enum { Row, Page, Drive, Ok, Cancel };
    constexpr int kParts[] = {Row, Row, Row, Page, Page, Page, Page, Drive, Drive, Ok, Ok, Ok, Cancel};
    switch (run.luck().oneOf(kParts)) {
        case Row:
            return clickRow(run, dialog, config::kRows);
        case Page:
            return clickIn(run, dialog, run.luck().oneOf(config::kPageButtons).place);
        case Drive:
            // The list of drives is the dialog's first combo box.
            dialog->findChild<QComboBox*>()->setFocus();
            return run.hands().type(dialog, run.luck().chance(50) ? Qt::Key_Down : Qt::Key_Up);
        case Ok:
            run.cards().confirmed();
            return clickIn(run, dialog, config::kOk);
        default:
            return clickIn(run, dialog, run.luck().chance(50) ? config::kCancel : config::kClose);
    }
}

void usePage(Run& run, SettingsPage* page) {
    const auto number = page->metaObject()->className()[qstrlen(page->metaObject()->className()) - 1] - '0';
    const pages::PageLayout* layout =
        number >= 0 && number < 7 ? &pages::kPages[static_cast<std::size_t>(number)] : nullptr;
    if (!layout) // the warning
        return run.hands().type(page, run.luck().chance(50) ? Qt::Key_Return : Qt::Key_Escape);
    if (run.luck().chance(40))
        return clickRow(run, page, layout->rows);
    clickIn(run, page, run.luck().chance(80) ? layout->ok : layout->cancel);
}

void useDialog(Run& run) {
    QWidget* front = run.front();
    if (auto* settings = qobject_cast<ConfigWindow*>(front))
        useConfigWindow(run, settings);
    else if (auto* page = qobject_cast<SettingsPage*>(front))
        usePage(run, page);
    else if (auto* dialog = qobject_cast<QDialog*>(front))
        run.luck().chance(60) ? dialog->accept() : dialog->reject();
}

// As the window manager does.
void closeDialog(Run& run) {
    if (run.front() != run.world().window.get())
        run.front()->close();
}

// --- The world ---

void changeReader(Run& run) {
    constexpr Reader kReaders[] = {Reader::Healthy, Reader::Slow, Reader::Slow, Reader::Slow, Reader::Dead};
    run.world().reader = run.luck().oneOf(kReaders);
}

void moveCard(Run& run) {
    CardSlot& card = run.luck().oneOf(run.world().cards);
    run.world().setInserted(card, !card.inserted);
}

void loseClip(Run& run) {
    run.world().loseClip();
}

void changeMedia(Run& run) {
    run.world().setMediaTrouble(run.luck().chance(50));
}

void mapAnswers(Run& run) {
    FakeWebPages& pages = run.world().pages;
    if (!pages.view || !pages.events.loadFinished)
        return;
    if (run.luck().chance(20))
        pages.events.renderProcessGone();
    for (int i = run.luck().below(3); i > 0 && pages.view; --i)
        pages.events.loadFinished(run.luck().chance(80));
}

void nothing(Run&) {}

using enum Theme;

constexpr Action kActions[] = {
    {"play", 10, Transport, click<ButtonId::Play>},
    {"pause", 10, Transport, click<ButtonId::Pause>},
    {"stop", 4, Transport, click<ButtonId::Stop>},
    {"previous file", 3, Transport, click<ButtonId::PreviousFile>, true},
    {"next file", 5, Transport, click<ButtonId::NextFile>, true},
    {"step back", 6, Transport, click<ButtonId::FrameBack>},
    {"step forward", 6, Transport, click<ButtonId::FrameForward>},
    {"zoom in", 8, Picture, click<ButtonId::ZoomIn>},
    {"zoom out", 2, Picture, click<ButtonId::ZoomOut>},
    {"original size", 2, Any, click<ButtonId::OriginalSize>},
    {"pan", 6, Picture, click<ButtonId::Pan>},
    {"sound", 2, Any, click<ButtonId::Volume>},
    {"snapshot", 3, Any, click<ButtonId::Snapshot>},
    {"print", 1, Any, click<ButtonId::Print>},
    {"open file", 4, Folder, click<ButtonId::OpenFile>},
    {"open folder", 4, Folder, click<ButtonId::OpenFolder>, true},
    {"open folder by key", 2, Folder, openFolderByKey, true},
    {"settings", 8, Card, click<ButtonId::Setting>},
    {"click an entry", 6, Folder, clickEntry, true},
    {"drag the strip", 6, Transport, dragStrip},
    {"drag slowly", 8, Picture, dragSlowly},
    {"move the pointer", 5, Picture, movePointer},
    {"slide off a button", 2, Picture, slideOffButton},
    {"right click", 3, Any, rightClickPicture},
    {"type", 14, Any, typeKey, true},
    {"incident", 12, Folder, useIncident, true},
    {"drop", 8, Folder, drop, true},
    {"activate or minimise", 3, Folder, changeActivity},
    {"answer the dialog", 40, Card, useDialog, true},
    {"close the dialog", 3, Card, closeDialog},
    {"reader changes", 6, Card, changeReader},
    {"card in or out", 4, Card, moveCard},
    {"clip lost", 1, Folder, loseClip},
    {"media trouble", 1, Any, changeMedia},
    {"map answers", 5, Any, mapAnswers},
    {"wait", 14, Any, nothing},
};

} // namespace

std::span<const Action> actions() {
    return kActions;
}

} // namespace ql240::moments
