// What lies on a card, which comes from a stranger's hands: everything is opened beneath the drive's root and
// through no link, since a link may lead to what is the user's own. Only regular files are opened: a folder,
// a pipe, a socket or a device under one of the names counts as a file that doesn't open, and nothing waits
// for a pipe's other end. Any thread; all of it may block on the card's reader.
#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QList>
#include <functional>
#include <optional>
#include <utility>

namespace ql240 {

// The operations, behind virtual functions so that tests can let each one fail. Results are those of the
// system calls: negative with errno set when they fail. `folder` is what openDrive or openFolder gave; a name
// is that of one entry in it, never a path.
class CardFiles {
public:
    virtual ~CardFiles() = default;

    // The drive's root. How the machine leads there is its own affair, by links too.
    virtual int openDrive(const QByteArray& path);
    virtual int openFolder(int folder, const QByteArray& name);
    // With O_CREAT always a new file.
    virtual int open(int folder, const QByteArray& name, int flags);
    virtual ssize_t read(int file, char* to, size_t count);
    virtual ssize_t write(int file, const char* from, size_t count);
    virtual off_t size(int file);
    virtual int cut(int file, off_t size);
    virtual int sync(int file);
    virtual void close(int fileOrFolder);
    virtual int rename(int folder, const QByteArray& from, const QByteArray& to);
    virtual int remove(int folder, const QByteArray& name);
    virtual int makeFolder(int folder, const QByteArray& name);
    // Writes out everything that the folder's file system still holds back.
    virtual int syncFolder(int folder);
    // Calls `visit` with each name of the folder; false where the listing is not complete.
    virtual bool list(int folder, const std::function<void(const QByteArray&)>& visit);

protected:
    // Fails with ENOSYS where the kernel is too old for it.
    virtual int openBeneath(int folder, const char* name, int flags);

private:
    int openEntry(int folder, const QByteArray& name, int flags);
};

CardFiles& systemCardFiles();

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

    ssize_t read(char* to, size_t count) { return files().read(handle(), to, count); }
    // What the file begins with, `limit` bytes at most; `whole` says whether that is all of it.
    QByteArray readStart(qsizetype limit, bool* whole = nullptr);
    bool write(const char* from, ssize_t count) {
        return files().write(handle(), from, size_t(count)) == count;
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
    CardFolder folder(const QByteArray& name);
    bool makeFolder(const QByteArray& name) { return files().makeFolder(handle(), name) == 0; }
    CardFile openForReading(const QByteArray& name);
    // An existing file, in this very spelling.
    CardFile openForWriting(const QByteArray& name);
    // Has `write` fill a new file, which then takes the name and the place of an old one: on the disk before
    // that, for a card pulled out in between must not show half a file. False if the new one didn't open.
    bool replace(const QByteArray& name, const std::function<bool(CardFile&)>& write);
    // Takes away what an interrupted `replace` has left of `name`.
    void removeRest(const QByteArray& name);
    void sync() { files().syncFolder(handle()); }

private:
    CardFolder(CardFiles& files, int handle, QByteArray path)
        : CardHandle(files, handle), m_path(std::move(path)) {}
    CardFile createAside(const QByteArray& aside);

    QByteArray m_path;
    std::optional<QList<QByteArray>> m_names;
    bool m_complete = false;
};

// The folder at `path`, whose parent is the drive's root.
CardFolder cardFolderAt(CardFiles& files, const QByteArray& path);

} // namespace ql240
