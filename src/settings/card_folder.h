// Files and folders on a card, open as long as their objects live. Everything is opened by CardFiles, so no
// link leads away from the drive. Any thread, each object one at a time.
#pragma once

#include <QByteArray>
#include <QList>
#include <functional>
#include <optional>
#include <utility>

#include "settings/card_files.h"

namespace ql240 {

// An open file or folder, closed at the end of its life.
class CardHandle {
public:
    CardHandle(CardFiles& files, int handle) : m_files(&files), m_handle(handle) {}
    ~CardHandle() {
        if (isOpen())
            m_files->close(m_handle);
    }
    CardHandle(CardHandle&& other) noexcept
        : m_files(other.m_files), m_handle(std::exchange(other.m_handle, -1)) {}
    CardHandle& operator=(CardHandle&& other) noexcept {
        std::swap(m_files, other.m_files);
        std::swap(m_handle, other.m_handle);
        return *this;
    }

    bool isOpen() const { return m_handle >= 0; }
    int handle() const { return m_handle; }

protected:
    CardFiles& files() const { return *m_files; }

private:
    CardFiles* m_files;
    int m_handle;
};

class CardFile : public CardHandle {
public:
    using CardHandle::CardHandle;

    ssize_t read(char* to, std::size_t count) { return files().read(handle(), to, count); }
    // What the file begins with, `limit` bytes at most; `whole` says whether that is all of it.
    QByteArray readStart(qsizetype limit, bool* whole = nullptr);
    bool write(const char* from, ssize_t count) {
        return files().write(handle(), from, static_cast<std::size_t>(count)) == count;
    }
    // Writes `bytes` at the file's present position, cuts the file behind them; false when either failed.
    bool replaceBy(const QByteArray& bytes);
    off_t size() { return files().size(handle()); }
    bool sync() { return files().sync(handle()) == 0; }
};

// A folder on a card, or the drive's root. Files and folders in it are found without regard to case. The
// listing that this takes is made at most once, when a name isn't there in its exact spelling.
class CardFolder : public CardHandle {
public:
    // The drive's root.
    CardFolder(CardFiles& files, const QByteArray& drive)
        : CardHandle(files, files.openDrive(drive)), m_path(drive) {}

    // Where the folder is, or would be: for showing and for asking again.
    const QByteArray& path() const { return m_path; }
    // `name` in the folder's own spelling; of several the exact one, else the first in byte order; else
    // nothing.
    std::optional<QByteArray> find(const QByteArray& name);
    // Whether a name that `find` didn't see is certain not to be there.
    bool isListed();

    // Makes the drive's root, where that isn't open, with all folders above it.
    void makeDrive();
    [[nodiscard]] CardFolder folder(const QByteArray& name);
    bool makeFolder(const QByteArray& name) { return files().makeFolder(handle(), name) == 0; }
    [[nodiscard]] CardFile openForReading(const QByteArray& name);
    // An existing file, in this very spelling.
    [[nodiscard]] CardFile openForWriting(const QByteArray& name);
    // Has `write` fill a new file, which then takes the name and the place of an old one: on the disk before
    // that, for a card pulled out in between must not show half a file. False if the new one didn't open.
    bool replace(const QByteArray& name, const std::function<bool(CardFile&)>& write);
    // Takes away what an interrupted `replace` has left of `name`.
    void removeRest(const QByteArray& name);
    void sync() { files().syncFolder(handle()); }
    // Logs what became of a file in it; right after what went wrong, for errno's sake.
    void report(const QByteArray& name, bool written) const;

private:
    CardFolder(CardFiles& files, int handle, QByteArray path)
        : CardHandle(files, handle), m_path(std::move(path)) {}
    CardFile createAside(const QByteArray& aside);

    QByteArray m_path;
    std::optional<QList<QByteArray>> m_names;
    bool m_complete = false;
};

// The folder at `path`, whose parent is the drive's root.
[[nodiscard]] CardFolder cardFolderAt(CardFiles& files, const QByteArray& path);

} // namespace ql240
