// A clip to be cut and repaired: its tree is written back as it was, and what cut and repair make of it are
// clips with samples of the original.
#include <algorithm>

#include "clips/cut/clip_cutter.h"
#include "clips/repair/clip_repair.h"
#include "fuzz/scratch_folder.h"
#include "support/clip_samples.h"

using namespace ql240;
using namespace ql240::containers;

namespace {

constexpr int kCompared = 200; // samples of a repaired clip
const QString kHealthyClip = QStringLiteral(QL240_HEALTHY_CLIP);

void demand(bool holds) {
    if (!holds)
        std::abort();
}

QByteArray bytesOf(const QString& path) {
    QFile file(path);
    demand(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

class Folder {
public:
    QString put(const char* name, const QByteArray& bytes) const {
        m_folder.put(QLatin1StringView(name), reinterpret_cast<const uint8_t*>(bytes.constData()),
                     static_cast<size_t>(bytes.size()));
        return path(name);
    }

    // Writes the tree back.
    void copy(const QString& clip) const {
        QFile from(clip);
        QFile to(path("copy"));
        demand(from.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
        demand(to.open(QIODevice::ReadWrite | QIODevice::Truncate));
        const std::optional<QByteArray> copied = writtenBack(from, to);
        demand(!copied || *copied == bytesOf(clip));
    }

    void cut(const QString& clip, std::int64_t fromUs) const {
        constexpr std::int64_t kLengthUs = 500'000;
        const QString output = path("piece");
        const CutResult result =
            cutClip({clip, {fromUs, fromUs + kLengthUs}, fromUs % 20'000 == 0, output, true});
        if (result.status != CutResult::Status::Done)
            return;
        checkOutput(output, bytesOf(clip));
        copy(output);
    }

    void repair(const QByteArray& bytes, const QString& pattern) const {
        const QString damaged = put("damaged", bytes);
        const QString output = path("repaired");
        const RepairResult result = repairClip({damaged, pattern, output, true});
        demand(bytesOf(damaged) == bytes);
        demand(result.status != RepairStatus::WriteFailed);
        if (result.status == RepairStatus::Repaired)
            checkOutput(output, bytes);
    }

private:
    QString path(const char* name) const { return m_folder.path(QLatin1StringView(name)); }

    // All of its samples are there, and in the original.
    static void checkOutput(const QString& clip, const QByteArray& original) {
        const QByteArray bytes = bytesOf(clip);
        QFile file(clip);
        demand(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
        int count = 0;
        demand(eachSample(file, [&](ByteRange place) {
            demand(place.start >= 0 && place.end() <= bytes.size());
            demand(++count > kCompared || original.contains(bytes.mid(place.start, place.size)));
        }));
        demand(count > 0);
    }

    ScratchFolder m_folder;
};

QByteArray withoutIndex(const QByteArray& clip) {
    const qsizetype index = clip.startsWith("RIFF") ? clip.lastIndexOf("idx1") : clip.lastIndexOf("moov") - 4;
    return clip.first(std::max<qsizetype>(index, 0));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Folder folder;
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    // By its name, sensor data behind an AVI clip may begin late.
    const QString clip = folder.put(size % 2 == 0 ? "REC_clip" : "EVT_clip", bytes);
    folder.copy(clip);
    folder.cut(clip, bytes.isEmpty() ? 0 : static_cast<uchar>(bytes.back()) * 10'000);
    folder.repair(bytes, kHealthyClip);
    folder.repair(withoutIndex(bytes), clip);
    return 0;
}
