// Parses the camera's "setting.dat": lines of key, colon and decimal value. Can be fed in pieces of any size
// and keeps only a few bytes of the current line, so memory use depends neither on the file's size nor on a
// line's length.
#pragma once

#include <QByteArrayView>
#include <array>
#include <cstdint>

#include "settings/setting_values.h"

namespace ql240 {

// Parses a decimal integer surrounded by white space, byte by byte (Latin-1). Anything else, including a
// value that overflows 32 bits, gives 0.
class DecimalReader {
public:
    void feed(char byte);
    int value() const;

private:
    enum class Phase { Before, Sign, Digits, After, Bad };
    Phase m_phase = Phase::Before;
    bool m_negative = false;
    std::int64_t m_magnitude = 0;
};

class SettingTextReader {
public:
    explicit SettingTextReader(SettingValues& values) : m_values(values) {}

    void feed(QByteArrayView bytes);
    // The end of the file also ends a line.
    void finish() { endLine(); }

private:
    enum class Part { Key, Value, Nothing };

    void feedKey(char byte);
    void endLine();
    bool lineBeginsWith(const char* key) const;
    bool mayMatch() const;

    SettingValues& m_values;
    Part m_part = Part::Key;
    std::array<char, 24> m_head = {}; // start of the line in lower case; longer than every key
    qsizetype m_headLength = 0;
    DecimalReader m_number;
};

} // namespace ql240
