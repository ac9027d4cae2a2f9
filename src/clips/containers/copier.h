// Writes a file sequentially, from new bytes and from ranges of another file, with a bounded buffer. One
// thread at a time; offsets and sizes in bytes.
#pragma once

#include <QFileDevice>
#include <functional>
#include <utility>
#include <variant>

#include "clips/formats/byte_source.h"
#include "clips/formats/clip_layout.h"

namespace ql240::containers {

using sensorfiles::ByteRange;
using sensorfiles::ByteSource;
using sensorfiles::fourCc;

// Bytes to write: a range of the original file, or new ones.
using Content = std::variant<ByteRange, QByteArray>;
std::int64_t sizeOf(const Content& content);

// Called with the number of bytes written so far; returning false cancels.
using CopyProgress = std::function<bool(std::int64_t bytes)>;

class Copier {
public:
    // Both files are open and outlive this; `to` is empty and seekable. `from` is only read.
    Copier(QFileDevice& from, QFileDevice& to, CopyProgress progress = {});
    Copier(const Copier&) = delete;
    Copier& operator=(const Copier&) = delete;

    // The offset of the next byte in the output.
    std::int64_t position() const { return m_position; }

    // After the first failure nothing more is written; finish() reports it.
    void add(QByteArrayView bytes);
    // Adjacent ranges are copied at once, by the kernel where it supports that.
    void add(ByteRange range);
    void addContent(const Content& content);
    // Overwrites bytes that were added before.
    void patch(std::int64_t position, QByteArrayView bytes);

    // Writes what is still buffered; false, with the reason in failure(), if anything couldn't be written.
    [[nodiscard]] bool finish();
    bool isCancelled() const { return m_isCancelled; }
    bool hasFailed() const { return m_isCancelled || !m_failure.isEmpty(); }
    // "byte 4,096 of the original: …" or the output's error text; empty without a failure.
    const QString& failure() const { return m_failure; }

private:
    void flushRange();
    void flushBytes();
    bool copyInKernel(ByteRange& range);
    void copyThroughBuffer(ByteRange range);
    void failReading(std::int64_t offset);
    void report();

    QFileDevice& m_from;
    QFileDevice& m_to;
    CopyProgress m_progress;
    std::int64_t m_position = 0;
    QByteArray m_pending; // after what is written
    ByteRange m_range;    // after m_pending
    QString m_failure;
    bool m_isCancelled = false;
    bool m_copiesInKernel = true;
};

} // namespace ql240::containers
