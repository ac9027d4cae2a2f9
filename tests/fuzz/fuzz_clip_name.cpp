// A file of any name in a folder of recordings.
#include <fcntl.h>
#include <unistd.h>

#include "clips/clip.h"
#include "clips/clip_folder.h"
#include "clips/clip_name.h"
#include "fuzz/scratch_folder.h"

using namespace ql240;

namespace {

void demand(bool holds) {
    if (!holds)
        std::abort();
}

void checkName(const QString& name) {
    const QString date = clipDateText(name);
    demand(date.size() >= 8 && date.size() <= 10 && date[4] == u'.' && date[7] == u'.');
    const qint32 category = clipCategory(name);
    demand(category >= kOtherClip && category <= kEventClip);
    demand(category == clipCategory(name.toLower()) || name.toLower().size() != name.size());
}

// The folder lists the file exactly if it is named like a recording and not hidden.
void checkFolder(const ScratchFolder& folder, const QByteArray& name) {
    const QByteArray path = QFile::encodeName(folder.path()) + '/' + name;
    const int file = ::open(path.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0)
        return;
    demand(::write(file, "x", 1) == 1);
    ::close(file);
    const ClipFolder clips(folder.path());
    const QString decoded = QFile::decodeName(name);
    const bool isText = QFile::encodeName(decoded) == name;
    const bool isListed = namedLikeRecording(decoded) && !decoded.startsWith(u'.');
    demand(!isText || clips.count() == (isListed ? 1 : 0));
    for (const Clip* clip : clips.values())
        demand(clip->file().fileName() == decoded && QFile::exists(clip->file().filePath()));
    ::unlink(path.constData());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const ScratchFolder folder;
    const QByteArray name(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    checkName(QString::fromUtf8(name));
    if (!name.isEmpty() && name.size() < 256 && !name.contains('\0') && !name.contains('/'))
        checkFolder(folder, name);
    releaseRetiredClips(nullptr);
    return 0;
}
