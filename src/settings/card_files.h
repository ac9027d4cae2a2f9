// File operations on a card, whose contents are untrusted: everything is opened beneath the drive's root and
// without following symbolic links, which might lead to the user's own files. Only regular files are opened:
// a folder, pipe, socket or device under one of the names counts as a file that doesn't open, and nothing
// blocks on a pipe's other end. Any thread; every call may block on the card reader.
#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <functional>

namespace ql240 {

// Virtual so that tests can make each operation fail. Results are those of the system calls: negative with
// errno set on failure. `folder` comes from openDrive or openFolder; a name is a single entry in it, never a
// path.
class CardFiles {
public:
    virtual ~CardFiles() = default;

    // The drive's root. Symbolic links on the path to it are followed: they belong to this machine, not to
    // the card.
    [[nodiscard]] virtual int openDrive(const QByteArray& path);
    [[nodiscard]] virtual int openFolder(int folder, const QByteArray& name);
    // With O_CREAT, fails if the file exists.
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
    // Flushes the folder's file system.
    virtual int syncFolder(int folder);
    // Calls `visit` with each name in the folder; false if the listing is incomplete.
    virtual bool list(int folder, const std::function<void(const QByteArray&)>& visit);

protected:
    // openat2(); fails with ENOSYS on kernels without it.
    virtual int openBeneath(int folder, const char* name, int flags);

private:
    int openEntry(int folder, const QByteArray& name, int flags);
};

CardFiles& systemCardFiles();

} // namespace ql240
