#include "mainwindow/dropped.h"

#include <QDir>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>
#include <memory>

#include "base/background_jobs.h"
#include "clips/clip_folder.h"
#include "platform/limits.h"
#include "platform/waits.h"

namespace ql240 {
namespace {

std::optional<Dropped> firstOf(const QStringList& paths, bool (*isFolder)(const QString&)) {
    for (const QString& path : paths) {
        const QFileInfo file(path);
        if (isFolder(path))
            return Dropped{path, {}};
        if (namedLikeRecording(path))
            return Dropped{file.path(), file.fileName()};
    }
    return std::nullopt;
}

} // namespace

std::optional<Dropped> droppedOf(const QMimeData& data) {
    QStringList paths;
    for (const QUrl& url : data.urls().mid(0, limits::kDroppedUrls)) {
        if (url.isLocalFile())
            paths << QDir::cleanPath(url.toLocalFile());
    }
    const auto found = std::make_shared<std::optional<Dropped>>();
    BackgroundJobs jobs;
    jobs.start(
        [found, paths] {
            *found = firstOf(paths, [](const QString& path) { return QFileInfo(path).isDir(); });
        },
        [] {});
    return jobs.wait(waits::kDroppedPaths)
               ? *found
               : firstOf(paths, [](const QString& path) { return !namedLikeRecording(path); });
}

} // namespace ql240
