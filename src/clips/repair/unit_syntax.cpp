#include "clips/repair/unit_syntax.h"

#include <algorithm>

#include "platform/limits.h"

namespace ql240::repair {
namespace {

constexpr std::size_t kMostSets = 64;
constexpr std::int64_t kMostSetBytes = 64 * 1024;
constexpr std::uint32_t kMostSliceType = 9;

enum H264Type {
    kSlice = 1,
    kInstant = 5,
    kMessage = 6,
    kSequence = 7,
    kPictureSet = 8,
    kDelimiter = 9,
    kEndOfSequence = 10,
    kEndOfStream = 11,
    kFiller = 12
};
enum H265Type {
    kHevcLastLeading = 9,
    kHevcLastTrailing = 15, // up to here, even numbers are sub-layer non-reference pictures
    kHevcFirstKey = 16,
    kHevcFirstInstant = 19,
    kHevcLastInstant = 20,
    kHevcLastKey = 21,
    kHevcVideoSet = 32,
    kHevcSequence = 33,
    kHevcPictureSet = 34,
    kHevcDelimiter = 35,
    kHevcFiller = 38,
    kHevcMessage = 39,
    kHevcMessageAfter = 40,
};

int h264Type(Bytes head) {
    return head[0] & 0x1F;
}
int h265Type(Bytes head) {
    return head[0] >> 1 & 0x3F;
}

// Takes `count` parameter sets, each with its length, off `rest`.
bool takeList(UnitSyntax& syntax, Bytes& rest, std::size_t count) {
    for (; count > 0; --count) {
        if (rest.size() < 2)
            return false;
        const std::size_t length = std::size_t{rest[0]} << 8U | rest[1];
        if (rest.size() - 2 < length)
            return false;
        syntax.takeSet(rest.subspan(2, length));
        rest = rest.subspan(2 + length);
    }
    return true;
}

bool takeH264Lists(UnitSyntax& syntax, Bytes rest) {
    for (const int mask : {0x1F, 0xFF}) {
        if (rest.empty())
            return false;
        const std::size_t count = static_cast<std::size_t>(rest[0] & mask);
        rest = rest.subspan(1);
        if (!takeList(syntax, rest, count))
            return false;
    }
    return true;
}

bool takeH265Lists(UnitSyntax& syntax, Bytes configuration) {
    std::size_t lists = configuration[22];
    Bytes rest = configuration.subspan(23);
    for (; lists > 0; --lists) {
        if (rest.size() < 3)
            return false;
        const std::size_t count = std::size_t{rest[1]} << 8U | rest[2];
        rest = rest.subspan(3);
        if (!takeList(syntax, rest, count))
            return false;
    }
    return true;
}

} // namespace

std::optional<UnitSyntax> UnitSyntax::fromConfiguration(UnitCodec codec, Bytes configuration) {
    UnitSyntax syntax;
    syntax.m_codec = codec;
    const std::size_t least = codec == UnitCodec::H264 ? 7 : 23;
    if (configuration.size() < least || configuration[0] != 1)
        return std::nullopt;
    syntax.m_lengthBytes = (configuration[codec == UnitCodec::H264 ? 4 : 21] & 3U) + 1;
    const bool areRead = codec == UnitCodec::H264 ? takeH264Lists(syntax, configuration.subspan(5))
                                                  : takeH265Lists(syntax, configuration);
    return areRead ? std::optional(syntax) : std::nullopt;
}

bool UnitSyntax::takeSequence(const PictureSequence& sequence) {
    if (!sequence.hasSize || limits::isPictureTooLarge(sequence.width, sequence.height))
        return false;
    const auto same = std::find_if(m_sequences.begin(), m_sequences.end(),
                                   [&](const PictureSequence& s) { return s.id == sequence.id; });
    if (same != m_sequences.end())
        return *same == sequence;
    if (m_sequences.size() < kMostSets)
        m_sequences.push_back(sequence);
    return true;
}

bool UnitSyntax::takeSet(Bytes unit) {
    const bool isH264 = m_codec == UnitCodec::H264;
    const std::size_t headSize = isH264 ? 1 : 2;
    if (unit.size() <= headSize)
        return false;
    UnitBits bits(unit.subspan(headSize), true);
    const int type = isH264 ? h264Type(unit) : h265Type(unit);
    if (type == (isH264 ? int{kSequence} : int{kHevcSequence}))
        return takeSequence(isH264 ? readH264Sequence(bits) : readH265Sequence(bits));
    if (type != (isH264 ? int{kPictureSet} : int{kHevcPictureSet}))
        return true;
    PictureSet set;
    set.id = bits.number();
    set.sequence = bits.number();
    if (!isH264) {
        set.hasDependentSlices = bits.take(1) != 0;
        set.saysOutput = bits.take(1) != 0;
        set.reservedBits = static_cast<int>(bits.take(3));
    }
    const auto same = std::find_if(m_pictureSets.begin(), m_pictureSets.end(),
                                   [&](const PictureSet& s) { return s.id == set.id; });
    if (same != m_pictureSets.end())
        return same->sequence == set.sequence;
    if (m_pictureSets.size() < kMostSets)
        m_pictureSets.push_back(set);
    return true;
}

const PictureSequence* UnitSyntax::sequenceOf(std::uint32_t pictureSet) const {
    for (const PictureSet& set : m_pictureSets) {
        for (const PictureSequence& sequence : m_sequences) {
            if (set.id == pictureSet && sequence.id == set.sequence)
                return &sequence;
        }
    }
    return nullptr;
}

std::uint32_t UnitSyntax::framesInNumber(const SliceHead& slice) const {
    const PictureSequence* sequence = sequenceOf(slice.pictureSet);
    return 1U << (sequence ? sequence->frameNumberBits : 4);
}

std::uint32_t UnitSyntax::ordersInLow(const SliceHead& slice) const {
    const PictureSequence* sequence = sequenceOf(slice.pictureSet);
    return 1U << (sequence ? sequence->orderBits : 4);
}

bool UnitSyntax::hasOrder(const SliceHead& slice) const {
    const PictureSequence* sequence = sequenceOf(slice.pictureSet);
    return sequence && sequence->orderKind == 0;
}

UnitSyntax::Kind UnitSyntax::kindOf(Bytes head, std::int64_t length) const {
    if (head.size() < (m_codec == UnitCodec::H264 && length == 1 ? 1 : 2) || (head[0] & 0x80) != 0)
        return Kind::Bad;
    return m_codec == UnitCodec::H264 ? kindOfH264(head, length) : kindOfH265(head, length);
}

UnitSyntax::Kind UnitSyntax::kindOfH264(Bytes head, std::int64_t length) const {
    const bool isReference = (head[0] & 0x60) != 0;
    switch (h264Type(head)) {
        case kSlice:
            return length > 1 ? Kind::Slice : Kind::Bad;
        case kInstant:
            return isReference && length > 1 ? Kind::Slice : Kind::Bad;
        case kSequence:
        case kPictureSet:
            return isReference && length <= kMostSetBytes ? Kind::Set : Kind::Bad;
        case kMessage:
            return !isReference && length <= kMostSetBytes ? Kind::Before : Kind::Bad;
        case kDelimiter:
            return head[0] == kDelimiter && length == 2 ? Kind::Before : Kind::Bad;
        case kEndOfSequence:
        case kEndOfStream:
            return !isReference && length == 1 ? Kind::After : Kind::Bad;
        case kFiller:
            return !isReference && head.size() > 1 && (head[1] == 0xFF || (head[1] == 0x80 && length == 2))
                       ? Kind::After
                       : Kind::Bad;
        default:
            return Kind::Bad;
    }
}

// Recorders write only the base layer.
UnitSyntax::Kind UnitSyntax::kindOfH265(Bytes head, std::int64_t length) const {
    const bool isOfFirstLayer = (head[0] & 1) == 0 && head[1] >> 3 == 0 && (head[1] & 7) != 0;
    const int type = h265Type(head);
    if (!isOfFirstLayer)
        return Kind::Bad;
    if (type <= kHevcLastLeading || (type >= kHevcFirstKey && type <= kHevcLastKey))
        return Kind::Slice;
    if (type >= kHevcVideoSet && type <= kHevcPictureSet)
        return length <= kMostSetBytes ? Kind::Set : Kind::Bad;
    if (type == kHevcDelimiter || type == kHevcMessage)
        return length <= (type == kHevcDelimiter ? 3 : kMostSetBytes) ? Kind::Before : Kind::Bad;
    const bool isAfter = type > kHevcDelimiter && type <= kHevcMessageAfter;
    return isAfter && (type != kHevcFiller || head.size() < 3 || head[2] == 0xFF) &&
                   (type == kHevcFiller || length <= kMostSetBytes)
               ? Kind::After
               : Kind::Bad;
}

std::optional<SliceHead> UnitSyntax::sliceOf(Bytes head) const {
    return m_codec == UnitCodec::H264 ? h264Slice(head) : h265Slice(head);
}

// In H.265, dependent slices lack most fields.
bool UnitSyntax::continues(const SliceHead& before, const SliceHead& slice) const {
    const bool isAlike = before.isInstant == slice.isInstant && before.isReference == slice.isReference;
    const bool saysTheSame = before.frameNumber == slice.frameNumber && before.orderLow == slice.orderLow;
    return slice.address > before.address && isAlike && (saysTheSame || m_codec == UnitCodec::H265);
}

std::optional<SliceHead> UnitSyntax::h264Slice(Bytes head) const {
    UnitBits bits(head.subspan(1), true);
    SliceHead slice;
    slice.isInstant = slice.isKey = h264Type(head) == kInstant;
    slice.isReference = slice.countsForOrder = (head[0] & 0x60) != 0;
    slice.address = bits.number();
    const std::uint32_t type = bits.number();
    slice.pictureSet = bits.number();
    const PictureSequence* sequence = sequenceOf(slice.pictureSet);
    if (!sequence || type > kMostSliceType ||
        std::int64_t{slice.address} * 256 >= sequence->width * sequence->height)
        return std::nullopt;
    const bool isIntra = type % 5 == 2 || type % 5 == 4;
    bits.skip(sequence->hasPlanes ? 2 : 0);
    slice.frameNumber = bits.take(sequence->frameNumberBits);
    const bool isField = sequence->hasFields && bits.take(1);
    if (isField || (slice.isInstant && (!isIntra || slice.frameNumber != 0)))
        return std::nullopt;
    if (slice.isInstant)
        bits.number(); // idr_pic_id
    if (sequence->orderKind == 0)
        slice.orderLow = bits.take(sequence->orderBits);
    return slice;
}

std::optional<SliceHead> UnitSyntax::h265Slice(Bytes head) const {
    UnitBits bits(head.subspan(2), true);
    SliceHead slice;
    const int type = h265Type(head);
    slice.isInstant = type == kHevcFirstInstant || type == kHevcLastInstant;
    slice.isKey = type >= kHevcFirstKey;
    slice.isReference = slice.isKey || type % 2 == 1;
    slice.countsForOrder = (head[1] & 7) == 1 && slice.isReference && (slice.isKey || type < 6);
    const bool isFirst = bits.take(1) != 0;
    if (slice.isKey)
        bits.skip(1);
    slice.pictureSet = bits.number();
    const auto set = std::find_if(m_pictureSets.begin(), m_pictureSets.end(),
                                  [&](const PictureSet& s) { return s.id == slice.pictureSet; });
    const PictureSequence* sequence = sequenceOf(slice.pictureSet);
    if (!sequence)
        return std::nullopt;
    const bool isDependent = !isFirst && set->hasDependentSlices && bits.take(1);
    slice.address = isFirst ? 0 : bits.take(sequence->addressBits);
    if (isFirst == (slice.address != 0))
        return std::nullopt;
    // A dependent slice shares the fields of the preceding one.
    if (isDependent)
        return slice;
    bits.skip(set->reservedBits);
    if (bits.number() > 2)
        return std::nullopt;
    bits.skip((set->saysOutput ? 1 : 0) + (sequence->hasPlanes ? 2 : 0));
    if (!slice.isInstant)
        slice.orderLow = bits.take(sequence->orderBits);
    return slice;
}

} // namespace ql240::repair
