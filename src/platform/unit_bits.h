// Reads the bits of one unit of an H.264 or H.265 stream. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace ql240 {

// Zeros past the end.
class UnitBits {
public:
    // `escaped`: a 3 after two zeros is an emulation prevention byte, which is skipped.
    UnitBits(std::span<const std::uint8_t> bytes, bool escaped) : m_bytes(bytes), m_escaped(escaped) {}

    std::uint32_t take(int count) {
        std::uint32_t value = 0;
        for (; count > 0; --count)
            value = value << 1 | bit();
        return value;
    }
    void skip(int count) { take(count); }
    std::uint32_t number() { // unsigned Exp-Golomb code
        int zeros = 0;
        while (zeros < 31 && !bit())
            ++zeros;
        if (zeros < 31)
            return (1U << zeros) - 1 + take(zeros);
        m_isOver |= m_isPast;
        return take(32) - 1;
    }
    // Whether a number started past the end.
    bool isOver() const { return m_isOver; }
    // Signed Exp-Golomb code, in two's complement: the largest one doesn't fit an int.
    std::uint32_t difference() {
        const std::uint32_t value = number();
        return value % 2 ? value / 2 + 1 : 0 - value / 2;
    }

private:
    std::uint32_t bit() {
        if (m_left == 0)
            next();
        return m_byte >> --m_left & 1U;
    }
    void next() {
        const int byte = m_zeros >= 2 && m_at < m_bytes.size() ? m_bytes[m_at] : 0;
        if (byte == 1 || byte == 2)
            m_at = m_bytes.size(); // the next unit starts here
        if (byte == 3 && m_escaped) {
            ++m_at;
            m_zeros = 0;
        }
        m_isPast = m_at >= m_bytes.size();
        m_byte = m_at < m_bytes.size() ? m_bytes[m_at++] : 0;
        m_zeros = m_byte ? 0 : m_zeros + 1;
        m_left = 8;
    }

    std::span<const std::uint8_t> m_bytes;
    bool m_escaped;
    std::size_t m_at = 0;
    std::uint32_t m_byte = 0;
    int m_left = 0;
    int m_zeros = 0;
    bool m_isPast = false;
    bool m_isOver = false;
};

} // namespace ql240
