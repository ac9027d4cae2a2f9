#include "support/clip_damage.h"

#include <QtEndian>
#include <algorithm>
#include <random>
#include <utility>

namespace ql240 {
namespace {

using Random = std::mt19937;

constexpr qsizetype kHeader = 8; // length and name, in either order

// A box or chunk: its place in the file, header included, and that of its length field.
struct Part {
    qsizetype at = 0;
    qsizetype size = 0;
    qsizetype lengthAt = 0;
    int parent = -1;      // index in the list of parts
    bool isMedia = false; // pictures and sound
};
using Parts = QList<Part>; // parents before their children

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

void findParts(const QByteArray& clip, qsizetype from, qsizetype end, int parent, Parts& parts) {
    static const QByteArrayList holders{"RIFF", "LIST", "moov", "trak", "edts",
                                        "mdia", "minf", "dinf", "stbl"};
    const bool riff = isRiff(clip);
    while (from + kHeader <= end) {
        const qsizetype lengthAt = riff ? from + 4 : from;
        const qsizetype length = lengthIn(clip, lengthAt);
        const qsizetype size = riff ? std::min(end - from, kHeader + length + length % 2) : length;
        if (size < kHeader || from + size > end)
            return;
        const QByteArray name = clip.mid(riff ? from : from + 4, 4);
        const bool inMedia =
            parent >= 0 && (parts[parent].isMedia || clip.mid(parts[parent].at + 8, 4) == "movi");
        parts.append({from, size, lengthAt, parent, inMedia || name == "mdat"});
        if (holders.contains(name))
            findParts(clip, from + (riff ? 12 : kHeader), from + size, int(parts.size()) - 1, parts);
        from += size;
    }
}

Parts partsOf(const QByteArray& clip) {
    Parts parts;
    findParts(clip, 0, clip.size(), -1, parts);
    return parts;
}

int below(Random& random, qsizetype bound) {
    return bound > 0 ? int(random() % quint32(bound)) : 0;
}

// Half of the time, one of the few structural parts.
const Part& anyPart(const Parts& parts, Random& random) {
    const bool structure = random() % 2;
    for (;;) {
        const Part& part = parts[below(random, parts.size())];
        if (!structure || !part.isMedia)
            return part;
    }
}

qsizetype anyPlace(const QByteArray& clip, const Parts& parts, Random& random) {
    if (random() % 2)
        return below(random, clip.size());
    const Part& part = anyPart(parts, random);
    return part.at + below(random, std::min<qsizetype>(part.size, 200));
}

// Cuts spread over the whole file; half of them within a part's head instead.
QByteArray cut(const QByteArray& clip, const Parts& parts, Random& random, int number, int count) {
    const qsizetype slice = clip.size() / std::max(1, count);
    const qsizetype spread = slice * number + below(random, slice);
    return clip.left(number % 2 ? anyPlace(clip, parts, random) : spread);
}

QByteArray flip(QByteArray clip, const Parts& parts, Random& random) {
    char& byte = clip.data()[anyPlace(clip, parts, random)];
    byte = char(byte ^ (1 + below(random, 255)));
    return clip;
}

// Half of the time the parents' lengths are adjusted, so that only this part is missing.
QByteArray drop(QByteArray clip, const Parts& parts, Random& random) {
    const Part& part = anyPart(parts, random);
    if (random() % 2)
        for (int up = part.parent; up >= 0; up = parts[up].parent)
            setLength(clip, parts[up].lengthAt, lengthIn(clip, parts[up].lengthAt) - quint32(part.size));
    return clip.remove(part.at, part.size);
}

QByteArray swap(const QByteArray& clip, const Parts& parts, Random& random) {
    for (int tries = 0; tries < 1000; ++tries) {
        const Part* first = &anyPart(parts, random);
        const Part* second = &anyPart(parts, random);
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

QByteArray changeLength(QByteArray clip, const Parts& parts, Random& random) {
    const Part& part = anyPart(parts, random);
    const quint32 length = lengthIn(clip, part.lengthAt);
    const std::array<quint32, 12> others{0,          1,          7,          8,
                                         length - 1, length + 1, length / 2, length * 2,
                                         0x7fffffff, 0x80000000, 0xffffffff, quint32(random())};
    setLength(clip, part.lengthAt, others[size_t(below(random, others.size()))]);
    return clip;
}

} // namespace

// Sizes, counts and dimensions are all at multiples of four bytes, or share four bytes.
QList<ClipField> fieldsOf(const QByteArray& clip) {
    constexpr qsizetype kHead = 112; // down to the end of a picture's description
    const Parts parts = partsOf(clip);
    QList<ClipField> fields;
    for (int i = 0; i < parts.size(); ++i) {
        const Part& part = parts[i];
        const qsizetype nameAt = part.at + part.at + 4 - part.lengthAt;
        const auto isInside = [i](const Part& other) { return other.parent == i; };
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

QByteArray damaged(const QByteArray& clip, Damage damage, int number, int count) {
    const Parts parts = partsOf(clip);
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
