// Opening the settings dialog with a card of 26 byte files, against an empty dialog of its size. The card is
// served by a drives service on a private bus. Prints "figure<TAB>value<TAB>limit" lines; values without a
// limit help to interpret the others.
#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

#include "base/language.h"
#include "platform/host.h"
#include "platform/linux/udisks_drives.h"
#include "settings/config_window.h"
#include "settings/device_settings.h"
#include "support/made_card.h"
#include "support/private_bus.h"
#include "widgets/fonts.h"

namespace {

using namespace ql240;

constexpr int kDialogRounds = 31;

double median(std::vector<double> values) {
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void print(const char* figure, double value, const char* limit = "") {
    std::printf("%s\t%.2f\t%s\n", figure, value, limit);
}

// Ends the wait at a dialog's first paint.
class PaintWatch : public QObject {
public:
    bool painted = false;
    bool eventFilter(QObject*, QEvent* event) override {
        painted |= event->type() == QEvent::Paint;
        return false;
    }
};

double openingMilliseconds(const std::function<std::unique_ptr<QDialog>()>& make) {
    PaintWatch watch;
    QElapsedTimer timer;
    timer.start();
    const auto dialog = make();
    dialog->installEventFilter(&watch);
    dialog->show();
    while (!watch.painted)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const double elapsed = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    dialog->hide();
    QCoreApplication::processEvents();
    return elapsed;
}

std::unique_ptr<QDialog> emptyDialog() {
    auto dialog = std::make_unique<QDialog>(nullptr, Qt::FramelessWindowHint);
    dialog->setFixedSize(554, 730);
    return dialog;
}

void benchOpening() {
    const auto configWindow = [] { return std::make_unique<ConfigWindow>(); };
    openingMilliseconds(emptyDialog);
    print("settings dialog, first opening (ms)", openingMilliseconds(configWindow));
    std::vector<double> ours, empty;
    for (int i = 0; i < kDialogRounds; ++i) {
        ours.push_back(openingMilliseconds(configWindow));
        empty.push_back(openingMilliseconds(emptyDialog));
    }
    print("settings dialog, opening (ms)", median(ours));
    print("empty dialog, opening (ms)", median(empty));
    print("settings dialog / empty dialog", median(ours) / median(empty), "3");
}

} // namespace

int main(int argc, char** argv) {
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    qputenv("XDG_RUNTIME_DIR", home.path().toUtf8());
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(QStringLiteral("Fusion"));
    installFontSubstitutes();
    setCurrentLanguage(QStringLiteral("en"));

    const MadeCard card;
    card.put(QStringLiteral("update/version.txt"), "QL240 1.02 1.00 12V");
    (void)DeviceSettings(card.path(QStringLiteral("setting"))).save();
    PrivateBus bus;
    if (!bus.start() ||
        !bus.startDrives({QStringLiteral("--drive"), QStringLiteral("mount=") + card.drive()}))
        return 1;
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().toUtf8());
    UDisksDrives drives;
    host().drives = &drives;
    benchOpening();
    return 0;
}
