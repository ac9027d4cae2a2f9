// "version.txt" of any bytes.
#include "fuzz/scratch_folder.h"
#include "settings/card.h"

using namespace ql240;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const ScratchFolder update;
    update.put(QStringLiteral("version.txt"), data, size);
    const auto text = openVersionText(update.path());
    // One character a byte at most.
    if (!text || text->size() > static_cast<qsizetype>(size) || readVersionText(update.path()) != *text)
        std::abort();
    return 0;
}
