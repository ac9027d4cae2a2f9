// A card in a temporary folder, with files written and read as bytes.
#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <optional>

namespace ql240 {

class MadeCard {
public:
    QString drive() const { return m_folder.path(); }
    QString path(const QString& name) const { return m_folder.filePath(name); }

    void put(const QString& name, const QByteArray& bytes) const {
        QDir().mkpath(QFileInfo(path(name)).path());
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot make %s", qPrintable(path(name)));
    }

    // Nothing if there is no such file.
    std::optional<QByteArray> bytes(const QString& name) const {
        QFile file(path(name));
        if (!file.open(QIODevice::ReadOnly))
            return std::nullopt;
        return file.readAll();
    }

    QStringList files(const QString& folder) const {
        return QDir(path(folder)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

private:
    QTemporaryDir m_folder;
};

} // namespace ql240
