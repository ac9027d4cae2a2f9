#include "clips/cut/clip_cutter.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>

#include "base/regular_file.h"
#include "clips/clip_name.h"
#include "clips/containers/new_file.h"
#include "clips/cut/avi_cut.h"
#include "clips/cut/mp4_cut.h"
#include "clips/formats/trailer.h"

namespace ql240 {
namespace {

constexpr std::int64_t kUsPerMs = 1000;
constexpr std::int64_t kMostTableBytes = INT64_C(1) << 20;
constexpr qsizetype kPrefixLength = 4; // "REC_"
constexpr qsizetype kStampLength = 19;

// As the viewer sees the path.
bool startsLate(const QString& clip) {
    return sensorfiles::trailerStartsLate(QFileInfo(clip).absoluteFilePath());
}

bool isRiff(QFile& file) {
    return file.seek(0) && file.read(4) == "RIFF";
}

std::unique_ptr<ClipPiece> pieceOf(QFile& file, const CutRequest& request, QString& problem) {
    if (!isRiff(file))
        return cut::pieceOfMp4(file, request.range, request.keepsSound, problem);
    return cut::pieceOfAvi(file, request.range, request.keepsSound, startsLate(request.clip), problem);
}

void writePiece(QFile& clip, ClipPiece& piece, containers::NewFile& output, const CutProgress& progress,
                CutResult& result) {
    const std::int64_t total = piece.bytes();
    containers::Copier copier(clip, output.device(), [&](std::int64_t bytes) {
        return !progress || progress(std::min(bytes, total), total);
    });
    piece.write(copier);
    const bool isWritten = copier.finish();
    if (copier.isCancelled())
        result.status = CutResult::Status::Cancelled;
    else if (!isWritten)
        result.reason = copier.failure();
    else if (output.commit(result.reason))
        result.status = CutResult::Status::Done;
}

} // namespace

QString cutName(const QString& fileName, std::int64_t fromUs) {
    const qsizetype dot = fileName.lastIndexOf(u'.');
    const QString ending = dot < 0 ? QString() : fileName.sliced(dot);
    QString name = dot < 0 ? fileName : fileName.first(dot);
    const QDateTime start = clipStart(fileName);
    if (start.isValid()) {
        const QString stamp =
            start.addMSecs(fromUs / kUsPerMs).toString(QStringLiteral("yyyy_MM_dd_hh_mm_ss"));
        name.replace(kPrefixLength, kStampLength, stamp);
    }
    for (const QLatin1StringView mark : sensorfiles::kLateMarks)
        name.replace(mark, QLatin1StringView("REC_"), Qt::CaseInsensitive);
    return name + QStringLiteral("_cut") + ending;
}

CutResult cutClip(const CutRequest& request, const CutProgress& progress) {
    CutResult result;
    result.output = request.output;
    QFile clip(request.clip);
    if (!openRegularFile(clip, result.reason))
        return result;
    if (request.range.fromUs < 0 || request.range.fromUs > request.range.toUs) {
        result.reason = QStringLiteral("the piece ends before it begins");
        return result;
    }
    const std::unique_ptr<ClipPiece> piece = pieceOf(clip, request, result.reason);
    if (!piece)
        return result;
    // Tables with lies in them can name the same bytes again and again.
    if (piece->bytes() > 2 * clip.size() + kMostTableBytes) {
        result.reason = QStringLiteral("its piece would be larger than the clip");
        return result;
    }
    result.range = piece->range();
    result.remarks = piece->remarks();
    if (result.output.isEmpty())
        result.output = cutName(QFileInfo(request.clip).fileName(), result.range.fromUs);
    if (isRiff(clip) && startsLate(result.output))
        result.remarks << QStringLiteral(
            "EVT_ or MOT_ in its path: the viewer will assume that its sensor data begin late");
    if (containers::isSameFile(request.clip, result.output)) {
        result.reason = QStringLiteral("%1 is the clip itself").arg(result.output);
        return result;
    }
    containers::NewFile output(result.output, request.overwrites);
    if (output.open(result.reason))
        writePiece(clip, *piece, output, progress, result);
    else
        result.reason = QStringLiteral("%1: %2").arg(result.output, result.reason);
    return result;
}

} // namespace ql240
