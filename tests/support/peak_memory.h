// How much memory the process had at most since the last restart of the count.
#pragma once

#include <QFile>

namespace ql240 {

class PeakMemory {
public:
    PeakMemory() : m_before(restart()) {}
    // Beyond what there was at first.
    qint64 grownMiB() const { return (statusKiB("VmHWM:") - m_before) / 1024 - kKeptBackMiB; }

private:
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    static constexpr qint64 kKeptBackMiB = 512; // of what was freed, and beside what is in use
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
