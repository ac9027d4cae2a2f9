// The lengths of the Huffman codes of AAC (ISO/IEC 14496-3). Constants; any thread.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace ql240::repair {

// Codes of one length are consecutive, and longer ones follow shorter ones: the number of codes of each
// length, from 1, defines them all.
struct CodeBook {
    std::array<std::uint8_t, 19> counts;
    int values = 0; // per code
    // For each code in order: the number of sign bits after it, plus 3 for each value with an escape
    // sequence. Empty: nothing follows.
    std::string_view tails;
};

const CodeBook& aacScaleBook();
const CodeBook& aacBook(int number); // 1 to 11

// The widths of the bands of long and of short windows, divided by four, each as a character from '0'.
std::string_view aacLongBands(std::uint8_t rateIndex);
std::string_view aacShortBands(std::uint8_t rateIndex);

inline constexpr int kAacRates = 12;

} // namespace ql240::repair
