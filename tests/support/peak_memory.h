// The peak of the process's memory since the count was last reset.
#pragma once

#include <QFile>

namespace ql240 {

class PeakMemory {
public:
    PeakMemory() : m_before(restart()) {}
    // Growth over the memory at the start.
    qint64 grownMiB() const { return (statusKiB("VmHWM:") - m_before) / 1024 - kKeptBackMiB; }

private:
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    static constexpr qint64 kKeptBackMiB = 512; // freed memory that the sanitizer keeps, and its overhead
#else
    static constexpr qint64 kKeptBackMiB = 0;
#endif

    static qint64 restart() {
        QFile marks(QStringLiteral("/proc/self/clear_refs"));
        if (marks.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            marks.write("5");
        return statusKiB("VmRSS:");
    }
    static qint64 statusKiB(const QByteArray& name) {
        QFile status(QStringLiteral("/proc/self/status"));
        const QByteArray all = status.open(QIODevice::ReadOnly) ? status.readAll() : QByteArray();
        return all.mid(all.indexOf(name) + name.size()).trimmed().split(' ').value(0).toLongLong();
    }

    qint64 m_before;
};

} // namespace ql240
