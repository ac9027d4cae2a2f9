// This process's child processes and their descendants.
#pragma once

#include <QCoreApplication>
#include <QDirIterator>
#include <QFile>
#include <QMultiMap>

namespace ql240 {

// Process ids; a process's children come before it.
inline QList<qint64> childProcesses() {
    QMultiMap<qint64, qint64> children;
    QDirIterator entries(QStringLiteral("/proc"), QDir::Dirs);
    while (entries.hasNext()) {
        entries.next();
        QFile file(entries.filePath() + QStringLiteral("/stat"));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray stat = file.readAll();
        const QByteArrayList fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        children.insert(fields.value(1).toLongLong(), entries.fileName().toLongLong());
    }
    QList<qint64> found = children.values(QCoreApplication::applicationPid());
    for (qsizetype i = 0; i < found.size(); ++i)
        found += children.values(found.at(i));
    return found;
}

} // namespace ql240
