// Listing a folder of 10,000 clips, against reading the directory with file sizes in the same run, and the
// time until the window's list shows it. Prints "figure<TAB>value<TAB>limit" lines.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <numeric>
#include <random>
#include <vector>

#include "clips/clip.h"
#include "clips/clip_folder.h"
#include "mainwindow/my_list_widget.h"

namespace {

using namespace ql240;

constexpr int kClips = 10000;
constexpr int kRuns = 15;

// In an order unrelated to the names, as on a card that has been overwritten many times.
bool makeClips(const QTemporaryDir& folder) {
    std::vector<int> numbers(kClips);
    std::iota(numbers.begin(), numbers.end(), 0);
    std::shuffle(numbers.begin(), numbers.end(), std::mt19937(240));
    for (const int number : numbers) {
        const QString name = QStringLiteral("REC_2013_04_%1_12_%2_%3.mp4")
                                 .arg(number / 3600 + 1, 2, 10, QLatin1Char('0'))
                                 .arg(number / 60 % 60, 2, 10, QLatin1Char('0'))
                                 .arg(number % 60, 2, 10, QLatin1Char('0'));
        QFile file(folder.filePath(name));
        if (!file.open(QFile::WriteOnly) || file.write("x") != 1)
            return false;
    }
    return true;
}

void readDirectory(const QByteArray& path) {
    DIR* directory = opendir(path.constData());
    off_t bytes = 0;
    while (const dirent* entry = readdir(directory)) {
        struct stat status;
        if (fstatat(dirfd(directory), entry->d_name, &status, 0) == 0)
            bytes += status.st_size;
    }
    closedir(directory);
    if (bytes < kClips)
        std::abort();
}

double medianMs(const std::function<void()>& work) {
    std::vector<double> times;
    for (int run = 0; run < kRuns; ++run) {
        QElapsedTimer clock;
        clock.start();
        work();
        times.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
    }
    std::nth_element(times.begin(), times.begin() + kRuns / 2, times.end());
    return times[kRuns / 2];
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    if (!makeClips(folder))
        return 1;
    const double directory = medianMs([&] { readDirectory(QFile::encodeName(folder.path())); });
    const double scan = medianMs([&] {
        if (ClipFolder(folder.path()).count() != kClips)
            std::abort();
        releaseRetiredClips(nullptr);
    });
    std::printf("scan of 10,000 clips / directory with sizes\t%.2f\t4\n", scan / directory);

    QWidget window;
    window.resize(1024, 645);
    MyListWidget list(&window);
    list.setGeometry(680, 259, 320, 370);
    window.show();
    const double shown = medianMs([&] {
        list.clear();
        const ClipFolder clips(folder.path());
        for (const Clip* clip : clips.values())
            list.appendClip(clip);
        list.setCurrentRow(0);
        list.grab();
    });
    std::printf("list of 10,000 clips shown, ms\t%.0f\t1000\n", shown);
    return 0;
}
