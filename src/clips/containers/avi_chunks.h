// The chunks of an AVI file as a tree. Only the lists that describe the streams are parsed; everything else
// is a range of bytes. Writing the tree back reproduces the file byte for byte. One thread at a time; offsets
// and sizes in bytes; `problem` receives the reason of a failure.
#pragma once

#include <vector>

#include "clips/containers/tree.h"

namespace ql240::containers {

struct AviChunk {
    std::uint32_t name = 0;
    std::uint32_t kind = 0; // of "RIFF" and "LIST"
    std::vector<AviChunk> inner;
    Content content;         // after the inner chunks; for most chunks, the whole body
    std::int64_t offset = 0; // in the original file
    std::optional<char> pad; // chunks should begin at even offsets, but some writers omit the pad byte

    bool isList() const { return name == fourCc("RIFF") || name == fourCc("LIST"); }
    std::int64_t bodySize() const; // as in the header
    std::int64_t size() const;     // header, body and pad
    const AviChunk* find(std::uint32_t nameOrKind) const;
    AviChunk* find(std::uint32_t nameOrKind);
};

struct AviFile {
    std::vector<AviChunk> lists; // "RIFF", the first of kind "AVI ", further ones "AVIX"
    ByteRange rest;              // after the lists; some cameras write text there
    // The innermost list or chunk that extends past the end of the file, or has no size because the recording
    // was interrupted. It is the last one read, as far as it exists; such a tree can't be written back.
    std::optional<sensorfiles::CutBox> cut;

    const AviChunk* find(std::uint32_t nameOrKind) const; // in the first list
};

// Reads headers only. False if the lists are invalid or too many. A truncated file is read up to its end.
bool readAviChunks(ByteSource& source, AviFile& file, QString& problem);

// Replaces ranges in the chunk and its inner chunks by their bytes; false if they can't be read.
bool loadChunk(ByteSource& source, AviChunk& chunk, QString& problem);

AviChunk newChunk(std::uint32_t name, QByteArray content);

// Write failures are reported by the copier's finish().
void writeChunk(const AviChunk& chunk, Copier& to);
void writeAviChunks(const AviFile& file, Copier& to);

} // namespace ql240::containers
