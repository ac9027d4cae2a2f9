// Damages clips systematically: cuts them, flips bytes, and drops, swaps and mismeasures the boxes of an MP4
// file or the chunks of an AVI file. The same clip, damage and number always give the same bytes.
#pragma once

#include <QByteArray>
#include <QList>

#include <array>

namespace ql240 {

enum class Damage { Cut, Flip, Drop, Swap, Length };
inline constexpr std::array kDamageNames{"cut off", "one byte changed", "a part dropped", "two parts swapped",
                                         "a length changed"};

// `clip` with damage `number` of `count`: cuts are spread over the file, everything else is random.
QByteArray damaged(const QByteArray& clip, Damage damage, int number, int count);

// A field of 4 bytes in the head of a structural part.
struct ClipField {
    QByteArray part; // its name
    qsizetype at = 0;
    bool isLength = false; // the part's own length
};
QList<ClipField> fieldsOf(const QByteArray& clip);

inline constexpr std::array kExtremes{0U, 1U, 0x7fffffffU, 0x80000000U, 0xffffffffU};
QByteArray withField(QByteArray clip, const ClipField& field, quint32 value);

} // namespace ql240
