// What lies on a card, which comes from a stranger's hands: everything is opened beneath the drive's root and
// through no link, since a link may lead to what is the user's own. Only regular files are opened: a folder,
// a pipe, a socket or a device under one of the names counts as a file that doesn't open, and nothing waits
// for a pipe's other end. Any thread; all of it may block on the card's reader.
#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <functional>

namespace ql240 {

// The operations, behind virtual functions so that tests can let each one fail. Results are those of the
// system calls: negative with errno set when they fail. `folder` is what openDrive or openFolder gave; a name
// is that of one entry in it, never a path.
class CardFiles {
public:
    virtual ~CardFiles() = default;

    // The drive's root. How the machine leads there is its own affair, by links too.
    [[nodiscard]] virtual int openDrive(const QByteArray& path);
    [[nodiscard]] virtual int openFolder(int folder, const QByteArray& name);
    // With O_CREAT always a new file.
    [[nodiscard]] virtual int open(int folder, const QByteArray& name, int flags);
    virtual ssize_t read(int file, char* to, std::size_t count);
    virtual ssize_t write(int file, const char* from, std::size_t count);
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

} // namespace ql240
