#include "platform/gstreamer/index_guard.h"

#include <QtEndian>

#include <algorithm>

#include "platform/limits.h"

namespace ql240::gstreamer {

namespace {

using Bytes = std::span<std::uint8_t>;

constexpr std::size_t kHeader = 8;

constexpr std::uint32_t tag(const char (&name)[5]) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value = value << 8 | static_cast<std::uint8_t>(name[i]);
    return value;
}

// The boxes that are kept, by parent. There are no cycles, so nesting is bounded.
struct Known {
    std::uint32_t parent;
    std::uint32_t child;
};
constexpr Known kKnown[] = {
    {tag("moov"), tag("mvhd")}, {tag("moov"), tag("trak")}, {tag("moov"), tag("mvex")},
    {tag("trak"), tag("tkhd")}, {tag("trak"), tag("edts")}, {tag("trak"), tag("mdia")},
    {tag("edts"), tag("elst")}, {tag("mdia"), tag("mdhd")}, {tag("mdia"), tag("hdlr")},
    {tag("mdia"), tag("minf")}, {tag("minf"), tag("vmhd")}, {tag("minf"), tag("smhd")},
    {tag("minf"), tag("hdlr")}, {tag("minf"), tag("dinf")}, {tag("minf"), tag("stbl")},
    {tag("dinf"), tag("dref")}, {tag("stbl"), tag("stsd")}, {tag("stbl"), tag("stts")},
    {tag("stbl"), tag("ctts")}, {tag("stbl"), tag("cslg")}, {tag("stbl"), tag("stss")},
    {tag("stbl"), tag("stps")}, {tag("stbl"), tag("stsc")}, {tag("stbl"), tag("stsz")},
    {tag("stbl"), tag("stz2")}, {tag("stbl"), tag("stco")}, {tag("stbl"), tag("co64")},
    {tag("mvex"), tag("mehd")}, {tag("mvex"), tag("trex")}, {tag("moof"), tag("mfhd")},
    {tag("moof"), tag("traf")}, {tag("traf"), tag("tfhd")}, {tag("traf"), tag("tfdt")},
    {tag("traf"), tag("trun")}, {tag("mfra"), tag("tfra")}, {tag("mfra"), tag("mfro")},
};

bool isKnown(std::uint32_t parent, std::uint32_t child) {
    return std::any_of(std::begin(kKnown), std::end(kKnown),
                       [=](const Known& known) { return known.parent == parent && known.child == child; });
}

bool holdsBoxes(std::uint32_t name) {
    return std::any_of(std::begin(kKnown), std::end(kKnown),
                       [=](const Known& known) { return known.parent == name; });
}

// 0 past the end.
std::uint32_t numberAt(Bytes bytes, std::size_t at) {
    return bytes.size() < at + 4 ? 0 : qFromBigEndian<std::uint32_t>(bytes.data() + at);
}

} // namespace

bool IndexGuard::tidy(std::uint64_t place, Bytes box) {
    const std::uint32_t name = numberAt(box, 4);
    if (!holdsBoxes(name))
        return true;
    std::size_t& counted = m_counted[place];
    const bool isNew = box.size() > counted; // the header may have been read separately before
    counted = std::max(counted, box.size());
    return m_counted.size() <= limits::kIndexBoxes && tidyWithin(name, box.subspan(kHeader), isNew);
}

// Stops at a length that doesn't fit, as the splitter does.
bool IndexGuard::tidyWithin(std::uint32_t parent, Bytes boxes, bool isNew) {
    std::size_t tracks = 0;
    while (boxes.size() >= kHeader) {
        const std::uint32_t size = numberAt(boxes, 0);
        if (size < kHeader || size > boxes.size())
            return true;
        const Bytes box = boxes.first(size);
        const std::uint32_t name = numberAt(box, 4);
        if (name == tag("trak"))
            m_isSound = m_isRaw = std::nullopt;
        const bool isSpare = name == tag("trak") && ++tracks > limits::kTracks;
        if (!isKnown(parent, name) || isSpare)
            qToBigEndian(tag("free"), box.data() + 4);
        else if (holdsBoxes(name) ? !tidyWithin(name, box.subspan(kHeader), isNew)
                                  : !fits(parent, box, isNew))
            return false;
        boxes = boxes.subspan(size);
    }
    return true;
}

// Raw sound as the splitter knows it: one description, of a format without compression, not of variable rate.
void IndexGuard::noteRawSound(std::uint32_t parent, Bytes box) {
    constexpr std::uint32_t kRaw[] = {tag("raw "), tag("NONE"), tag("sowt"), tag("twos"),
                                      tag("in24"), tag("in32"), tag("fl32"), tag("fl64")};
    const std::uint32_t name = numberAt(box, 4);
    if (parent == tag("mdia") && name == tag("hdlr") && !m_isSound)
        m_isSound = numberAt(box, 16) == tag("soun");
    if (name == tag("stsd") && !m_isRaw)
        m_isRaw = numberAt(box, 12) == 1 && numberAt(box, 44) >> 16 != 0xFFFE &&
                  std::find(std::begin(kRaw), std::end(kRaw), numberAt(box, 20)) != std::end(kRaw);
}

bool IndexGuard::fits(std::uint32_t parent, Bytes box, bool isNew) {
    constexpr std::size_t kFixedSize = 12;
    constexpr std::size_t kSizesCount = 16;
    constexpr std::size_t kRunCount = 12;
    constexpr std::size_t kChunksCount = 12;
    const std::uint32_t name = numberAt(box, 4);
    noteRawSound(parent, box);
    if (name == tag("stsd"))
        return box.size() <= limits::kSampleEntryBytes;
    // With raw audio, the table counts single values, and the splitter makes a sample of each chunk.
    const bool isChunked =
        m_isSound.value_or(false) && m_isRaw.value_or(false) && numberAt(box, kFixedSize) != 0;
    if (isNew && ((name == tag("stsz") && !isChunked) || name == tag("stz2")))
        m_samples += numberAt(box, kSizesCount);
    if (isNew && name == tag("trun"))
        m_samples += numberAt(box, kRunCount);
    if (isNew && (name == tag("stco") || name == tag("co64")))
        m_chunks += numberAt(box, kChunksCount);
    return m_samples <= limits::kClipSamples && m_chunks <= limits::kClipSamples;
}

} // namespace ql240::gstreamer
