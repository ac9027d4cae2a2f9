#include "clips/containers/copier.h"

#include <unistd.h>

#include <QLocale>
#include <algorithm>

namespace ql240::containers {
namespace {

constexpr std::int64_t kBufferBytes = INT64_C(1) << 20;
// Smaller ranges aren't worth a system call.
constexpr std::int64_t kKernelBytes = INT64_C(64) << 10;
// The interval between two calls of the progress function.
constexpr std::int64_t kPieceBytes = INT64_C(8) << 20;

} // namespace

std::int64_t sizeOf(const Content& content) {
    const auto* const range = std::get_if<ByteRange>(&content);
    return range != nullptr ? range->size : std::get<QByteArray>(content).size();
}

Copier::Copier(QFileDevice& from, QFileDevice& to, CopyProgress progress)
    : m_from(from), m_to(to), m_progress(std::move(progress)) {
    m_pending.reserve(kBufferBytes);
}

void Copier::add(QByteArrayView bytes) {
    flushRange();
    m_position += bytes.size();
    if (m_pending.size() + bytes.size() > kBufferBytes)
        flushBytes();
    m_pending.append(bytes);
    if (m_pending.size() >= kBufferBytes)
        flushBytes();
}

void Copier::add(ByteRange range) {
    if (range.isEmpty())
        return;
    m_position += range.size;
    if (m_range.end() == range.start && !m_range.isEmpty()) {
        m_range.size += range.size;
    } else {
        flushRange();
        m_range = range;
    }
    // A large range needn't be merged with others.
    if (m_range.size >= kPieceBytes)
        flushRange();
}

void Copier::addContent(const Content& content) {
    if (const auto* const range = std::get_if<ByteRange>(&content))
        add(*range);
    else
        add(QByteArrayView(std::get<QByteArray>(content)));
}

void Copier::patch(std::int64_t position, QByteArrayView bytes) {
    flushRange();
    flushBytes();
    if (hasFailed())
        return;
    if (!m_to.seek(position) || m_to.write(bytes.data(), bytes.size()) != bytes.size() ||
        !m_to.seek(m_position))
        m_failure = m_to.errorString();
}

bool Copier::finish() {
    flushRange();
    flushBytes();
    if (!hasFailed() && !m_to.flush())
        m_failure = m_to.errorString();
    return !hasFailed();
}

void Copier::flushBytes() {
    if (!hasFailed() && m_to.write(m_pending) != m_pending.size())
        m_failure = m_to.errorString();
    m_pending.resize(0); // keeps the capacity
    report();
}

void Copier::flushRange() {
    ByteRange range = std::exchange(m_range, ByteRange{});
    if (range.isEmpty() || hasFailed())
        return;
    if (range.size >= kKernelBytes && m_copiesInKernel) {
        flushBytes();
        while (!range.isEmpty() && !hasFailed() && copyInKernel(range))
            report();
    }
    copyThroughBuffer(range);
}

// Not all file systems support this.
bool Copier::copyInKernel(ByteRange& range) {
    loff_t from = range.start;
    loff_t to = m_to.pos();
    const std::int64_t wanted = std::min(range.size, kPieceBytes);
    const ssize_t copied =
        m_to.flush() ? ::copy_file_range(m_from.handle(), &from, m_to.handle(), &to, wanted, 0) : -1;
    if (copied <= 0) {
        m_copiesInKernel = false;
        return false;
    }
    range = {range.start + copied, range.size - copied};
    if (!m_to.seek(to))
        m_failure = m_to.errorString();
    return true;
}

void Copier::copyThroughBuffer(ByteRange range) {
    while (!range.isEmpty() && !hasFailed()) {
        const std::int64_t room = kBufferBytes - m_pending.size();
        const std::int64_t part = std::min(range.size, room);
        const qsizetype before = m_pending.size();
        m_pending.resize(before + part);
        const std::int64_t got = m_from.seek(range.start) ? m_from.read(m_pending.data() + before, part) : -1;
        m_pending.resize(before + std::max<std::int64_t>(0, got));
        if (got <= 0) {
            failReading(range.start);
            return;
        }
        range = {range.start + got, range.size - got};
        if (m_pending.size() >= kBufferBytes)
            flushBytes();
    }
}

void Copier::failReading(std::int64_t offset) {
    const QString byte = QLocale(QLocale::English).toString(static_cast<qlonglong>(offset));
    const bool hasReason = m_from.error() != QFileDevice::NoError;
    m_failure = QStringLiteral("byte %1: %2")
                    .arg(byte, hasReason ? m_from.errorString() : QStringLiteral("the file ends there"));
}

void Copier::report() {
    if (m_progress && !hasFailed())
        m_isCancelled = !m_progress(m_to.pos());
}

} // namespace ql240::containers
