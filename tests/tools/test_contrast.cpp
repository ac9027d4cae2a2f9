// Texts and glyphs of the windows against what is under them.
#include <QPainter>
#include <QtTest>

#include "sensors/widget_progress.h"
#include "support/contrast_probe.h"
#include "widgets/fonts.h"

using namespace ql240;
using ql240::test::contrast;
using ql240::test::ContrastProbe;

namespace {

constexpr double kText = 4.5;

QImage picture(const QString& name) {
    return QImage(QStringLiteral(":/gfx_r/2012/%1.png").arg(name));
}

// The texts of a widget at `at` over a ground that come too close to it.
QStringList faintTexts(const QImage& ground, QWidget& widget, QPoint at, qsizetype& count) {
    ContrastProbe probe(ground);
    widget.render(&probe, at, QRegion(), QWidget::DrawChildren);
    QStringList faint;
    for (const auto& text : probe.texts()) {
        if (text.contrast < kText) {
            faint << QStringLiteral("\"%1\": %2").arg(text.text).arg(text.contrast, 0, 'f', 2);
        }
    }
    count = probe.texts().size();
    if (qEnvironmentVariableIsSet("QL240_TEST_PICTURES")) {
        probe.image().save(QStringLiteral("%1/%2.png")
                               .arg(qEnvironmentVariable("QL240_TEST_PICTURES"), QTest::currentDataTag()));
    }
    return faint;
}

} // namespace

class TestContrast : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { installFontSubstitutes(); }
    void probeMeasuresTheGround();
    void dashboardTexts_data();
    void dashboardTexts();
    void glyphs_data();
    void glyphs();
    void keysToWriteOn_data();
    void keysToWriteOn();
};

// The probe itself: black on white is 21 : 1, and a dark corner under the letters counts.
void TestContrast::probeMeasuresTheGround() {
    QImage ground(60, 20, QImage::Format_RGB32);
    ground.fill(Qt::white);
    for (const bool dark : {false, true}) {
        if (dark) {
            ground.setPixel(12, 12, qRgb(20, 20, 20));
        }
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

void TestContrast::dashboardTexts_data() {
    QTest::addColumn<bool>("active");
    QTest::newRow("dashboard at rest") << false;
    QTest::newRow("dashboard running") << true;
}

void TestContrast::dashboardTexts() {
    QFETCH(bool, active);
    WidgetProgressA panel;
    panel.resize(642, 250);
    panel.setActive(active);
    panel.setSpeed(127);
    panel.setRange(0, 600000);
    panel.setValue(61500);
    qsizetype count = 0;
    QCOMPARE(faintTexts(picture(QStringLiteral("main_viewer_bg")), panel, QPoint(23, 394), count),
             QStringList());
    QVERIFY(count >= 6); // time, model, date and three accelerations
}

void TestContrast::glyphs_data() {
    QTest::addColumn<QString>("name");
    for (const char* stem : {"play_", "pause", "stop_", "pre_file_", "rw_", "fw_", "next_file_", "zoom_in_",
                             "zoom_out_", "original_screen_", "pan_", "volume", "setting_", "snapshot_",
                             "print_", "close_", "exit_", "file_open_", "folder_open_"}) {
        for (int look = 1; look <= 3; ++look) {
            QTest::addRow("%s%d", stem, look) << QStringLiteral("%1%2").arg(QLatin1String(stem)).arg(look);
        }
    }
}

// The solid pixels of a glyph against the plate, which shows beside it in the picture's corner.
void TestContrast::glyphs() {
    QFETCH(QString, name);
    QImage image = picture(name).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    painter.fillRect(image.rect(), QColor(17, 17, 16));
    painter.end();
    const int inset = image.height() > 30 ? 5 : 2;
    const QRgb plate = image.pixel(inset, image.height() / 2);
    int solid = 0;
    for (int y = inset; y < image.height() - inset; ++y) {
        for (int x = inset; x < image.width() - inset; ++x) {
            solid += contrast(image.pixel(x, y), plate) >= kText ? 1 : 0;
        }
    }
    QVERIFY2(solid >= 12, qPrintable(QString::number(solid)));
}

void TestContrast::keysToWriteOn_data() {
    QTest::addColumn<QString>("name");
    for (const char* stem : {"OK", "cancel", "apply", "gmt_", "get_time_", "battery_time_", "video_edit_",
                             "shock_", "time_select"}) {
        for (int look = 1; look <= 3; ++look) {
            QTest::addRow("%s%d", stem, look) << QStringLiteral("%1%2").arg(QLatin1String(stem)).arg(look);
        }
    }
    QTest::newRow("dis_saver") << "dis_saver";
}

// The program writes (200, 200, 200) anywhere inside the outline.
void TestContrast::keysToWriteOn() {
    QFETCH(QString, name);
    const QImage image = picture(name);
    for (int y = 3; y < image.height() - 3; ++y) {
        for (int x = 6; x < image.width() - 6; ++x) {
            QVERIFY(contrast(image.pixel(x, y), qRgb(200, 200, 200)) >= kText);
        }
    }
}

QTEST_MAIN(TestContrast)
#include "test_contrast.moc"
