#include "clips/containers/mp4_boxes.h"

#include <QtEndian>
#include <limits>
#include <span>

#include "platform/limits.h"

namespace ql240::containers {
namespace {

using sensorfiles::BoxCursor;

// Which boxes are parsed, in which parents; this limits the depth.
bool hasInner(std::uint32_t type, std::uint32_t parent) {
    switch (type) {
        case fourCc("moov"):
            return parent == 0;
        case fourCc("trak"):
            return parent == fourCc("moov");
        case fourCc("edts"):
        case fourCc("mdia"):
            return parent == fourCc("trak");
        case fourCc("minf"):
            return parent == fourCc("mdia");
        case fourCc("stbl"):
            return parent == fourCc("minf");
        default:
            return false;
    }
}

class TreeReader {
public:
    TreeReader(ByteSource& source, QString& problem) : m_source(source), m_problem(problem) {}

    // A truncated box is an error within others; at the top level it ends the walk.
    bool read(ByteRange area, std::uint32_t parent, std::vector<Mp4Box>& boxes, ByteRange& rest) {
        BoxCursor cursor(m_source, area);
        rest = area;
        while (const std::optional<sensorfiles::Box> box = cursor.next()) {
            if (box->missing > 0 && parent == 0)
                return true;
            if (box->missing > 0)
                return fail(box->offset, "the box runs past the one that holds it");
            if (++m_count > limits::kIndexBoxes)
                return fail(box->offset, "more boxes than a clip can have");
            boxes.push_back(made(*box));
            if (hasInner(box->type, parent) && !readInner(*box, boxes.back()))
                return false;
            rest = cursor.rest();
        }
        return true;
    }

private:
    static Mp4Box made(const sensorfiles::Box& box) {
        Mp4Box made;
        made.type = box.type;
        made.offset = box.offset;
        made.content = box.body;
        if (box.hasNoSize)
            made.sizeField = Mp4Box::SizeField::ToEnd;
        else if (box.body.start - box.offset == 16)
            made.sizeField = Mp4Box::SizeField::Wide;
        return made;
    }

    bool readInner(const sensorfiles::Box& box, Mp4Box& into) {
        ByteRange rest;
        const bool isRead = read(box.body, box.type, into.inner, rest);
        into.content = rest;
        return isRead;
    }

    bool fail(std::int64_t offset, const char* reason) {
        m_problem = atByte(offset, reason);
        return false;
    }

    ByteSource& m_source;
    QString& m_problem;
    std::size_t m_count = 0;
};

template <typename Boxes>
auto* findIn(Boxes& boxes, std::uint32_t type) {
    return firstOf(boxes, [type](const Mp4Box& b) { return b.type == type; });
}

// In a new file, others may follow a box that extends to the end of its parent.
void giveSizes(Mp4Box& box) {
    if (box.sizeField == Mp4Box::SizeField::ToEnd)
        box.sizeField = Mp4Box::SizeField::Narrow;
    for (Mp4Box& inner : box.inner)
        giveSizes(inner);
}

} // namespace

std::int64_t Mp4Box::size() const {
    std::int64_t size = headSize() + sizeOf(content);
    for (const Mp4Box& box : inner)
        size += box.size();
    return size;
}

const Mp4Box* Mp4Box::find(std::uint32_t wanted) const {
    return findIn(inner, wanted);
}

Mp4Box* Mp4Box::find(std::uint32_t wanted) {
    return findIn(inner, wanted);
}

void Mp4Box::remove(std::uint32_t unwanted) {
    std::erase_if(inner, [unwanted](const Mp4Box& box) { return box.type == unwanted; });
}

const Mp4Box* Mp4File::find(std::uint32_t type) const {
    return findIn(boxes, type);
}

bool readMp4Boxes(ByteSource& source, Mp4File& file, QString& problem) {
    TreeReader reader(source, problem);
    if (!reader.read({0, source.size()}, 0, file.boxes, file.rest))
        return false;
    BoxCursor after(source, file.rest);
    if (const std::optional<sensorfiles::Box> box = after.next())
        file.cut = sensorfiles::CutBox{box->type, box->offset, box->missing};
    else if (!file.rest.isEmpty())
        file.cut = sensorfiles::CutBox{0, file.rest.start, 0};
    return true;
}

bool loadBox(ByteSource& source, Mp4Box& box, QString& problem) {
    giveSizes(box);
    if (box.size() > limits::kHeaderBytes)
        problem = QStringLiteral("the index has more headers than a clip can have");
    else if (!loadContents(source, box))
        problem = QStringLiteral("the index can't be read");
    return problem.isEmpty();
}

Mp4Box newBox(std::uint32_t type, QByteArray content) {
    Mp4Box box;
    box.type = type;
    box.content = std::move(content);
    return box;
}

void writeBox(const Mp4Box& box, Copier& to) {
    const std::int64_t size = box.size();
    QByteArray head(box.headSize(), '\0');
    const bool isNarrow = box.sizeField == Mp4Box::SizeField::Narrow;
    const bool isWide = box.sizeField == Mp4Box::SizeField::Wide;
    qToBigEndian(isNarrow ? static_cast<std::uint32_t>(size) : isWide ? 1U : 0U, head.data());
    qToBigEndian(box.type, head.data() + 4);
    if (isWide)
        qToBigEndian(static_cast<std::uint64_t>(size), head.data() + 8);
    to.add(QByteArrayView(head));
    for (const Mp4Box& inner : box.inner)
        writeBox(inner, to);
    to.addContent(box.content);
}

void writeMp4Boxes(const Mp4File& file, Copier& to) {
    for (const Mp4Box& box : file.boxes)
        writeBox(box, to);
    to.add(file.rest);
}

} // namespace ql240::containers
