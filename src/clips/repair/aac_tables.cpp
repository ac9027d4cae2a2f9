#include "clips/repair/aac_tables.h"

namespace ql240::repair {
namespace {

constexpr CodeBook kScales{{1, 0, 1, 3, 2, 4, 3, 5, 4, 6, 6, 6, 5, 8, 4, 7, 3, 7, 46}, 1, {}};

constexpr std::array<CodeBook, 11> kBooks{{
    {{1, 0, 0, 0, 8, 0, 24, 0, 24, 8, 16}, 4, {}},
    {{0, 0, 1, 1, 7, 24, 15, 19, 14}, 4, {}},
    {{1, 0, 0, 4, 2, 6, 3, 5, 15, 15, 8, 9, 3, 3, 5, 2},
     4,
     "011112222232343311223232331221224334323244332333223243344233333344442233434443233"},
    {{0, 0, 0, 10, 6, 0, 9, 21, 8, 14, 11, 2},
     4,
     "433331202222121144443333333333332222222222221111444444333333333433344422222243333"},
    {{1, 0, 0, 4, 4, 0, 4, 12, 12, 12, 18, 10, 4}, 2, {}},
    {{0, 0, 0, 9, 0, 16, 13, 8, 23, 8, 4}, 2, {}},
    {{1, 0, 2, 1, 0, 4, 5, 10, 14, 15, 8, 4},
     2,
     "0112221122211222222221122212122222222211222222222222112222222222"},
    {{0, 0, 1, 5, 7, 10, 14, 15, 8, 4},
     2,
     "2212120112222222221122222222221212222222121222222222221212222112"},
    {{1, 0, 2, 1, 0, 4, 3, 8, 11, 20, 31, 38, 32, 14, 4},
     2,
     "0112221122211222222221122222221212222222212222222212221222212222112222222222222122212222222222222222"
     "222212212222222122222222222222212212222122222222222222222222222222222"},
    {{0, 0, 0, 3, 8, 14, 17, 25, 31, 41, 22, 8},
     2,
     "2222112222211222202211222222222222121222222222222121222222222222222222122222122222222222222222121222"
     "222212222221222222222222222221212122222222222222212122212221222222122"},
    {{0, 0, 0, 2, 6, 7, 16, 59, 55, 95, 43, 6},
     2,
     "0281122222212122222221122222222222222255555251215255552222255225552252555252255222155222212552252522"
     "2222252212222221222222222222221222222222224222222421222222222222222222222222222222122222222222222222"
     "21222222222222222222222222222112222222222222222222222222212212122212222211222212212112112"},
}};

constexpr std::string_view kLong96 = "11111111111111222223333344679;@@@@@@@@@@@";
constexpr std::string_view kLong64 = "11111111111111222233344456679::::::::::::::::::";
constexpr std::string_view kLong48 = "111111111122222223333445566778888888888888888888H";
constexpr std::string_view kLong32 = "111111111122222223333445566778888888888888888888888";
constexpr std::string_view kLong24 = "1111111111122222222223333444556677899:;<==@@@@@";
constexpr std::string_view kLong16 = "222222222223333333334444555667789::;<=>?@@@";
constexpr std::string_view kLong8 = "33333333333334444444555566677899:;<=>?@D";
constexpr std::string_view kShort96 = "111111222479";
constexpr std::string_view kShort48 = "11111222333444";
constexpr std::string_view kShort24 = "111111122233445";
constexpr std::string_view kShort16 = "111111112233455";
constexpr std::string_view kShort8 = "111111122223455";

constexpr std::array<std::string_view, kAacRates> kLong{kLong96, kLong96, kLong64, kLong48, kLong48, kLong32,
                                                        kLong24, kLong24, kLong16, kLong16, kLong16, kLong8};
constexpr std::array<std::string_view, kAacRates> kShort{kShort96, kShort96, kShort96, kShort48,
                                                         kShort48, kShort48, kShort24, kShort24,
                                                         kShort16, kShort16, kShort16, kShort8};

} // namespace

const CodeBook& aacScaleBook() {
    return kScales;
}

const CodeBook& aacBook(int number) {
    return kBooks[static_cast<std::size_t>(number - 1)];
}

std::string_view aacLongBands(std::uint8_t rateIndex) {
    return kLong[rateIndex];
}

std::string_view aacShortBands(std::uint8_t rateIndex) {
    return kShort[rateIndex];
}

} // namespace ql240::repair
