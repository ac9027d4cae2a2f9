// The recordings of one folder in file-name order, as of when it was scanned; sub-folders are not scanned.
// Interface thread only, except for listFolder().
//
// Clip records outlive their folder, because the player may still hold one: the destructor moves them to a
// list that releaseRetiredClips() clears.
#pragma once

#include <QFileInfo>
#include <QList>
#include <QMap>
#include <QString>
#include <atomic>
#include <memory>
#include <vector>

#include "platform/limits.h"

namespace ql240 {

class Clip;

// Whether a file name (without folder) ends in ".mp4" or ".avi", case-insensitive.
bool namedLikeRecording(const QString& fileName);

// Whether the folder has an entry named like a recording, even an empty one.
bool holdsRecordings(const QString& path);

// What a folder contained when it was read.
struct FolderListing {
    QString path;
    QList<QFileInfo> recordings; // every non-empty file named like a recording, in no particular order
    bool hasNames = false;       // as holdsRecordings()
};

// Reads a folder; an unreadable one gives an empty listing. Blocks for as long as the file system does; any
// thread. Stops early and returns what it has when `cancelled` becomes true or `mostNames` have been read.
FolderListing listFolder(const QString& path, const std::atomic<bool>* cancelled = nullptr,
                         int mostNames = limits::kClipFolderNames);

class ClipFolder {
public:
    explicit ClipFolder(const FolderListing& listing);
    // Scans the folder.
    explicit ClipFolder(const QString& path) : ClipFolder(listFolder(path)) {}
    ~ClipFolder();
    ClipFolder(const ClipFolder&) = delete;
    ClipFolder& operator=(const ClipFolder&) = delete;

    qsizetype count() const { return m_clips.size(); }
    QList<Clip*> values() const { return m_clips.values(); }
    // As passed to the constructor.
    const QString& path() const { return m_path; }

private:
    QString m_path;
    std::vector<std::unique_ptr<Clip>> m_records;
    // Sorted by UTF-16 code unit, case-sensitive.
    QMap<QString, Clip*> m_clips;
};

// Frees the records of destroyed folders except `held`, which the player still has open.
void releaseRetiredClips(const Clip* held);

} // namespace ql240
