#include "settings/card_folder.h"

#include <fcntl.h>

#include <QDir>
#include <QFile>
#include <algorithm>
#include <cerrno>

#include "platform/logging.h"

namespace ql240 {
namespace {

// A new file is written under this name and then renamed.
QByteArray asideName(const QByteArray& name) {
    return name.chopped(4) + ".new";
}

} // namespace

QByteArray CardFile::readStart(qsizetype limit, bool* whole) {
    QByteArray bytes;
    ssize_t count = 1;
    while (count > 0 && bytes.size() <= limit) {
        char piece[4096];
        count = read(piece, sizeof piece);
        bytes.append(piece, std::max<qsizetype>(0, count));
    }
    if (whole)
        *whole = count == 0 && bytes.size() <= limit;
    return bytes.left(limit);
}

bool CardFile::replaceBy(const QByteArray& bytes) {
    if (!write(bytes.constData(), bytes.size()))
        return false;
    const off_t now = size();
    return now == bytes.size() || (now > bytes.size() && files().cut(handle(), bytes.size()) == 0);
}

bool CardFolder::isListed() {
    if (m_names)
        return m_complete;
    m_names.emplace();
    m_complete = files().list(handle(), [this](const QByteArray& entry) {
        m_names->append(QByteArray(entry.constData(), entry.size()));
    });
    std::sort(m_names->begin(), m_names->end());
    return m_complete;
}

std::optional<QByteArray> CardFolder::find(const QByteArray& name) {
    isListed();
    if (std::binary_search(m_names->cbegin(), m_names->cend(), name))
        return name;
    const auto found = std::find_if(m_names->cbegin(), m_names->cend(), [&](const QByteArray& entry) {
        return entry.compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == m_names->cend() ? std::nullopt : std::optional(*found);
}

void CardFolder::makeDrive() {
    QDir().mkpath(QFile::decodeName(m_path));
    *this = CardFolder(files(), m_path);
}

CardFolder CardFolder::folder(const QByteArray& name) {
    const auto open = [this](const QByteArray& spelled) {
        return CardFolder(files(), files().openFolder(handle(), spelled), m_path + '/' + spelled);
    };
    CardFolder exact = open(name);
    if (const auto spelled = exact.isOpen() ? std::nullopt : find(name); spelled && *spelled != name)
        if (CardFolder other = open(*spelled); other.isOpen())
            return other;
    return exact;
}

CardFile CardFolder::openForReading(const QByteArray& name) {
    const auto open = [this](const QByteArray& spelled) {
        return CardFile(files(), files().open(handle(), spelled, O_RDONLY));
    };
    CardFile exact = open(name);
    const QByteArray spelled = exact.isOpen() ? name : find(name).value_or(name);
    return spelled == name ? std::move(exact) : open(spelled);
}

CardFile CardFolder::openForWriting(const QByteArray& name) {
    return CardFile(files(), files().open(handle(), name, O_WRONLY));
}

// An existing file is left from an interrupted save, or is a link placed there to redirect the write: remove
// it.
CardFile CardFolder::createAside(const QByteArray& aside) {
    CardFile fresh(files(), files().open(handle(), aside, O_WRONLY | O_CREAT));
    if (fresh.isOpen() || errno != EEXIST || files().remove(handle(), aside) != 0)
        return fresh;
    return CardFile(files(), files().open(handle(), aside, O_WRONLY | O_CREAT));
}

bool CardFolder::replace(const QByteArray& name, const std::function<bool(CardFile&)>& write) {
    const QByteArray aside = asideName(name);
    bool written = false;
    {
        CardFile file = createAside(aside);
        if (!file.isOpen())
            return false;
        written = write(file) && file.sync();
    }
    written = written && files().rename(handle(), aside, name) == 0;
    report(name, written);
    if (!written)
        files().remove(handle(), aside);
    return true;
}

void CardFolder::report(const QByteArray& name, bool written) const {
    const int error = errno;
    const QString file = QFile::decodeName(m_path + '/' + name);
    if (written)
        qCDebug(lcCard) << "wrote" << file;
    else
        qCWarning(lcCard) << "didn't write" << file << qt_error_string(error);
}

void CardFolder::removeRest(const QByteArray& name) {
    if (const auto rest = find(asideName(name)))
        files().remove(handle(), *rest);
}

CardFolder cardFolderAt(CardFiles& files, const QByteArray& path) {
    const auto slash = path.lastIndexOf('/');
    return CardFolder(files, slash > 0 ? path.left(slash) : QByteArray("/")).folder(path.mid(slash + 1));
}

} // namespace ql240
