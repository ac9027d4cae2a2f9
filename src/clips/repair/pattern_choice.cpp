#include "clips/repair/pattern_choice.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <limits>
#include <tuple>

#include "base/regular_file.h"
#include "clips/clip_folder.h"
#include "clips/clip_name.h"
#include "clips/repair/mp4_repair.h"
#include "platform/limits.h"

namespace ql240::repair {

using containers::Mp4Sample;
using containers::Mp4SampleCursor;

namespace {

constexpr int kTried = 500;               // samples
constexpr int kEnough = 10;               // pictures before something unrecognizable
constexpr std::int64_t kMostSkipped = 64; // bytes of an invalid header
constexpr double kMoreApart = 0.25;       // seconds
constexpr double kSoundMoreApart = 0.5;
constexpr qsizetype kMostPatterns = 32;

QByteArray typeOf(FileWindow& window) {
    OuterBoxes boxes(window);
    const std::optional<OuterBoxes::Part> first = boxes.next();
    if (!first || first->type != fourCc("ftyp") || first->body.size > 1024)
        return {};
    const Bytes bytes = window.at(first->body.start, static_cast<std::size_t>(first->body.size));
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

bool isSameType(QFileDevice& damaged, QFileDevice& healthy) {
    FileWindow ofDamaged(damaged);
    FileWindow ofHealthy(healthy);
    const QByteArray type = typeOf(ofDamaged);
    return type.isEmpty() || type == typeOf(ofHealthy);
}

// Runs of uncompressed sound are longer than the cursor's.
bool isNextInTables(Mp4SampleCursor& samples, const FoundMedia& found) {
    std::int64_t at = found.offset;
    while (at < found.offset + found.size) {
        const std::optional<Mp4Sample> sample = samples.next();
        if (!sample || sample->offset != at)
            return false;
        at += sample->size;
    }
    return at == found.offset + found.size;
}

// Counts what a walk finds in each track of pictures or sound.
class MediaCount {
public:
    explicit MediaCount(const Mp4Pattern& pattern) : m_pattern(pattern), m_counts(pattern.tracks.size()) {}

    void take(const FoundMedia& found) {
        if (found.track == FoundMedia::kGpsBlock)
            return;
        m_counts[found.track] += found.count;
        if (!m_pattern.tracks[found.track].isPicture())
            return;
        ++m_all;
        m_unexpected += found.isExpected ? 0 : 1;
        m_apart.ofPictures = std::max(m_apart.ofPictures, secondsApart(false));
        m_apart.ofAll = std::max(m_apart.ofAll, secondsApart(true));
    }
    int all() const { return m_all; } // pictures
    int unexpected() const { return m_unexpected; }
    const SecondsApart& mostApart() const { return m_apart; }

private:
    double secondsApart(bool withSound) const {
        double least = std::numeric_limits<double>::max();
        double most = 0;
        for (std::size_t i = 0; i < m_counts.size(); ++i) {
            const TrackPattern& track = m_pattern.tracks[i];
            if (!track.isPicture() && !(withSound && track.isSound()))
                continue;
            const auto ticks = static_cast<double>(track.durations.front().ticksOf(m_counts[i]));
            least = std::min(least, ticks / track.track.layout.timescale);
            most = std::max(most, ticks / track.track.layout.timescale);
        }
        return most - least;
    }

    const Mp4Pattern& m_pattern;
    std::vector<std::int64_t> m_counts;
    int m_all = 0;
    int m_unexpected = 0;
    SecondsApart m_apart;
};

// Whether a walk finds the samples of the pattern's own clip where its index lists them. Otherwise it can't
// be trusted with others.
bool findsItself(QFileDevice& file, Mp4Pattern& pattern) {
    ByteSource source(file, {std::numeric_limits<std::int64_t>::max(), limits::kRecordReads});
    std::vector<std::unique_ptr<Mp4SampleCursor>> cursors;
    for (const TrackPattern& track : pattern.tracks)
        cursors.push_back(std::make_unique<Mp4SampleCursor>(source, track.track));
    FileWindow window(file);
    MediaWalk walk(window, pattern, pattern.media);
    MediaCount pictures(pattern);
    std::optional<FoundMedia> found = walk.next();
    for (int i = 0; i < kTried && found; ++i, found = walk.next()) {
        if (found->track != FoundMedia::kGpsBlock && !isNextInTables(*cursors[found->track], *found))
            return false;
        pictures.take(*found);
    }
    pattern.hasPadding = walk.skippedBytes() > 0;
    pattern.apart = pictures.mostApart();
    return found || walk.end() == MediaWalk::End::Area || walk.end() == MediaWalk::End::Box;
}

// Missing or unrecognized samples show that the pattern is of another kind, as does a rate of pictures that
// leads away from the sound.
bool isFoundIn(QFileDevice& damaged, const Mp4Pattern& pattern) {
    FileWindow window(damaged);
    const std::optional<ByteRange> media = mp4Media(window);
    if (!media)
        return false;
    MediaWalk walk(window, pattern, *media);
    MediaCount pictures(pattern);
    std::optional<FoundMedia> found = walk.next();
    for (int i = 0; i < kTried && found; ++i, found = walk.next())
        pictures.take(*found);
    const bool skipsWhatIsThere = walk.skippedBytes() > kMostSkipped && !pattern.hasPadding;
    const SecondsApart& apart = pictures.mostApart();
    const bool lacksVideo = apart.ofPictures > pattern.apart.ofPictures + kMoreApart;
    const bool hasOtherRate = apart.ofAll > pattern.apart.ofAll + kSoundMoreApart;
    const bool isOther =
        pictures.unexpected() * kEnough > pictures.all() || skipsWhatIsThere || lacksVideo || hasOtherRate;
    const bool isFollowed = walk.end() != MediaWalk::End::Unknown || pictures.all() >= kEnough;
    return pictures.all() > 0 && !isOther && isFollowed;
}

// Around a crash, the nearest clips may be damaged as well.
bool isHealthy(const QString& clip) {
    QFile file(clip);
    QString problem;
    if (!openRegularFile(file, problem))
        return false;
    FileWindow window(file);
    return hasMp4Index(window);
}

QString shapeOf(const QString& fileName) {
    QString shape = fileName.toUpper();
    shape.removeIf([](QChar c) { return c.isDigit(); });
    return shape;
}

QDateTime startOf(const QFileInfo& file) {
    const QDateTime byName = clipStart(file.fileName());
    return byName.isValid() ? byName : file.lastModified();
}

} // namespace

std::unique_ptr<Mp4Pattern> fittingPattern(const QString& healthy, QFileDevice& damaged,
                                           std::uint64_t& samplesLeft, QString& problem) {
    QFile file(healthy);
    if (!openRegularFile(file, problem))
        return nullptr;
    if (!isSameType(damaged, file)) {
        problem = QStringLiteral("it is of another kind");
        return nullptr;
    }
    std::optional<Mp4Pattern> pattern = readMp4Pattern(file, samplesLeft, problem);
    if (!pattern)
        return nullptr;
    if (!findsItself(file, *pattern))
        problem = QStringLiteral("its samples can't be distinguished without an index");
    else if (!isFoundIn(damaged, *pattern))
        problem = QStringLiteral("it is of another kind");
    const QDateTime start = clipStart(QFileInfo(healthy).fileName());
    const QDateTime damagedStart = clipStart(QFileInfo(damaged.fileName()).fileName());
    if (start.isValid() && damagedStart.isValid())
        pattern->laterS = start.secsTo(damagedStart);
    return problem.isEmpty() ? std::make_unique<Mp4Pattern>(std::move(*pattern)) : nullptr;
}

QStringList patternsFor(const QString& clip) {
    const QFileInfo wanted(clip);
    const QString shape = shapeOf(wanted.fileName());
    const QDateTime start = startOf(wanted);
    std::vector<std::tuple<bool, qint64, QString>> others; // another shape, distance, path
    for (const QFileInfo& file : listFolder(wanted.path()).recordings) {
        const QString name = file.fileName();
        if (name != wanted.fileName() && name.endsWith(QLatin1String(".mp4"), Qt::CaseInsensitive))
            others.emplace_back(shapeOf(name) != shape, std::abs(startOf(file).msecsTo(start)),
                                file.filePath());
    }
    std::sort(others.begin(), others.end());
    QStringList paths;
    for (std::size_t i = 0; i < others.size() && paths.size() < kMostPatterns; ++i) {
        const QString& path = std::get<QString>(others[i]);
        if (isHealthy(path))
            paths << path;
    }
    return paths;
}

QString wantedKind(QFileDevice& damaged) {
    FileWindow window(damaged);
    const QByteArray type = typeOf(window).left(4);
    const std::optional<ByteRange> media = mp4Media(window);
    const Bytes head = media ? window.at(media->start, 6) : Bytes();
    QString kind = QStringLiteral("a whole MP4 clip of the same camera and settings");
    if (head.size() == 6 && head[0] == 0) {
        const bool isH264 = (head[4] & 0x80) == 0 &&
                            ((head[4] & 0x1F) == 5 || ((head[4] & 0x1F) >= 6 && (head[4] & 0x1F) <= 9));
        const int h265Type = head[4] >> 1;
        const bool isH265 = (head[4] & 0x81) == 0 && head[5] == 1 && (h265Type >= 32 && h265Type <= 39);
        kind += isH265 ? QStringLiteral(", H.265") : isH264 ? QStringLiteral(", H.264") : QString();
    } else if (head.size() == 6 && head[0] == 0xFF && head[1] == 0xD8) {
        kind += QStringLiteral(", Motion-JPEG");
    }
    return type.size() == 4 ? kind + QStringLiteral(", type \"%1\"").arg(QString::fromLatin1(type)) : kind;
}

} // namespace ql240::repair
