// Iterates over the samples in the media of an MP4 clip without an index, by their content and by a healthy
// clip of the same camera. One thread at a time; offsets and sizes in bytes.
#pragma once

#include <climits>

#include "clips/repair/mp4_pattern.h"

namespace ql240::repair {

struct FoundMedia {
    static constexpr std::size_t kGpsBlock = SIZE_MAX; // instead of a track's number

    std::size_t track = 0;
    std::int64_t offset = 0;
    std::int64_t size = 0;
    std::uint32_t count = 1; // samples of uncompressed sound
    bool isKey = true;
    bool isExpected = true; // a picture's number follows its track's last one
    std::size_t shape = 0;
    std::int64_t places = 0; // from decoding order to display order, in pictures
};

class MediaWalk {
public:
    enum class End : std::uint8_t {
        None,
        Area,    // the area is used up
        Sample,  // an incomplete sample begins
        Box,     // another box begins
        Unknown, // nothing recognizable begins
        TooMany, // limits::kClipSamples
    };

    // Window and pattern outlive this. `area`: the media, with an end that may be too late.
    MediaWalk(FileWindow& window, const Mp4Pattern& pattern, ByteRange area);

    // Nothing at the end, for the reason in end().
    std::optional<FoundMedia> next();
    // Continues in another area.
    void enter(ByteRange area);

    End end() const { return m_endKind; }
    // The current offset, and the number of unrecognized bytes so far.
    std::int64_t position() const { return m_at; }
    std::int64_t skippedBytes() const { return m_skipped; }

private:
    struct Candidate {
        std::size_t track = 0;
        Ending ending = Ending::Whole;
        std::int64_t size = 0;
        std::uint32_t count = 1;
        std::size_t shape = 0;
        std::optional<FoundPicture> picture;
        int doubt = 0; // lower is better
    };
    struct Track {
        std::optional<PictureFinder> pictures;
        double seconds = 0; // of the samples found so far
        std::int64_t index = 0;
        std::int64_t firstIndex = 0; // of the pictures whose order counts from the same one
        std::int64_t firstPlace = 0;
    };

    std::optional<FoundMedia> find();
    std::optional<FoundMedia> gpsBlock();
    bool isBoxAt(std::int64_t offset);
    std::vector<Candidate> candidatesAt(std::int64_t offset, int mostDoubt = INT_MAX);
    std::vector<Candidate> lookAt(std::int64_t offset);
    std::optional<FoundSample> aacAt(std::int64_t offset, const AacFormat& format);
    std::optional<Candidate> candidateOf(std::size_t track, std::int64_t offset);
    void preferInTurn(std::vector<Candidate>& candidates) const;
    std::size_t trackInTurn(const std::vector<Candidate>& candidates) const;
    bool isKnownAt(std::int64_t offset);
    std::optional<Candidate> choose();
    std::optional<Candidate> soundRun();
    bool isCertainAt(std::int64_t offset, bool hasToBeWhole);
    bool skipUnknown();
    FoundMedia accept(const Candidate& candidate);
    void place(const Candidate& candidate, FoundMedia& found);
    std::nullopt_t stop(End end);
    bool isLastIncomplete() const;

    FileWindow& m_window;
    const Mp4Pattern& m_pattern;
    std::int64_t m_at;
    std::int64_t m_areaEnd;
    std::vector<Track> m_tracks;
    std::optional<std::size_t> m_soundTrack; // the uncompressed one
    std::size_t m_lastTrack = SIZE_MAX;
    std::uint32_t m_run = 0; // consecutive samples of m_lastTrack
    End m_endKind = End::None;
    // The last sample found, until it is known what follows it.
    std::optional<FoundMedia> m_held;
    bool m_lacksSlices = false;
    std::int64_t m_aacAt = -1; // the offset that m_aac is for
    std::optional<FoundSample> m_aac;
    std::int64_t m_skipped = 0;
    std::int64_t m_looksLeft;
    std::int64_t m_scansLeft; // bytes of Motion-JPEG pictures
    std::uint64_t m_count = 0;
};

} // namespace ql240::repair
