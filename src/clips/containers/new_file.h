// An output file that appears under its name only when complete, and replaces another one only on request.
// One thread at a time.
#pragma once

#include <QSaveFile>
#include <memory>

namespace ql240::containers {

// Whether two names lead to the same file, also through links; false if either doesn't exist.
bool isSameFile(const QString& one, const QString& other);

class NewFile {
public:
    // The reason if there is a file that may not be replaced.
    static constexpr QLatin1StringView kExists{"it exists"};

    // `overwrites`: replaces an existing file.
    NewFile(QString name, bool overwrites) : m_name(std::move(name)), m_overwrites(overwrites) {}

    // Both return false, with the reason, on failure. A link is never followed or replaced. Without commit(),
    // no file appears.
    [[nodiscard]] bool open(QString& reason);
    [[nodiscard]] bool commit(QString& reason);

    const QString& name() const { return m_name; }
    // Only after open().
    QSaveFile& device() { return *m_file; }

private:
    bool isFree(QString& reason) const;

    QString m_name;
    bool m_overwrites;
    std::unique_ptr<QSaveFile> m_file;
};

} // namespace ql240::containers
