#include "cli/clip_input.h"

#include <dirent.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <cerrno>
#include <cstring>
#include <memory>

#include "base/regular_file.h"
#include "clips/clip.h"
#include "clips/clip_folder.h"

namespace ql240::cli {
namespace {

// Copies a stream into a seekable temporary file; false, with the reason, if that fails.
bool spool(QFile& from, QTemporaryFile& to, QString& reason) {
    constexpr std::int64_t kPiece = 65536;
    if (!to.open()) {
        reason = to.errorString();
        return false;
    }
    for (;;) {
        const QByteArray piece = from.read(kPiece);
        if (piece.isEmpty())
            break;
        if (to.write(piece) != piece.size()) {
            reason = to.errorString();
            return false;
        }
    }
    if (from.error() != QFileDevice::NoError || !to.flush()) {
        reason = from.error() != QFileDevice::NoError ? from.errorString() : to.errorString();
        return false;
    }
    return true;
}

std::unique_ptr<QIODevice> openStandardInput(QString& reason) {
    auto input = std::make_unique<QFile>();
    if (!input->open(STDIN_FILENO, QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        reason = input->errorString();
        return nullptr;
    }
    if (!input->isSequential())
        return input;
    auto copy = std::make_unique<QTemporaryFile>();
    if (!spool(*input, *copy, reason))
        return nullptr;
    return copy;
}

std::unique_ptr<QIODevice> openFile(const QString& name, QString& reason) {
    auto input = std::make_unique<QFile>(name);
    return openRegularFile(*input, reason) ? std::move(input) : nullptr;
}

} // namespace

QString folderProblem(const QString& name) {
    if (DIR* folder = ::opendir(QFile::encodeName(name).constData())) {
        ::closedir(folder);
        return {};
    }
    return QString::fromLocal8Bit(std::strerror(errno));
}

QStringList clipNames(const QStringList& names, Reports& reports) {
    QStringList clips;
    for (const QString& name : names) {
        if (name == kStandardInput || !QFileInfo(name).isDir()) {
            clips << name;
            continue;
        }
        const ClipFolder folder(name);
        const QString problem = folderProblem(name);
        if (!problem.isEmpty())
            reports.fail(name, problem);
        else if (folder.count() == 0)
            reports.fail(name, QStringLiteral("no clip in it"));
        for (const Clip* clip : folder.values())
            clips << (name.endsWith(u'/') ? name : name + u'/') + clip->file().fileName();
    }
    return clips;
}

std::optional<ClipInput> readClip(const QString& name, RecordPart part, Reports& reports) {
    QString reason;
    const bool isStandardInput = name == kStandardInput;
    const std::unique_ptr<QIODevice> device =
        isStandardInput ? openStandardInput(reason) : openFile(name, reason);
    if (!device) {
        reports.fail(name, reason);
        return std::nullopt;
    }
    ClipInput input;
    const QString path = isStandardInput ? QString() : QFileInfo(name).absoluteFilePath();
    input.name = name;
    input.fileName = path.section(u'/', -1);
    input.bytes = device->size();
    input.contents = readClipContents(*device, path, part);
    if (!input.contents.readError.isEmpty())
        reports.fail(name, input.contents.readError);
    else if (*input.contents.container == 0)
        reports.fail(name, QStringLiteral("neither an MP4 nor an AVI file"));
    return *input.contents.container != 0 ? std::optional(std::move(input)) : std::nullopt;
}

void forEachClip(const QStringList& names, RecordPart part, Reports& reports,
                 const std::function<bool(const ClipInput&)>& visit) {
    for (qsizetype i = 0; i < names.size(); ++i) {
        reports.progress(i + 1, names.size(), names[i]);
        const std::optional<ClipInput> input = readClip(names[i], part, reports);
        if (input && !visit(*input))
            return;
    }
}

} // namespace ql240::cli
