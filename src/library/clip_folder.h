// The recordings of one folder, in file-name order, as they were when it was scanned. Sub-folders are not
// entered. Interface thread only.
//
// The clip records outlive their folder, because a player may still hold one: a released folder hands them to
// a list that releaseRetiredClips() clears.
#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <memory>
#include <vector>

namespace ql240 {

class Clip;

// Whether a file name (without folder) ends in ".mp4" or ".avi", case ignored.
bool namedLikeRecording(const QString& fileName);

// Whether the folder has any entry named like a recording ("*.mp4", "*.avi", case ignored), whatever its
// size.
bool holdsRecordings(const QString& path);

class ClipFolder {
public:
    // Scans: every file named like a recording of more than 0 bytes. A folder that cannot be read gives no
    // clips.
    explicit ClipFolder(const QString& path);
    ~ClipFolder();
    ClipFolder(const ClipFolder&) = delete;
    ClipFolder& operator=(const ClipFolder&) = delete;

    qsizetype count() const { return m_clips.size(); }
    QList<Clip*> values() const { return m_clips.values(); }
    // As given to the constructor.
    const QString& path() const { return m_path; }

private:
    void scan();

    QString m_path;
    std::vector<std::unique_ptr<Clip>> m_records;
    // Code unit by code unit, case-sensitive.
    QMap<QString, Clip*> m_clips;
};

// Frees the records of folders already released, except `held`, the one a player still has open.
void releaseRetiredClips(const Clip* held);

} // namespace ql240
