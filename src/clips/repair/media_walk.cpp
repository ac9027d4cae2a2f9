#include "clips/repair/media_walk.h"

#include <algorithm>

#include "platform/limits.h"

namespace ql240::repair {
namespace {

using Kind = TrackPattern::Kind;

// How doubtful it is that a sample begins where its first bytes match.
constexpr int kNone = 0; // a picture whose number follows the last one's
constexpr int kMarked = 5;
constexpr int kOutOfRhythm = 8; // the same, but a key frame too early or too late
constexpr int kRecords = 10;
constexpr int kHeadOnly = 12; // a picture cut off before its slices, or soon after
constexpr int kAac = 20;
constexpr int kUnexpected = 40;

// Recorders align to sectors and pages at most.
constexpr std::int64_t kMostPadding = 32768;
// For the whole file; each look may read a page.
constexpr std::int64_t kMostLooks = 1 << 20;

// Each Motion-JPEG picture is scanned a few times: for each video track, and after the preceding sample.
constexpr std::int64_t kScansPerByte = 16;
constexpr std::int64_t kMoreScans = INT64_C(64) << 20;

constexpr std::int64_t kBoxHead = 8;
constexpr std::int64_t kMostGpsBlock = INT64_C(1) << 20;

std::uint32_t typeAt(Bytes head) {
    return head.size() < 8 ? 0 : bigEndian32(head.subspan(4));
}

int doubtOf(const FoundPicture& picture, std::int64_t left) {
    constexpr std::int64_t kHead = 12; // with fewer bytes, the slice's header is incomplete
    if (picture.isExpected)
        return picture.isInRhythm ? kNone : kOutOfRhythm;
    return picture.ending == Ending::Cut && (picture.slices == 0 || left < kHead) ? kHeadOnly : kUnexpected;
}

} // namespace

MediaWalk::MediaWalk(FileWindow& window, const Mp4Pattern& pattern, ByteRange area)
    : m_window(window),
      m_pattern(pattern),
      m_at(area.start),
      m_areaEnd(area.end()),
      m_looksLeft(kMostLooks),
      m_scansLeft(window.size() * kScansPerByte + kMoreScans) {
    for (std::size_t i = 0; i < pattern.tracks.size(); ++i) {
        const TrackPattern& track = pattern.tracks[i];
        m_tracks.emplace_back();
        if (track.kind == Kind::Units)
            m_tracks.back().pictures.emplace(*track.units, track.mostBytes(), track.keyInterval);
        if (track.kind == Kind::Pcm)
            m_soundTrack = i;
    }
}

void MediaWalk::enter(ByteRange area) {
    m_at = area.start;
    m_areaEnd = area.end();
    m_aacAt = -1;
    m_endKind = End::None;
}

std::nullopt_t MediaWalk::stop(End end) {
    m_endKind = end;
    return std::nullopt;
}

// By what follows it: its last slices are missing, or it may not be a picture.
bool MediaWalk::isLastIncomplete() const {
    const bool isPicture = m_held && m_held->track != FoundMedia::kGpsBlock &&
                           m_pattern.tracks[m_held->track].kind == Kind::Units;
    return isPicture && (m_endKind == End::Unknown || (m_lacksSlices && m_endKind != End::Box));
}

std::optional<FoundMedia> MediaWalk::next() {
    while (m_endKind == End::None) {
        std::optional<FoundMedia> found = find();
        if (!found && isLastIncomplete())
            m_held.reset();
        std::swap(found, m_held);
        if (found)
            return found;
    }
    return std::nullopt;
}

std::optional<FoundMedia> MediaWalk::find() {
    if (++m_count > limits::kClipSamples)
        return stop(End::TooMany);
    for (;;) {
        if (m_at + kBoxHead > m_areaEnd) // too few bytes to recognize anything
            return stop(End::Area);
        if (std::optional<FoundMedia> block = gpsBlock())
            return block;
        if (m_endKind != End::None)
            return std::nullopt;
        if (isBoxAt(m_at))
            return stop(End::Box);
        if (const std::optional<Candidate> chosen = choose()) {
            if (chosen->ending == Ending::Cut)
                return stop(End::Sample);
            return accept(*chosen);
        }
        if (!skipUnknown())
            return stop(End::Unknown);
    }
}

std::optional<FoundMedia> MediaWalk::gpsBlock() {
    const Bytes head = m_window.at(m_at, 12);
    if (head.size() < 12 || typeAt(head) != fourCc("free") || bigEndian32(head.subspan(8)) != fourCc("GPS "))
        return std::nullopt;
    const std::int64_t size = bigEndian32(head);
    if (size < 12 || size > kMostGpsBlock)
        return std::nullopt;
    if (m_at + size > m_areaEnd)
        return stop(End::Sample);
    FoundMedia block;
    block.track = FoundMedia::kGpsBlock;
    block.offset = m_at;
    block.size = size;
    m_at += size;
    m_lastTrack = SIZE_MAX;
    return block;
}

bool MediaWalk::isBoxAt(std::int64_t offset) {
    constexpr std::uint32_t kTypes[] = {fourCc("moov"), fourCc("mdat"), fourCc("free"), fourCc("skip"),
                                        fourCc("wide"), fourCc("udta"), fourCc("uuid"), fourCc("meta"),
                                        fourCc("gps0"), fourCc("gsen"), fourCc("moof")};
    const Bytes head = m_window.at(offset, kBoxHead);
    const std::uint32_t type = typeAt(head);
    if (std::find(std::begin(kTypes), std::end(kTypes), type) == std::end(kTypes))
        return false;
    const std::uint32_t size = bigEndian32(head);
    return size == 1 || size >= kBoxHead;
}

// Each frame is looked for twice: after the preceding sample, and when it is its turn.
std::optional<FoundSample> MediaWalk::aacAt(std::int64_t offset, const AacFormat& format) {
    if (offset == m_aacAt)
        return m_aac;
    const auto there = static_cast<std::size_t>(std::min<std::int64_t>(m_areaEnd - offset, kMostAacBytes));
    const std::optional<AacFrame> frame = aacFrameAt(m_window.at(offset, there), format);
    m_aacAt = offset;
    m_aac.reset();
    if (frame && (frame->isWhole || there < kMostAacBytes))
        m_aac = FoundSample{frame->isWhole ? Ending::Whole : Ending::Cut,
                            static_cast<std::int64_t>(frame->size), 0};
    return m_aac;
}

std::optional<MediaWalk::Candidate> MediaWalk::candidateOf(std::size_t track, std::int64_t offset) {
    const TrackPattern& pattern = m_pattern.tracks[track];
    Candidate candidate;
    candidate.track = track;
    std::optional<FoundSample> sample;
    switch (pattern.kind) {
        case Kind::Units:
            candidate.picture = m_tracks[track].pictures->at(m_window, offset, m_areaEnd);
            if (!candidate.picture)
                return std::nullopt;
            sample = FoundSample{candidate.picture->ending, candidate.picture->size, 0};
            candidate.doubt = doubtOf(*candidate.picture, m_areaEnd - offset);
            break;
        case Kind::Jpeg:
            sample = jpegAt(m_window, offset, m_areaEnd, pattern.mostBytes(), m_scansLeft);
            candidate.doubt = kMarked;
            break;
        case Kind::Text:
            sample = textSampleAt(m_window, offset, m_areaEnd);
            candidate.doubt = kMarked;
            break;
        case Kind::Motion:
            sample = motionSampleAt(m_window, offset, m_areaEnd, pattern.shapes);
            candidate.doubt = kRecords;
            break;
        case Kind::Aac:
            sample = aacAt(offset, pattern.aac);
            candidate.doubt = kAac;
            break;
        case Kind::Pcm:
            break;
    }
    if (!sample)
        return std::nullopt;
    candidate.ending = sample->ending;
    candidate.size = sample->size;
    candidate.shape = sample->shape;
    return candidate;
}

// Sorted by doubt. A certain picture ends the search.
std::vector<MediaWalk::Candidate> MediaWalk::candidatesAt(std::int64_t offset, int mostDoubt) {
    std::vector<Candidate> candidates;
    for (const bool areUnits : {true, false}) {
        for (std::size_t track = 0; track < m_tracks.size(); ++track) {
            const bool isWanted = m_pattern.tracks[track].kind != Kind::Aac || mostDoubt >= kAac;
            if (m_tracks[track].pictures.has_value() != areUnits || !isWanted)
                continue;
            if (const std::optional<Candidate> candidate = candidateOf(track, offset))
                candidates.push_back(*candidate);
        }
        if (std::any_of(candidates.begin(), candidates.end(),
                        [](const Candidate& c) { return c.doubt == kNone; }))
            break;
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.doubt < b.doubt; });
    return candidates;
}

// Recorders write next the track with the least media so far, in runs of the usual lengths.
std::size_t MediaWalk::trackInTurn(const std::vector<Candidate>& candidates) const {
    const bool isLastOne = std::any_of(candidates.begin(), candidates.end(),
                                       [&](const Candidate& c) { return c.track == m_lastTrack; });
    if (isLastOne && m_run < m_pattern.tracks[m_lastTrack].shortestRun)
        return m_lastTrack;
    std::size_t best = SIZE_MAX;
    for (const Candidate& candidate : candidates) {
        const std::size_t track = candidate.track;
        if (track == m_lastTrack && m_run >= m_pattern.tracks[track].longestRun && candidates.size() > 1)
            continue;
        if (best == SIZE_MAX || m_tracks[track].seconds < m_tracks[best].seconds)
            best = track;
    }
    return best;
}

// Chooses among pictures of several tracks that match equally.
void MediaWalk::preferInTurn(std::vector<Candidate>& candidates) const {
    std::vector<Candidate> alike;
    for (const Candidate& candidate : candidates) {
        if (m_pattern.tracks[candidate.track].isPicture() && candidate.doubt == candidates.front().doubt)
            alike.push_back(candidate);
    }
    if (alike.size() < 2)
        return;
    const std::size_t inTurn = trackInTurn(alike);
    std::stable_sort(candidates.begin(), candidates.end(), [&](const Candidate& a, const Candidate& b) {
        return std::pair(a.doubt, a.track != inTurn) < std::pair(b.doubt, b.track != inTurn);
    });
}

bool MediaWalk::isKnownAt(std::int64_t offset) {
    return offset + kBoxHead >= m_areaEnd || isBoxAt(offset) || !candidatesAt(offset).empty();
}

// For places where a sample may not begin. Counts the cost, since the same bytes are parsed repeatedly.
std::vector<MediaWalk::Candidate> MediaWalk::lookAt(std::int64_t offset) {
    const auto unitsRead = [this] {
        std::int64_t units = 0;
        for (const Track& track : m_tracks)
            units += track.pictures ? track.pictures->unitsRead() : 0;
        return units;
    };
    const std::int64_t before = unitsRead();
    std::vector<Candidate> candidates = candidatesAt(offset, kHeadOnly);
    m_looksLeft -= 1 + unitsRead() - before;
    return candidates;
}

// Ignores candidates that uncompressed sound may resemble: the more places are tried, the likelier a false
// match.
bool MediaWalk::isCertainAt(std::int64_t offset, bool hasToBeWhole) {
    if (offset + kBoxHead > m_areaEnd || isBoxAt(offset))
        return offset <= m_areaEnd;
    const std::vector<Candidate> candidates = lookAt(offset);
    if (candidates.empty() || candidates.front().doubt > kHeadOnly)
        return false;
    return candidates.front().ending == Ending::Whole || !hasToBeWhole;
}

std::optional<MediaWalk::Candidate> MediaWalk::choose() {
    std::vector<Candidate> candidates = candidatesAt(m_at);
    if (!candidates.empty())
        preferInTurn(candidates);
    for (const Candidate& candidate : candidates) {
        const bool isCertain = candidate.doubt < kRecords || (m_soundTrack && candidate.doubt <= kHeadOnly);
        if (isCertain || (candidate.ending == Ending::Whole && isKnownAt(m_at + candidate.size)))
            return candidate;
    }
    // Only now: quiet sound may resemble a picture that doesn't end in the file.
    const auto cut = std::find_if(candidates.begin(), candidates.end(),
                                  [](const Candidate& c) { return c.ending == Ending::Cut; });
    const bool isCut = cut != candidates.end() && (!m_soundTrack || cut->doubt < kUnexpected);
    if (m_soundTrack && !isCut)
        return soundRun();
    return isCut ? std::optional(*cut) : std::nullopt;
}

// Uncompressed sound can't be recognized: it ends where something else begins, after one of the usual lengths
// of its runs.
std::optional<MediaWalk::Candidate> MediaWalk::soundRun() {
    const TrackPattern& pattern = m_pattern.tracks[*m_soundTrack];
    const std::int64_t left = m_areaEnd - m_at;
    Candidate run;
    run.track = *m_soundTrack;
    run.doubt = kUnexpected;
    std::int64_t longest = 0;
    for (const std::int64_t bytes : pattern.runBytes) {
        longest = std::max(longest, bytes);
        if (run.size == 0 && bytes <= left && isCertainAt(m_at + bytes, false))
            run.size = bytes;
    }
    for (std::int64_t bytes = pattern.unitBytes;
         run.size == 0 && bytes <= std::min(left, longest) && m_looksLeft > 0; bytes += pattern.unitBytes) {
        if (isCertainAt(m_at + bytes, true))
            run.size = bytes;
    }
    if (run.size == 0 && left <= longest)
        run.size = left / pattern.unitBytes * pattern.unitBytes;
    if (run.size == 0)
        return std::nullopt;
    run.count = static_cast<std::uint32_t>(run.size / pattern.unitBytes);
    return run;
}

bool MediaWalk::skipUnknown() {
    for (std::int64_t skipped = 1; skipped <= kMostPadding && m_looksLeft > 0; ++skipped) {
        const std::int64_t at = m_at + skipped;
        if (at >= m_areaEnd)
            return false;
        for (const Candidate& candidate : lookAt(at)) {
            const bool begins =
                candidate.doubt <= kRecords && candidate.ending == Ending::Whole && candidate.size > 0;
            if (begins && (m_soundTrack || isKnownAt(at + candidate.size))) {
                m_skipped += skipped;
                m_at = at;
                m_lastTrack = SIZE_MAX;
                return true;
            }
        }
    }
    return false;
}

void MediaWalk::place(const Candidate& candidate, FoundMedia& found) {
    Track& track = m_tracks[candidate.track];
    const TrackPattern& pattern = m_pattern.tracks[candidate.track];
    m_lacksSlices = track.pictures->lacksSlices(*candidate.picture);
    const std::int64_t place = track.pictures->accept(*candidate.picture);
    if (candidate.picture->slice.isInstant || track.index == 0) {
        track.firstIndex = track.index;
        track.firstPlace = place;
    }
    if (pattern.hasReordering)
        found.places = (place - track.firstPlace) / pattern.placeStep + track.firstIndex - track.index;
    found.isKey = candidate.picture->slice.isKey;
    found.isExpected = candidate.picture->isExpected;
}

FoundMedia MediaWalk::accept(const Candidate& candidate) {
    Track& track = m_tracks[candidate.track];
    const TrackPattern& pattern = m_pattern.tracks[candidate.track];
    FoundMedia found;
    found.track = candidate.track;
    found.offset = m_at;
    found.size = candidate.size;
    found.count = candidate.count;
    found.shape = candidate.shape;
    m_lacksSlices = false;
    if (candidate.picture)
        place(candidate, found);
    m_run = m_lastTrack == candidate.track ? m_run + candidate.count : candidate.count;
    m_lastTrack = candidate.track;
    track.index += candidate.count;
    const std::int64_t ticks = pattern.durations.front().ticksOf(track.index);
    track.seconds = static_cast<double>(ticks) / pattern.track.layout.timescale;
    m_at += candidate.size;
    return found;
}

} // namespace ql240::repair
