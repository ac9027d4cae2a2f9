#include "clips/containers/new_file.h"

#include <sys/stat.h>

#include <QFile>
#include <QFileInfo>

namespace ql240::containers {

bool isSameFile(const QString& one, const QString& other) {
    struct stat first {};
    struct stat second {};
    return ::stat(QFile::encodeName(one).constData(), &first) == 0 &&
           ::stat(QFile::encodeName(other).constData(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

bool NewFile::isFree(QString& reason) const {
    const QFileInfo info(m_name);
    // QSaveFile would follow a link, also one to a file that doesn't exist yet.
    if (info.isSymLink() || (info.exists() && !info.isFile()))
        reason = QStringLiteral("no regular file");
    else if (info.exists() && !m_overwrites)
        reason = QString(kExists);
    return reason.isEmpty();
}

bool NewFile::open(QString& reason) {
    if (!isFree(reason))
        return false;
    m_file = std::make_unique<QSaveFile>(m_name);
    if (!m_file->open(QIODevice::WriteOnly))
        reason = m_file->errorString();
    return reason.isEmpty();
}

// Without permission to overwrite, don't replace a file created in the meantime either.
bool NewFile::commit(QString& reason) {
    if (isFree(reason) && !m_file->commit())
        reason = m_file->errorString();
    return reason.isEmpty();
}

} // namespace ql240::containers
