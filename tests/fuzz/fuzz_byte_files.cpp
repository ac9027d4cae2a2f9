// A card's settings folder: lines of a file's name, "=" and its bytes. What is read is saved and read again.
#include <cstdlib>

#include "fuzz/memory_files.h"
#include "settings/card_folder.h"
#include "settings/device_settings.h"

using namespace ql240;

namespace {

void demand(bool holds) {
    if (!holds)
        std::abort();
}

void putFiles(const QByteArray& text, MemoryFiles& card) {
    const QList<QByteArray> lines = text.split('\n');
    for (const QByteArray& line : lines) {
        const auto equals = line.indexOf('=');
        const QByteArray name = line.left(equals);
        if (equals > 0 && !name.contains('\0') && !name.contains('/'))
            card.files.insert(name, line.mid(equals + 1));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    MemoryFiles card;
    putFiles(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)), card);
    const auto before = card.files;
    DeviceSettings record(QString::fromLatin1(MemoryFiles::kFolder), card);
    demand(card.files == before);
    record.setTime(true, QStringLiteral("2012-07-31-18-05-09"));
    demand(record.save());
    demand(card.isClosed());

    // Every byte file says what the record says, whatever was there.
    for (const SettingKey& key : kSettingKeys) {
        CardFolder folder = cardFolderAt(card, MemoryFiles::kFolder);
        const auto name = folder.find(QByteArray("set") + key.name + ".dat");
        demand(!(key.files & kByteWritten) || (name && card.files[*name].size() == 1));
    }
    DeviceSettings again(QString::fromLatin1(MemoryFiles::kFolder), card);
    for (const SettingKey& key : kSettingKeys)
        demand(!(key.files & kByteRead) || uchar(record.*key.value) == uchar(again.*key.value));
    return 0;
}
