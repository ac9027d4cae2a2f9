// "setting.dat": fed in pieces it says what it says as a whole.
#include <cstdint>
#include <cstdlib>

#include "settings/setting_text.h"

using namespace ql240;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArrayView text(data, static_cast<qsizetype>(size));
    SettingValues whole;
    SettingTextReader reader(whole);
    reader.feed(text);
    reader.finish();

    SettingValues inPieces;
    SettingTextReader pieceReader(inPieces);
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype count = qMin<qsizetype>(text.size() - at, 1 + (at * 7 + text.size()) % 11);
        pieceReader.feed(text.sliced(at, count));
        at += count;
    }
    pieceReader.finish();
    if (whole != inPieces)
        std::abort();
    return 0;
}
