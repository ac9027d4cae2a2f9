// A card's settings folder: lines of a file's name, "=" and its bytes. What is read is saved and read again.
#include "fuzz/scratch_folder.h"
#include "settings/card_folder.h"
#include "settings/device_settings.h"

using namespace ql240;

namespace {

void demand(bool holds) {
    if (!holds)
        std::abort();
}

void putFiles(const QByteArray& text, const QString& folder) {
    const QList<QByteArray> lines = text.split('\n');
    for (const QByteArray& line : lines) {
        const auto equals = line.indexOf('=');
        const QByteArray name = line.left(equals);
        QFile file(folder + u'/' + QFile::decodeName(name));
        if (equals > 0 && !name.contains('\0') && !name.contains('/') && file.open(QIODevice::WriteOnly))
            file.write(line.mid(equals + 1));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const ScratchFolder card;
    const QString folder = card.path("setting");
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    putFiles(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)), folder);
    DeviceSettings record(folder);
    record.setTime(true, QStringLiteral("2012-07-31-18-05-09"));
    demand(record.save());

    // Every byte file says what the record says, whatever was there.
    CardFolder saved = cardFolderAt(systemCardFiles(), QFile::encodeName(folder));
    const DeviceSettings again(folder);
    for (const SettingKey& key : kSettingKeys) {
        const auto name = saved.find(QByteArray("set") + key.name + ".dat");
        demand(!(key.files & kByteWritten) || (name && saved.openForReading(*name).size() == 1));
        demand(!(key.files & kByteRead) || uchar(record.*key.value) == uchar(again.*key.value));
    }
    return 0;
}
