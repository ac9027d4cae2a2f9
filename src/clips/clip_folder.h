// The recordings of one folder, in file-name order, as they were when it was scanned. Sub-folders are not
// entered. Interface thread only, but for the reading itself.
//
// The clip records outlive their folder, because a player may still hold one: a released folder hands them to
// a list that releaseRetiredClips() clears.
#pragma once

#include <QFileInfo>
#include <QList>
#include <QMap>
#include <QString>
#include <atomic>
#include <memory>
#include <vector>

namespace ql240 {

class Clip;

// Whether a file name (without folder) ends in ".mp4" or ".avi", case ignored.
bool namedLikeRecording(const QString& fileName);

// Whether the folder has any entry named like a recording ("*.mp4", "*.avi", case ignored), whatever its
// size.
bool holdsRecordings(const QString& path);

// What a folder held when it was looked at.
struct FolderListing {
    QString path;
    QList<QFileInfo> recordings; // every file named like a recording of more than 0 bytes, in no order
    bool hasNames = false;       // as holdsRecordings()
};

// Reads a folder; one that cannot be read has nothing in it. May block for as long as the file system does;
// any thread. Stops early, with what it has, when `cancelled` becomes true.
FolderListing listFolder(const QString& path, const std::atomic<bool>* cancelled = nullptr);

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
    // As given to the constructor.
    const QString& path() const { return m_path; }

private:
    QString m_path;
    std::vector<std::unique_ptr<Clip>> m_records;
    // Code unit by code unit, case-sensitive.
    QMap<QString, Clip*> m_clips;
};

// Frees the records of folders already released, except `held`, the one a player still has open.
void releaseRetiredClips(const Clip* held);

} // namespace ql240
