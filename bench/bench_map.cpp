// The cost of the map: moving ten times a second with and without street tiles, at rest, its memory, and how
// long its start blocks the interface thread. All processes together, as a share of one core. Prints
// "figure<TAB>value<TAB>limit" lines. The tile server is part of this program and of the figures.
#include <unistd.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "base/preferences.h"
#include "platform/host.h"
#include "platform/modules.h"
#include "platform/web_engine_setup.h"
#include "sensors/map_view.h"
#include "support/child_processes.h"
#include "support/tile_server.h"

namespace {

using namespace ql240;

constexpr int kSecondsEach = 20;
constexpr int kSettleMs = 3000;
constexpr double kMetresPerTick = 60.0 / 3.6 / 10;
constexpr double kMetresPerDegree = 111320.0;

QList<qint64> allProcesses() {
    return QList<qint64>{QCoreApplication::applicationPid()} + childProcesses();
}

QByteArray procFile(qint64 process, const char* name) {
    QFile file(QStringLiteral("/proc/%1/%2").arg(process).arg(QLatin1String(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

double cpuSeconds() {
    double ticks = 0;
    for (const qint64 process : allProcesses()) {
        const QByteArray stat = procFile(process, "stat");
        const QByteArrayList fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        ticks += fields.value(11).toDouble() + fields.value(12).toDouble();
    }
    return ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double memoryMegabytes() {
    double kilobytes = 0;
    for (const qint64 process : allProcesses()) {
        const QByteArray rollup = procFile(process, "smaps_rollup");
        const qsizetype at = rollup.indexOf("Pss:");
        kilobytes += rollup.mid(at + 4, rollup.indexOf("kB", at) - at - 4).trimmed().toDouble();
    }
    return kilobytes / 1024;
}

void runFor(int ms) {
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

// A drive at 60 km/h, with straight stretches and bends.
SensorTrack drive() {
    SensorTrack track;
    double latitude = 37.5665;
    double longitude = 126.978;
    double heading = 0.4;
    for (int i = 0; i < 10 * kSecondsEach + 1; ++i) {
        SensorSample sample;
        sample.timeMs = 100 * i;
        sample.latitude = latitude;
        sample.longitude = longitude;
        track.push_back(sample);
        heading += i / 60 % 2 == 0 ? 0.0 : 0.02;
        latitude += kMetresPerTick * std::cos(heading) / kMetresPerDegree;
        longitude += kMetresPerTick * std::sin(heading) / kMetresPerDegree / std::cos(latitude * M_PI / 180);
    }
    return track;
}

// The share of a core that all processes use while the map follows the track; with an empty track, at rest.
double shareWhileMoving(MapView& map, const SensorTrack& track) {
    map.setTrack(track);
    runFor(kSettleMs);
    std::size_t next = 0;
    QTimer ticks;
    QObject::connect(&ticks, &QTimer::timeout, &map, [&] {
        if (next < track.size())
            map.moveTo(track[next].latitude, track[next].longitude);
        ++next;
    });
    ticks.start(100);
    const double before = cpuSeconds();
    QElapsedTimer clock;
    clock.start();
    runFor(1000 * kSecondsEach);
    return 100 * (cpuSeconds() - before) / (static_cast<double>(clock.elapsed()) / 1000);
}

double longestPauseMs(MapView& map) {
    double longest = 0;
    QElapsedTimer last;
    QTimer beat;
    QObject::connect(&beat, &QTimer::timeout, &map, [&] {
        longest = std::max(longest, static_cast<double>(last.nsecsElapsed()) / 1e6);
        last.start();
    });
    last.start();
    beat.start(0);
    runFor(kSettleMs);
    return longest;
}

void print(const char* figure, double value, const char* limit) {
    std::printf("%s\t%.1f\t%s\n", figure, value, limit);
    std::fflush(stdout);
}

void storeTileUrl(const QString& address) {
    QFile file(localIniPath());
    if (file.open(QIODevice::WriteOnly))
        file.write("[map]\ntileurl=" + address.toUtf8() + '\n');
}

} // namespace

int main(int argc, char** argv) {
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path()));
    qputenv("XDG_CACHE_HOME", QFile::encodeName(home.path()));
    prepareWebEngine();
    QApplication application(argc, argv);
    MapModule module(moduleFolderOf(QCoreApplication::applicationDirPath()));
    module.network = true;
    host().webPages = &module;
    TileServer server(QColor(0xf2efe9));
    for (const bool streets : {true, false}) {
        storeTileUrl(streets ? server.address() : QString());
        QWidget window;
        window.resize(400, 300);
        MapView map(&window);
        map.setGeometry(40, 30, 320, 206);
        window.show();
        const double pause = longestPauseMs(map);
        if (streets) {
            print("map: longest pause of the interface thread at the engine's start, ms", pause, "-");
            print("map: at rest, % of a core", shareWhileMoving(map, {}), "-");
        }
        print(streets ? "map: ten moves a second on street tiles, % of a core"
                      : "map: ten moves a second without tiles, % of a core",
              shareWhileMoving(map, drive()), "8");
        print(streets ? "map: memory of all processes on street tiles, MB (PSS)"
                      : "map: memory of all processes without tiles, MB (PSS)",
              memoryMegabytes(), "-");
    }
    return server.requests.isEmpty() ? 1 : 0;
}
