// Texts and glyphs of the windows against what is under them.
#include <QPainter>
#include <QtTest>

#include "app/style.h"
#include "mainwindow/viewer.h"
#include "settings/window_gmt.h"
#include "settings/window_pages.h"
#include "support/contrast_probe.h"
#include "support/settings_fixture.h"

using namespace ql240;
using ql240::test::contrast;
using ql240::test::ContrastProbe;

namespace {

constexpr double kText = 4.5;
constexpr double kDisabled = 3.0;
// The date fields' style sheets fix this text colour and a light ground for it: grey dates are faint by
// design.
constexpr QColor kGreyedDates(172, 173, 177);

QImage picture(const QString& name) {
    return QImage(QStringLiteral(":/gfx_r/2012/%1.png").arg(name));
}

// The texts of a widget over a ground that come too close to it.
QStringList faintTexts(const QImage& ground, QWidget& widget, qsizetype& count) {
    ContrastProbe probe(ground);
    widget.render(&probe, {}, QRegion(), QWidget::DrawChildren);
    QStringList faint;
    for (const auto& text : probe.texts())
        if (text.contrast < kText && text.color != kGreyedDates)
            faint << QStringLiteral("\"%1\": %2").arg(text.text).arg(text.contrast, 0, 'f', 2);
    count = probe.texts().size();
    return faint;
}

// A row of each look of each control.
void addLooks(std::initializer_list<const char*> stems) {
    QTest::addColumn<QString>("name");
    for (const char* stem : stems) {
        for (int look = 1; look <= 3; ++look)
            QTest::addRow("%s%d", stem, look) << QStringLiteral("%1%2").arg(QLatin1String(stem)).arg(look);
    }
}

} // namespace

class TestContrast : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { applyStyle(); }

    // The probe itself: black on white is 21 : 1, and a dark corner under the letters counts.
    void probeMeasuresTheGround() {
        QImage ground(60, 20, QImage::Format_RGB32);
        ground.fill(Qt::white);
        for (const bool dark : {false, true}) {
            if (dark)
                ground.setPixel(12, 12, qRgb(20, 20, 20));
            ContrastProbe probe(ground);
            QPainter painter(&probe);
            painter.setPen(Qt::black);
            painter.drawText(QPointF(5, 15), QStringLiteral("MMM"));
            painter.end();
            QCOMPARE(probe.texts().size(), 1);
            QCOMPARE(probe.texts()[0].text, QStringLiteral("MMM"));
            QVERIFY(dark ? probe.texts()[0].contrast < 1.3 : probe.texts()[0].contrast == 21.0);
            QVERIFY(probe.image() != ground.convertToFormat(probe.image().format()));
        }
    }

    // List with its current row, folder and dashboard, at rest and while a clip is open.
    void mainWindowTexts() {
        Viewer viewer;
        for (const char* name : {"REC_2013_04_05_12_30_00.mp4", "REC_2013_04_05_12_31_00.mp4"})
            viewer.addClip(QStringLiteral("clips/") + QString::fromLatin1(name));
        viewer.folderDialogs.choice = viewer.path(QStringLiteral("clips"));
        viewer.show();
        QImage ground(viewer.window->size(), QImage::Format_RGB32);
        ground.fill(QColor(9, 9, 9));
        qsizetype count = 0;
        QCOMPARE(faintTexts(ground, *viewer.window, count), QStringList());
        viewer.click(layout::ButtonId::OpenFolder);
        QTRY_VERIFY(viewer.player()->clip());
        viewer.click(layout::ButtonId::Pause);
        QCOMPARE(faintTexts(ground, *viewer.window, count), QStringList());
        QVERIFY(count >= 9); // two clips, the folder, six of the dashboard
    }

    void settingsTexts_data() {
        QTest::addColumn<QString>("language");
        for (const char* language : {"kr", "en", "ru"})
            QTest::newRow(language) << QString::fromLatin1(language);
    }
    void settingsTexts() {
        QFETCH(QString, language);
        SettingsFixture fixture;
        fixture.camera();
        setCurrentLanguage(language);
        ConfigWindow dialog;
        QVERIFY(waitForCard(dialog));
        WindowBtn0 picture0(nullptr);
        WindowBtn1 overwrite(nullptr);
        WindowBtn2 shock(nullptr);
        WindowBtn3 timer(nullptr);
        WindowBtn4 volts12(nullptr);
        WindowBtn5 volts24(nullptr);
        WindowBtn6 led(nullptr);
        WindowBtn7 warning(nullptr);
        WindowGMT zones(nullptr);
        const QList<QWidget*> windows{&dialog,  &picture0, &overwrite, &shock,   &timer,
                                      &volts12, &volts24,  &led,       &warning, &zones};
        for (QWidget* window : windows) {
            window->ensurePolished();
            QImage ground(window->size(), QImage::Format_RGB32);
            ground.fill(QColor(9, 9, 9));
            qsizetype count = 0;
            const QStringList faint = faintTexts(ground, *window, count);
            QVERIFY2(faint.isEmpty(), qPrintable(faint.join(QLatin1Char('\n'))));
            QVERIFY(count >= 3); // title, OK, Cancel
        }
    }

    void marks_data() {
        QTest::addColumn<double>("least");
        QTest::newRow("check") << kText;
        QTest::newRow("check1") << kText;
        QTest::newRow("discheck2") << kDisabled;
        QTest::newRow("dst_check") << kDisabled;
    }
    // What a mark says, a dot, a tick or a dash, against what is just around it: in each there is such a
    // pair.
    void marks() {
        QFETCH(double, least);
        const QImage mark = picture(QString::fromLatin1(QTest::currentDataTag()));
        double best = 1;
        for (int y = 4; y < mark.height() - 4; ++y)
            for (int x = 3; x < mark.width() - 3; ++x)
                best = qMax(best, contrast(mark.pixel(x, y), mark.pixel(x, 4)));
        QVERIFY2(best >= least, qPrintable(QString::number(best)));
    }

    void glyphs_data() {
        addLooks({"play_", "pause", "stop_", "pre_file_", "rw_", "fw_", "next_file_", "zoom_in_", "zoom_out_",
                  "original_screen_", "pan_", "volume", "setting_", "snapshot_", "print_", "close_", "exit_",
                  "file_open_", "folder_open_"});
    }
    // The solid pixels of a glyph against the plate, which shows beside it in the picture's corner.
    void glyphs() {
        QFETCH(QString, name);
        QImage image = picture(name).convertToFormat(QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
        painter.fillRect(image.rect(), QColor(17, 17, 16));
        painter.end();
        const int inset = image.height() > 30 ? 5 : 2;
        const QRgb plate = image.pixel(inset, image.height() / 2);
        int solid = 0;
        for (int y = inset; y < image.height() - inset; ++y)
            for (int x = inset; x < image.width() - inset; ++x)
                solid += contrast(image.pixel(x, y), plate) >= kText ? 1 : 0;
        QVERIFY2(solid >= 12, qPrintable(QString::number(solid)));
    }

    void keysToWriteOn_data() {
        addLooks({"OK", "cancel", "apply", "gmt_", "get_time_", "battery_time_", "video_edit_", "shock_",
                  "time_select"});
        QTest::newRow("dis_saver") << "dis_saver";
    }
    // The program writes (200, 200, 200) anywhere inside the outline.
    void keysToWriteOn() {
        QFETCH(QString, name);
        const QImage image = picture(name);
        for (int y = 6; y < image.height() - 6; ++y)
            for (int x = 6; x < image.width() - 6; ++x)
                QVERIFY(contrast(image.pixel(x, y), qRgb(200, 200, 200)) >= kText);
    }
};

QTEST_MAIN(TestContrast)
#include "test_contrast.moc"
