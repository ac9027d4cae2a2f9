#include "clips/repair/aac_frames.h"

#include <QtEndian>
#include <algorithm>
#include <array>
#include <utility>

#include "clips/repair/aac_tables.h"

namespace ql240::repair {
namespace {

constexpr std::uint32_t kLowComplexity = 2;
constexpr int kMostBands = 51;
constexpr int kMostGroups = 8;
constexpr std::uint32_t kShortWindows = 2; // the window sequence of eight short ones
enum Book { kZero = 0, kLastSpectral = 11, kReserved = 12, kNoise = 13 };
enum Element { kSingle, kPair, kCoupling, kLowFrequency, kData, kProgram, kFill, kEnd };

// Zeros past the end; then isPast() is true.
class AacBits {
public:
    explicit AacBits(Bytes bytes) : m_bytes(bytes) {}

    std::uint32_t take(int count) {
        const std::uint32_t value = count == 0 ? 0 : peek() >> (32 - count);
        m_at += static_cast<std::size_t>(count);
        return value;
    }
    // The next 32 bits.
    std::uint32_t peek() const {
        std::array<std::uint8_t, 8> bytes{};
        const std::size_t start = std::min(m_at / 8, m_bytes.size());
        std::copy_n(m_bytes.data() + start, std::min(bytes.size(), m_bytes.size() - start), bytes.data());
        return static_cast<std::uint32_t>(qFromBigEndian<std::uint64_t>(bytes.data()) << (m_at % 8) >> 32);
    }
    void skip(std::size_t count) { m_at += count; }
    void align() { m_at = (m_at + 7) / 8 * 8; }
    bool isPast() const { return m_at > m_bytes.size() * 8; }
    std::size_t bytesUsed() const { return m_at / 8; }

private:
    Bytes m_bytes;
    std::size_t m_at = 0; // bits
};

// The number of the next code; the book is complete, so there always is one.
std::size_t takeCode(AacBits& bits, const CodeBook& book) {
    const std::uint32_t next = bits.peek();
    std::uint32_t first = 0;
    std::size_t before = 0;
    std::size_t length = 0;
    for (const std::uint8_t count : book.counts) {
        const std::uint32_t code = next >> (32 - ++length);
        first <<= 1;
        if (code < first + count) {
            bits.skip(length);
            return before + (code - first);
        }
        first += count;
        before += count;
    }
    return 0;
}

// One channel's part of a frame, or what two channels share.
class ChannelStream {
public:
    ChannelStream(AacBits& bits, const AacFormat& format) : m_bits(bits), m_format(format) {}

    // All return false if the bits are invalid.
    bool takeWindows();
    bool take(bool hasWindows);
    int bands() const { return m_bands; }
    int groups() const { return m_groups; }

private:
    bool takeSections();
    void takeScales();
    bool takePulses();
    bool takeShaping();
    bool takeSpectrum();
    bool takeValues(int bookNumber, int count);
    bool takeEscape();

    AacBits& m_bits;
    const AacFormat& m_format;
    bool m_isShort = false;
    int m_bands = 0;
    int m_groups = 1;
    std::array<int, kMostGroups> m_groupWindows{1};
    std::array<std::array<std::uint8_t, kMostBands>, kMostGroups> m_books{};
};

bool ChannelStream::takeWindows() {
    if (m_bits.take(1) != 0)
        return false;
    m_isShort = m_bits.take(2) == kShortWindows;
    m_bits.skip(1); // window shape
    m_groups = 1;
    m_groupWindows = {1};
    m_bands = static_cast<int>(m_bits.take(m_isShort ? 4 : 6));
    if (m_isShort) {
        for (int window = 1; window < kMostGroups; ++window) {
            if (m_bits.take(1))
                ++m_groupWindows[m_groups - 1];
            else
                m_groupWindows[m_groups++] = 1;
        }
    } else if (m_bits.take(1)) { // prediction
        return false;
    }
    const std::string_view widths =
        m_isShort ? aacShortBands(m_format.rateIndex) : aacLongBands(m_format.rateIndex);
    return m_bands <= static_cast<int>(widths.size());
}

bool ChannelStream::takeSections() {
    const int bits = m_isShort ? 3 : 5;
    const std::uint32_t goesOn = (1U << bits) - 1;
    for (int group = 0; group < m_groups; ++group) {
        for (int band = 0; band < m_bands;) {
            const std::uint32_t book = m_bits.take(4);
            int length = 0;
            std::uint32_t part = goesOn;
            while (part == goesOn && length <= m_bands) {
                part = m_bits.take(bits);
                length += static_cast<int>(part);
            }
            if (book == kReserved || length == 0 || band + length > m_bands)
                return false;
            std::fill_n(m_books[group].begin() + band, length, static_cast<std::uint8_t>(book));
            band += length;
        }
    }
    return true;
}

void ChannelStream::takeScales() {
    bool hasNoise = false;
    for (int group = 0; group < m_groups; ++group) {
        for (int band = 0; band < m_bands; ++band) {
            const std::uint8_t book = m_books[group][band];
            const bool isFirstNoise = book == kNoise && !std::exchange(hasNoise, hasNoise || book == kNoise);
            if (isFirstNoise)
                m_bits.skip(9);
            else if (book != kZero)
                takeCode(m_bits, aacScaleBook());
        }
    }
}

bool ChannelStream::takePulses() {
    if (m_bits.take(1) == 0)
        return true;
    const std::uint32_t more = m_bits.take(2);
    m_bits.skip(6 + 9 * (more + 1));
    return !m_isShort;
}

// Temporal noise shaping.
bool ChannelStream::takeShaping() {
    if (m_bits.take(1) == 0)
        return true;
    constexpr std::uint32_t kHighestOrder = 20;
    for (int window = m_isShort ? 8 : 1; window > 0; --window) {
        const std::uint32_t filters = m_bits.take(m_isShort ? 1 : 2);
        const std::uint32_t resolution = filters > 0 ? m_bits.take(1) : 0;
        for (std::uint32_t filter = 0; filter < filters; ++filter) {
            m_bits.skip(m_isShort ? 4 : 6);
            const std::uint32_t order = m_bits.take(m_isShort ? 3 : 5);
            if (order > kHighestOrder)
                return false;
            if (order > 0) {
                m_bits.skip(1);
                const std::uint32_t isCompressed = m_bits.take(1);
                m_bits.skip(order * (3 + resolution - isCompressed));
            }
        }
    }
    return true;
}

// An escape sequence: a one for each bit beyond four, a zero, the bits.
bool ChannelStream::takeEscape() {
    constexpr int kMost = 8;
    int more = 0;
    while (m_bits.take(1)) {
        if (++more > kMost)
            return false;
    }
    m_bits.skip(static_cast<std::size_t>(more) + 4);
    return true;
}

bool ChannelStream::takeValues(int bookNumber, int count) {
    const CodeBook& book = aacBook(bookNumber);
    for (int i = 0; i < count && !m_bits.isPast(); i += book.values) {
        const std::size_t code = takeCode(m_bits, book);
        if (book.tails.empty())
            continue;
        const int tail = book.tails[code] - '0';
        const bool hasEscapes = bookNumber == kLastSpectral;
        m_bits.skip(static_cast<std::size_t>(hasEscapes ? tail % 3 : tail));
        for (int escapes = hasEscapes ? tail / 3 : 0; escapes > 0; --escapes) {
            if (!takeEscape())
                return false;
        }
    }
    return true;
}

bool ChannelStream::takeSpectrum() {
    const std::string_view widths =
        m_isShort ? aacShortBands(m_format.rateIndex) : aacLongBands(m_format.rateIndex);
    for (int group = 0; group < m_groups; ++group) {
        for (int band = 0; band < m_bands; ++band) {
            const int book = m_books[group][band];
            const int values = 4 * (widths[static_cast<std::size_t>(band)] - '0') * m_groupWindows[group];
            if (book != kZero && book <= kLastSpectral && !takeValues(book, values))
                return false;
        }
    }
    return true;
}

bool ChannelStream::take(bool hasWindows) {
    m_bits.skip(8); // gain
    if ((!hasWindows && !takeWindows()) || !takeSections())
        return false;
    takeScales();
    if (!takePulses() || !takeShaping() || m_bits.take(1)) // gain control
        return false;
    return takeSpectrum();
}

bool takePair(AacBits& bits, const AacFormat& format) {
    bits.skip(4);
    ChannelStream first(bits, format);
    const bool sharesWindows = bits.take(1) != 0;
    if (sharesWindows) {
        if (!first.takeWindows())
            return false;
        const std::uint32_t stereo = bits.take(2);
        if (stereo == 3)
            return false;
        bits.skip(stereo == 1 ? static_cast<std::size_t>(first.groups() * first.bands()) : 0);
    }
    ChannelStream second = first;
    return first.take(sharesWindows) && second.take(sharesWindows);
}

void skipData(AacBits& bits) {
    bits.skip(4);
    const bool isAligned = bits.take(1) != 0;
    std::uint32_t count = bits.take(8);
    if (count == 255)
        count += bits.take(8);
    if (isAligned)
        bits.align();
    bits.skip(std::size_t{count} * 8);
}

void skipFill(AacBits& bits) {
    std::uint32_t count = bits.take(4);
    if (count == 15)
        count += bits.take(8) - 1;
    bits.skip(std::size_t{count} * 8);
}

// The number of channels in an element; nothing if it is invalid.
std::optional<int> takeElement(AacBits& bits, const AacFormat& format, std::uint32_t element) {
    switch (element) {
        case kSingle:
        case kLowFrequency: {
            bits.skip(4);
            ChannelStream stream(bits, format);
            return stream.take(false) ? std::optional(1) : std::nullopt;
        }
        case kPair:
            return takePair(bits, format) ? std::optional(2) : std::nullopt;
        case kData:
            skipData(bits);
            return 0;
        case kFill:
            skipFill(bits);
            return 0;
        default:
            return std::nullopt;
    }
}

// The content of a descriptor after its tag and its length, which has seven bits per byte; nothing for
// another tag.
std::optional<Bytes> descriptorIn(Bytes bytes, std::uint8_t tag) {
    if (bytes.empty() || bytes[0] != tag)
        return std::nullopt;
    std::size_t length = 0;
    std::size_t at = 1;
    while (at < std::min<std::size_t>(bytes.size(), 5)) {
        const std::uint8_t byte = bytes[at++];
        length = length << 7 | (byte & 0x7F);
        if ((byte & 0x80) == 0)
            break;
    }
    return bytes.subspan(at, std::min(length, bytes.size() - at));
}

} // namespace

std::optional<AacFormat> AacFormat::fromDescriptor(Bytes descriptor) {
    constexpr std::size_t kStreamHead = 3;   // identifier and flags
    constexpr std::size_t kDecoderHead = 13; // type, buffer size, bit rates
    const auto rest = [](std::optional<Bytes> bytes, std::size_t head) {
        return bytes && bytes->size() >= head ? bytes->subspan(head) : Bytes();
    };
    const Bytes box = descriptor.size() > 4 ? descriptor.subspan(4) : Bytes(); // after version and flags
    const Bytes stream = rest(descriptorIn(box, 3), kStreamHead);
    const Bytes decoder = rest(descriptorIn(stream, 4), kDecoderHead);
    const Bytes specific = rest(descriptorIn(decoder, 5), 0);
    if (specific.size() < 2)
        return std::nullopt;
    AacBits bits(specific);
    std::uint32_t kind = bits.take(5);
    AacFormat format;
    format.rateIndex = static_cast<std::uint8_t>(bits.take(4));
    format.channels = static_cast<std::uint8_t>(bits.take(4));
    constexpr std::uint32_t kBandReplication = 5;
    if (kind == kBandReplication && bits.take(4) != 15)
        kind = bits.take(5);
    const bool isShorter = bits.take(1) != 0;
    const bool isKnown = kind == kLowComplexity && !isShorter && format.rateIndex < kAacRates;
    return isKnown && format.channels >= 1 && format.channels <= 7 ? std::optional(format) : std::nullopt;
}

std::optional<AacFrame> aacFrameAt(Bytes bytes, const AacFormat& format) {
    constexpr int kMostElements = 32;
    AacBits bits(bytes);
    int channels = 0;
    for (int i = 0; i < kMostElements; ++i) {
        const std::uint32_t element = bits.take(3);
        if (element == kEnd && !bits.isPast()) {
            bits.align();
            const int wanted = format.channels == 7 ? 8 : format.channels;
            return channels == wanted ? std::optional(AacFrame{true, bits.bytesUsed()}) : std::nullopt;
        }
        const std::optional<int> more = takeElement(bits, format, element);
        if (bits.isPast())
            return AacFrame{false, bytes.size()};
        if (!more)
            return std::nullopt;
        channels += *more;
    }
    return std::nullopt;
}

} // namespace ql240::repair
