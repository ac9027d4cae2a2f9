// The main window with the real media pipeline and a fake host and user. Clips are short and numbered.
#pragma once

#include <QAbstractButton>
#include <QCursor>
#include <QDir>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include "clips/clip.h"
#include "mainwindow/main_window.h"
#include "mainwindow/my_list_widget.h"
#include "platform/host.h"
#include "platform/modules.h"
#include "playback/video_view.h"
#include "playback/widget_volume.h"
#include "sensors/map_view.h"
#include "sensors/widget_progress.h"
#include "support/fake_drives.h"
#include "support/fake_sensor_library.h"
#include "support/fake_wave_out.h"
#include "support/fake_web_pages.h"
#include "support/fake_window_dialogs.h"
#include "support/test_clips.h"

namespace ql240 {

inline constexpr int kWaitMs = 15000; // enough for a busy machine

struct Viewer {
    QTemporaryDir folder;
    FakeDrives drives;
    FakeFolderDialogs folderDialogs;
    FakeSensorLibrary sensors;
    FakeUrlOpener urls;
    FakeWebPages pages;
    FakeWaveOut volume;
    Answers answers;
    std::unique_ptr<MainWindow> window;

    Viewer() {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder.filePath(QStringLiteral("config"))));
        static MediaModule media(QStringLiteral(QL240_MODULES)); // created once per process
        Host& table = host();
        table.drives = &drives;
        table.folderDialogs = &folderDialogs;
        table.media = &media;
        table.makeSensorLibrary = [this] { return sensors.lend(); };
        table.urlOpener = &urls;
        table.webPages = &pages;
        table.waveOut = &volume;
    }
    ~Viewer() {
        window.reset();
        host() = {};
    }

    void show() {
        window = std::make_unique<MainWindow>(nullptr, Qt::FramelessWindowHint);
        window->setDialogs(std::make_unique<FakeWindowDialogs>(answers));
        window->move(50, 50);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    }

    // The window creates the map's page only after it was shown.
    void loadMap() {
        QTRY_COMPARE(pages.made, 1);
        pages.events.loadFinished(true);
    }

    QString path(const QString& name) const { return folder.filePath(name); }

    static TestClipSpec shortClip() { return shortClip(30); }
    static TestClipSpec shortClip(int frames) {
        TestClipSpec spec;
        spec.frames = frames;
        spec.size = QSize(320, 180);
        return spec;
    }

    // Links the clip made to `spec` into the folder.
    void addClip(const QString& name, const TestClipSpec& spec = shortClip()) const {
        const QString made = makeTestClip(spec);
        QVERIFY(!made.isEmpty());
        QVERIFY(QDir(folder.path()).mkpath(QFileInfo(name).path()));
        QVERIFY(QFile::link(made, path(name)));
    }

    // Waits longer than the window does, for a busy machine.
    void openFolder(const QString& wanted) const {
        window->openFolder(wanted);
        QTRY_VERIFY_WITH_TIMEOUT(!window->isReadingFolder(), kWaitMs);
    }
    void openCard() const { openFolder(path("card")); }
    // Opens the window and a card of such clips.
    void playCard(const QStringList& names, const TestClipSpec& spec = shortClip()) {
        for (const QString& name : names)
            addClip("card/" + name, spec);
        show();
        openCard();
    }

    template <typename Widget>
    Widget* child() const {
        return window->findChild<Widget*>();
    }
    MyListWidget* list() const { return child<MyListWidget>(); }
    QTimer* updateTimer() const { return window->findChild<QTimer*>(QStringLiteral("updateTimer")); }
    WidgetProgressA* panel() const { return child<WidgetProgressA>(); }
    // Created before the sub view.
    VideoView* mainView() const { return window->findChildren<VideoView*>().first(); }
    VideoView* subView() const { return window->findChildren<VideoView*>().last(); }
    Player* player() const { return mainView()->player(); }
    bool hasTrack() const { return !panel()->sensorTrack().empty(); }
    bool isAtStart() const { return player()->clip() && player()->positionMs() == 0; }

    // Clicks a button that is visible and enabled.
    void click(layout::ButtonId id) const {
        QAbstractButton* button = window->button(id);
        QVERIFY2(button->isVisible() && button->isEnabled(), qPrintable(button->accessibleName()));
        QTest::mouseClick(button, Qt::LeftButton);
        if (id == layout::ButtonId::OpenFolder) // a busy machine takes longer than the window waits
            QTRY_VERIFY_WITH_TIMEOUT(!window->isReadingFolder(), kWaitMs);
    }
    bool isShown(layout::ButtonId id) const { return window->button(id)->isVisible(); }

    // A click of the window system at a place in the window.
    void mouse(Qt::MouseButton button, QPoint place) const {
        QTest::mouseClick(window->windowHandle(), button, {}, place);
    }
    // Moves the pointer there, as a user does.
    void clickEntry(const QString& name) const {
        const auto found = list()->findItems(name, Qt::MatchExactly);
        QCOMPARE(found.size(), 1);
        list()->scrollToItem(found[0]);
        const QPoint place = list()->visualItemRect(found[0]).center();
        QCursor::setPos(list()->viewport()->mapToGlobal(place));
        mouse(Qt::LeftButton, list()->viewport()->mapTo(window.get(), place));
    }
    // The place on the dashboard's strip of a position in a clip.
    static QPoint onStrip(int ms, int durationMs) {
        const QRect panel = layout::kProgressPanel;
        const int last = panel.width() - 13; // the clip's very end lies one column outside the strip
        return panel.topLeft() + QPoint(std::min(2 + ms * (panel.width() - 14) / durationMs, last), 15);
    }
    void key(int key, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyClick(window->windowHandle(), static_cast<Qt::Key>(key), modifiers);
    }
};

} // namespace ql240
