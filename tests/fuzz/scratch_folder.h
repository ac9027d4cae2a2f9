// A folder in memory, where the system has one, for what is only read from files.
#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>

namespace ql240 {

class ScratchFolder {
public:
    ScratchFolder() {
        if (!m_folder.isValid())
            std::abort();
    }
    QString path(const QString& name = {}) const { return m_folder.filePath(name); }
    void put(const QString& name, const uint8_t* data, size_t size) const {
        QFile file(path(name));
        const auto length = static_cast<qint64>(size);
        if (!file.open(QIODevice::WriteOnly) ||
            file.write(reinterpret_cast<const char*>(data), length) != length)
            std::abort();
    }

private:
    static QString shape() {
        const QString memory = QStringLiteral("/dev/shm");
        return (QDir(memory).exists() ? memory : QDir::tempPath()) + QStringLiteral("/ql240-fuzz-XXXXXX");
    }

    QTemporaryDir m_folder{shape()};
};

} // namespace ql240
