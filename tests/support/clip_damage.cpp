#include "support/clip_damage.h"

#include <QtEndian>
#include <algorithm>
#include <random>
#include <utility>

namespace ql240 {
namespace {

using Random = std::mt19937;

constexpr qsizetype kHeader = 8; // length and name, in either order

bool isRiff(const QByteArray& clip) {
    return clip.startsWith("RIFF");
}

quint32 lengthIn(const QByteArray& clip, qsizetype at) {
    const char* bytes = clip.constData() + at;
    return isRiff(clip) ? qFromLittleEndian<quint32>(bytes) : qFromBigEndian<quint32>(bytes);
}

void setLength(QByteArray& clip, qsizetype at, quint32 length) {
    char* bytes = clip.data() + at;
    isRiff(clip) ? qToLittleEndian(length, bytes) : qToBigEndian(length, bytes);
}

void findChunks(const QByteArray& clip, qsizetype from, qsizetype end, int parent, QList<ClipPart>& parts) {
    while (from + kHeader <= end) {
        const qsizetype body = lengthIn(clip, from + 4);
        const qsizetype size = std::min(end - from, kHeader + body + body % 2);
        const QByteArray name = clip.mid(from, 4);
        const bool isList = name == "RIFF" || name == "LIST";
        const bool inMedia =
            parent >= 0 && (parts[parent].isMedia || clip.mid(parts[parent].at + 8, 4) == "movi");
        parts.append({from, size, from + 4, parent, inMedia});
        if (isList)
            findChunks(clip, from + 12, from + size, int(parts.size()) - 1, parts);
        from += size;
    }
}

void findBoxes(const QByteArray& clip, qsizetype from, qsizetype end, int parent, QList<ClipPart>& parts) {
    static const QByteArrayList kinds{"moov", "trak", "edts", "mdia", "minf", "dinf", "stbl", "udta"};
    while (from + kHeader <= end) {
        const qsizetype size = lengthIn(clip, from);
        if (size < kHeader || from + size > end)
            return;
        const QByteArray name = clip.mid(from + 4, 4);
        parts.append({from, size, from, parent, name == "mdat"});
        if (kinds.contains(name))
            findBoxes(clip, from + kHeader, from + size, int(parts.size()) - 1, parts);
        from += size;
    }
}

int below(Random& random, qsizetype bound) {
    return bound > 0 ? int(random() % quint32(bound)) : 0;
}

// Half of the time, one of the few structural parts.
const ClipPart& anyPart(const QList<ClipPart>& parts, Random& random) {
    const bool structure = random() % 2;
    for (;;) {
        const ClipPart& part = parts[below(random, parts.size())];
        if (!structure || !part.isMedia)
            return part;
    }
}

qsizetype anyPlace(const QByteArray& clip, const QList<ClipPart>& parts, Random& random) {
    if (random() % 2)
        return below(random, clip.size());
    const ClipPart& part = anyPart(parts, random);
    return part.at + below(random, std::min<qsizetype>(part.size, 200));
}

// Cuts spread over the whole file; half of them within a part's head instead.
QByteArray cut(const QByteArray& clip, const QList<ClipPart>& parts, Random& random, int number, int count) {
    const qsizetype slice = clip.size() / std::max(1, count);
    const qsizetype spread = slice * number + below(random, slice);
    return clip.left(number % 2 ? anyPlace(clip, parts, random) : spread);
}

QByteArray flip(QByteArray clip, const QList<ClipPart>& parts, Random& random) {
    char& byte = clip.data()[anyPlace(clip, parts, random)];
    byte = char(byte ^ (1 + below(random, 255)));
    return clip;
}

// Half of the time the parents' lengths are adjusted, so that only this part is missing.
QByteArray drop(QByteArray clip, const QList<ClipPart>& parts, Random& random) {
    const ClipPart& part = anyPart(parts, random);
    if (random() % 2)
        for (int up = part.parent; up >= 0; up = parts[up].parent)
            setLength(clip, parts[up].lengthAt, lengthIn(clip, parts[up].lengthAt) - quint32(part.size));
    return clip.remove(part.at, part.size);
}

QByteArray swap(const QByteArray& clip, const QList<ClipPart>& parts, Random& random) {
    for (int tries = 0; tries < 1000; ++tries) {
        const ClipPart* first = &anyPart(parts, random);
        const ClipPart* second = &anyPart(parts, random);
        if (first->at > second->at)
            std::swap(first, second);
        const qsizetype between = first->at + first->size;
        if (first->parent == second->parent && between <= second->at)
            return clip.left(first->at) + clip.mid(second->at, second->size) +
                   clip.mid(between, second->at - between) + clip.mid(first->at, first->size) +
                   clip.mid(second->at + second->size);
    }
    return clip;
}

QByteArray changeLength(QByteArray clip, const QList<ClipPart>& parts, Random& random) {
    const ClipPart& part = anyPart(parts, random);
    const quint32 length = lengthIn(clip, part.lengthAt);
    const std::array<quint32, 12> others{0,          1,          7,          8,
                                         length - 1, length + 1, length / 2, length * 2,
                                         0x7fffffff, 0x80000000, 0xffffffff, quint32(random())};
    setLength(clip, part.lengthAt, others[size_t(below(random, others.size()))]);
    return clip;
}

} // namespace

const char* damageName(Damage damage) {
    constexpr std::array names{"cut off", "one byte changed", "a part dropped", "two parts swapped",
                               "a length changed"};
    return names[size_t(damage)];
}

QList<ClipPart> partsOf(const QByteArray& clip) {
    QList<ClipPart> parts;
    isRiff(clip) ? findChunks(clip, 0, clip.size(), -1, parts) : findBoxes(clip, 0, clip.size(), -1, parts);
    return parts;
}

// Sizes, counts and dimensions are all at multiples of four bytes, or share four bytes.
QList<ClipField> fieldsOf(const QByteArray& clip) {
    constexpr qsizetype kHead = 112; // down to the end of a picture's description
    const QList<ClipPart> parts = partsOf(clip);
    QList<ClipField> fields;
    for (int i = 0; i < parts.size(); ++i) {
        const ClipPart& part = parts[i];
        const qsizetype nameAt = part.at + part.at + 4 - part.lengthAt;
        const auto isInside = [i](const ClipPart& other) { return other.parent == i; };
        const bool isLeaf = !part.isMedia && std::none_of(parts.begin(), parts.end(), isInside);
        const qsizetype end = part.at + (isLeaf ? std::min(part.size, kHead) : kHeader);
        for (qsizetype at = part.at; at + 4 <= end && (!part.isMedia || part.parent < 0); at += 4)
            if (at != nameAt)
                fields.append({clip.mid(nameAt, 4), at, at == part.lengthAt});
    }
    return fields;
}

QByteArray withField(QByteArray clip, const ClipField& field, quint32 value) {
    setLength(clip, field.at, value);
    return clip;
}

QByteArray withIndexFirst(const QByteArray& clip) {
    const QList<ClipPart> parts = partsOf(clip);
    const auto named = [&clip](const char* name) {
        return [&clip, name](const ClipPart& part) { return clip.mid(part.at + 4, 4) == name; };
    };
    const auto index = std::find_if(parts.cbegin(), parts.cend(), named("moov"));
    const auto media = std::find_if(parts.cbegin(), parts.cend(), named("mdat"));
    if (index == parts.cend() || media == parts.cend() || index->at < media->at)
        return clip;
    QByteArray moved = clip;
    for (const ClipPart& part : parts) {
        const bool holdsOffsets = named("stco")(part);
        for (qsizetype at = part.at + 16; holdsOffsets && at < part.at + part.size; at += 4)
            setLength(moved, at, lengthIn(moved, at) + quint32(index->size));
    }
    const QByteArray box = moved.mid(index->at, index->size);
    return moved.remove(index->at, index->size).insert(media->at, box);
}

QByteArray damaged(const QByteArray& clip, Damage damage, int number, int count) {
    const QList<ClipPart> parts = partsOf(clip);
    Random random(quint32(number * 8 + int(damage)));
    switch (damage) {
        case Damage::Cut:
            return cut(clip, parts, random, number, count);
        case Damage::Flip:
            return flip(clip, parts, random);
        case Damage::Drop:
            return drop(clip, parts, random);
        case Damage::Swap:
            return swap(clip, parts, random);
        case Damage::Length:
            return changeLength(clip, parts, random);
    }
    return clip;
}

} // namespace ql240
