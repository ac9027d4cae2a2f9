// A "local.ini" of any bytes: read, and now and then written to, which keeps the other keys.
#include "base/preferences.h"
#include "fuzz/scratch_folder.h"

using namespace ql240;

namespace {

struct Stored {
    QString language;
    QString unit;
    QString tiles;

    Stored() {
        readLanguage(language);
        readSpeedUnit(unit);
        readTileUrl(tiles);
    }
    bool operator==(const Stored&) const = default;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const ScratchFolder folder;
    static quint64 run = 0;
    // A new place every time: Qt caches a file that seems unchanged.
    const QString config = folder.path(QString::number(++run));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(config));
    const QString file = localIniPath();
    if (file.isEmpty())
        std::abort();
    folder.put(QDir(folder.path()).relativeFilePath(file), data, size);

    const Stored before;
    QString last;
    readLastFolder(last);
    if (size % 16 == 0) {
        writeLastFolder(QStringLiteral("/media/카드, \"x\""));
        if (!readLastFolder(last) || last != QStringLiteral("/media/카드, \"x\"") || before != Stored())
            std::abort();
    }
    QDir(config).removeRecursively();
    return 0;
}
