// Reads the camera's "setting.dat": lines of key, colon and decimal value. Fed in pieces of any size, it
// keeps a few bytes of the present line only, so neither the file's size nor a line's length costs memory.
#pragma once

#include <QByteArrayView>
#include <array>
#include <cstdint>

#include "settings/setting_values.h"

namespace ql240 {

// A decimal integer with white space around it, read byte by byte (Latin-1). Anything else, a value past 32
// bits included, gives 0.
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
    // The file's end, which ends a line as well.
    void finish() { endLine(); }

private:
    enum class Part { Key, Value, Nothing };

    void feedKey(char byte);
    void endLine();
    bool lineBeginsWith(const char* key) const;
    bool mayMatch() const;

    SettingValues& m_values;
    Part m_part = Part::Key;
    std::array<char, 24> m_head = {}; // the line's beginning in lower case, longer than every key
    qsizetype m_headLength = 0;
    DecimalReader m_number;
};

} // namespace ql240
