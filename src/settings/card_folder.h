// Files and folders on a card, open for the lifetime of their objects. CardFiles opens them all, so no
// symbolic link leads off the drive. Any thread, but each object on one at a time.
#pragma once

#include <QByteArray>
#include <QList>
#include <functional>
#include <optional>
#include <utility>

#include "settings/card_files.h"

namespace ql240 {

// An open file or folder; the destructor closes it.
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
    // Reads at most `limit` bytes from the file; `whole` says whether that reached the end.
    QByteArray readStart(qsizetype limit, bool* whole = nullptr);
    bool write(const char* from, ssize_t count) {
        return files().write(handle(), from, static_cast<std::size_t>(count)) == count;
    }
    // Writes `bytes` at the current position and truncates the file after them; false if either failed.
    bool replaceBy(const QByteArray& bytes);
    off_t size() { return files().size(handle()); }
    bool sync() { return files().sync(handle()) == 0; }
};

// A folder on a card, or the drive's root. Names in it are found case-insensitively. The listing that this
// takes is made at most once, and only if a name doesn't exist in its exact spelling.
class CardFolder : public CardHandle {
public:
    // The drive's root.
    CardFolder(CardFiles& files, const QByteArray& drive)
        : CardHandle(files, files.openDrive(drive)), m_path(drive) {}

    // Where the folder is, or would be; for display and for opening it again.
    const QByteArray& path() const { return m_path; }
    // `name` as spelled in the folder: the exact spelling if it exists, otherwise the first match in byte
    // order, otherwise nothing.
    std::optional<QByteArray> find(const QByteArray& name);
    // Whether the listing is complete, so that a name that `find` missed certainly doesn't exist.
    bool isListed();

    // Creates the drive's root folder with its parents if it isn't open, and opens it.
    void makeDrive();
    [[nodiscard]] CardFolder folder(const QByteArray& name);
    bool makeFolder(const QByteArray& name) { return files().makeFolder(handle(), name) == 0; }
    [[nodiscard]] CardFile openForReading(const QByteArray& name);
    // Opens an existing file of exactly this name.
    [[nodiscard]] CardFile openForWriting(const QByteArray& name);
    // Has `write` fill a new file, syncs it and renames it over the old one, so that a card pulled out in
    // between never shows half a file. False if the new file didn't open.
    bool replace(const QByteArray& name, const std::function<bool(CardFile&)>& write);
    // Removes what an interrupted `replace` of `name` left behind.
    void removeRest(const QByteArray& name);
    void sync() { files().syncFolder(handle()); }
    // Logs whether a file in the folder was written. Call it right after the failure, while errno is valid.
    void report(const QByteArray& name, bool written) const;

private:
    CardFolder(CardFiles& files, int handle, QByteArray path)
        : CardHandle(files, handle), m_path(std::move(path)) {}
    CardFile createAside(const QByteArray& aside);

    QByteArray m_path;
    std::optional<QList<QByteArray>> m_names;
    bool m_complete = false;
};

// Opens the folder at `path`, taking its parent as the drive's root.
[[nodiscard]] CardFolder cardFolderAt(CardFiles& files, const QByteArray& path);

} // namespace ql240
