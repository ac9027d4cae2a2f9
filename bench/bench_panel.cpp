// Repainting the dashboard panel, against drawing one picture of its size. Prints
// "figure<TAB>value<TAB>limit" lines.
#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "platform/host.h"
#include "platform/sensor_library.h"
#include "sensors/widget_progress.h"
#include "widgets/fonts.h"

namespace {

using namespace ql240;

constexpr int kRounds = 41;
constexpr int kRepaints = 50;

// A clip with the maximum of 611 samples, all different.
class FullLibrary : public SensorLibrary {
public:
    Handle getInformationData(const char*) override { return 1; }
    int getCreateTime(Handle, char*) override { return 0; }
    int getLatLonSpeed(Handle, std::int64_t timeMs, std::int32_t* latitude, std::int32_t* longitude,
                       std::int8_t* latitudeLetter, std::int8_t* longitudeLetter,
                       std::int32_t* speed) override {
        *latitude = 37409571 + static_cast<int>(timeMs);
        *longitude = 127129253;
        *latitudeLetter = 'N';
        *longitudeLetter = 'E';
        *speed = 241;
        return 1;
    }
    int getAccXYZ(Handle, std::int64_t timeMs, std::int16_t* x, std::int16_t* y, std::int16_t* z) override {
        *x = static_cast<std::int16_t>(timeMs % 211);
        *y = static_cast<std::int16_t>(timeMs % 173);
        *z = static_cast<std::int16_t>(timeMs % 97);
        return 1;
    }
};

class Picture : public QWidget {
public:
    Picture() : m_pixmap(panel::kSize) {
        m_pixmap.fill(QColor(40, 80, 120, 200));
        resize(panel::kSize);
    }

protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).drawPixmap(0, 0, m_pixmap); }

private:
    QPixmap m_pixmap;
};

double repaintMicroseconds(QWidget& widget) {
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < kRepaints; ++i)
        widget.repaint();
    return static_cast<double>(timer.nsecsElapsed()) / 1000 / kRepaints;
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + kRounds / 2, values.end());
    return values[kRounds / 2];
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    installFontSubstitutes();
    host().makeSensorLibrary = [] { return std::make_shared<FullLibrary>(); };
    WidgetProgressA panelWidget;
    panelWidget.setClipPath(QStringLiteral("a.mp4"));
    panelWidget.loadSensorData(61000);
    while (panelWidget.sensorTrack().empty()) // on a busy machine it is read later
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    panelWidget.setActive(true);
    panelWidget.setRange(0, 61000);
    panelWidget.setValue(30000);
    panelWidget.setSpeed(panelWidget.sampleAt(30000).speed);
    Picture picture;
    panelWidget.show();
    picture.show();
    QApplication::processEvents();
    std::vector<double> ratios;
    std::vector<double> costs;
    for (int i = 0; i < kRounds; ++i) {
        const double one = repaintMicroseconds(picture);
        costs.push_back(repaintMicroseconds(panelWidget));
        ratios.push_back(costs.back() / one);
    }
    std::printf("panel repaint, times a picture of its size\t%.2f\t10\n", median(ratios));
    std::printf("panel repaint, microseconds\t%.0f\t\n", median(costs));
    return 0;
}
