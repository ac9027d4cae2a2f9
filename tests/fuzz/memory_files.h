// A card's files in memory: any names, any bytes, and a disk that may be full.
#pragma once

#include <fcntl.h>

#include <QHash>
#include <QMap>
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "settings/card_files.h"

namespace ql240 {

class MemoryFiles : public CardFiles {
public:
    static constexpr char kFolder[] = "/card/setting";

    QMap<QByteArray, QByteArray> files; // by name, all in kFolder

    int openDrive(const QByteArray&) override { return kDriveHandle; }
    int openFolder(int, const QByteArray& name) override { return name == "setting" ? kFolderHandle : -1; }
    int open(int, const QByteArray& name, int flags) override {
        if (files.contains(name) == bool(flags & O_CREAT)) {
            errno = EEXIST;
            return -1;
        }
        files[name];
        m_open.insert(++m_last, {name, 0});
        return m_last;
    }
    ssize_t read(int file, char* to, size_t count) override {
        Place& place = m_open[file];
        const QByteArray piece = files[place.name].mid(place.at, static_cast<qsizetype>(count));
        std::memcpy(to, piece.constData(), static_cast<size_t>(piece.size()));
        place.at += piece.size();
        return piece.size();
    }
    ssize_t write(int file, const char* from, size_t count) override {
        Place& place = m_open[file];
        files[place.name].replace(place.at, static_cast<qsizetype>(count), from,
                                  static_cast<qsizetype>(count));
        place.at += static_cast<qsizetype>(count);
        return static_cast<ssize_t>(count);
    }
    off_t size(int file) override { return files[m_open[file].name].size(); }
    int cut(int file, off_t size) override {
        files[m_open[file].name].resize(size);
        return 0;
    }
    int sync(int) override { return 0; }
    void close(int file) override { m_open.remove(file); }
    int rename(int, const QByteArray& from, const QByteArray& to) override {
        if (!files.contains(from))
            return -1;
        files[to] = files.take(from);
        return 0;
    }
    int remove(int, const QByteArray& name) override { return files.remove(name) ? 0 : -1; }
    int makeFolder(int, const QByteArray&) override { return -1; }
    int syncFolder(int) override { return 0; }
    bool list(int folder, const std::function<void(const QByteArray&)>& visit) override {
        if (folder != kFolderHandle)
            return false;
        const QList<QByteArray> names = files.keys();
        std::for_each(names.cbegin(), names.cend(), visit);
        return true;
    }
    bool isClosed() const { return m_open.isEmpty(); }

private:
    struct Place {
        QByteArray name;
        qsizetype at;
    };

    static constexpr int kDriveHandle = 1;
    static constexpr int kFolderHandle = 2;

    QHash<int, Place> m_open;
    int m_last = kFolderHandle;
};

} // namespace ql240
