#include "clips/clip_folder.h"

#include <QDirIterator>
#include <algorithm>

#include "clips/clip.h"

namespace ql240 {
namespace {

std::vector<std::unique_ptr<Clip>>& retiredClips() {
    static std::vector<std::unique_ptr<Clip>> clips;
    return clips;
}

} // namespace

// Cheaper than QDir's name filters, which match two regular expressions for every entry.
bool namedLikeRecording(const QString& fileName) {
    return fileName.endsWith(QLatin1String(".mp4"), Qt::CaseInsensitive) ||
           fileName.endsWith(QLatin1String(".avi"), Qt::CaseInsensitive);
}

bool holdsRecordings(const QString& path) {
    QDirIterator entries(path, QDir::AllEntries | QDir::NoDotAndDotDot);
    for (int names = 0; names < limits::kClipFolderNames && entries.hasNext(); ++names) {
        entries.next();
        if (namedLikeRecording(entries.fileName()))
            return true;
    }
    return false;
}

FolderListing listFolder(const QString& path, const std::atomic<bool>* cancelled, int mostNames) {
    FolderListing listing{path, {}, false};
    if (path.isEmpty())
        return listing;
    QDirIterator entries(path, QDir::AllEntries | QDir::NoDotAndDotDot);
    for (int names = 0; names < mostNames && entries.hasNext() && !(cancelled && *cancelled); ++names) {
        entries.next();
        if (!namedLikeRecording(entries.fileName()))
            continue;
        listing.hasNames = true;
        const QFileInfo file = entries.fileInfo();
        // size() makes QFileInfo cache what the file system reports now.
        if (file.size() > 0 && file.isFile())
            listing.recordings << file;
    }
    return listing;
}

ClipFolder::ClipFolder(const FolderListing& listing) : m_path(listing.path) {
    for (const QFileInfo& file : listing.recordings) {
        m_records.push_back(std::make_unique<Clip>(file));
        m_clips.insert(file.fileName(), m_records.back().get());
    }
}

ClipFolder::~ClipFolder() {
    auto& retired = retiredClips();
    std::move(m_records.begin(), m_records.end(), std::back_inserter(retired));
}

void releaseRetiredClips(const Clip* held) {
    std::erase_if(retiredClips(), [held](const auto& clip) { return clip.get() != held; });
}

} // namespace ql240
