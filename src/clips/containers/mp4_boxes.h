// The boxes of an MP4 file (ISO/IEC 14496-12) as a tree. Only those that contain the movie's tracks are
// parsed; each other one is a range of bytes. Writing the tree back reproduces the file byte for byte. One
// thread at a time; offsets and sizes in bytes; `problem` receives the reason of a failure.
#pragma once

#include <vector>

#include "clips/containers/tree.h"

namespace ql240::containers {

struct Mp4Box {
    // The size in 32 bits, in 64, or 0 for "to the end of the parent".
    enum class SizeField : std::uint8_t { Narrow, Wide, ToEnd };

    std::uint32_t type = 0;
    SizeField sizeField = SizeField::Narrow;
    std::vector<Mp4Box> inner;
    Content content;         // after the inner boxes; for most boxes, the whole body
    std::int64_t offset = 0; // in the original file

    std::int64_t headSize() const { return sizeField == SizeField::Wide ? 16 : 8; }
    std::int64_t size() const; // with the header
    const Mp4Box* find(std::uint32_t wanted) const;
    Mp4Box* find(std::uint32_t wanted);
    void remove(std::uint32_t unwanted); // all inner boxes of that type
};

struct Mp4File {
    std::vector<Mp4Box> boxes;
    // After the boxes: a box that extends past the end of the file, or bytes that are not a box, as in `cut`.
    ByteRange rest;
    std::optional<sensorfiles::CutBox> cut;

    const Mp4Box* find(std::uint32_t type) const;
};

// Reads headers only. False if the movie's boxes are invalid or too many. A truncated file is read up to its
// end.
bool readMp4Boxes(ByteSource& source, Mp4File& file, QString& problem);

// Replaces ranges in the box and its inner boxes by their bytes, so that it can be written to another file.
// False if they exceed limits::kHeaderBytes or can't be read.
bool loadBox(ByteSource& source, Mp4Box& box, QString& problem);

Mp4Box newBox(std::uint32_t type, QByteArray content);

// Write failures are reported by the copier's finish().
void writeBox(const Mp4Box& box, Copier& to);
void writeMp4Boxes(const Mp4File& file, Copier& to);

} // namespace ql240::containers
