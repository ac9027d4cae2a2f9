// What the trees of both containers have in common. A node is an Mp4Box or an AviChunk.
#pragma once

#include <QLocale>
#include <algorithm>

#include "clips/containers/copier.h"

namespace ql240::containers {

// "byte 4,096: …"
inline QString atByte(std::int64_t offset, const char* reason) {
    return QStringLiteral("byte %1: %2")
        .arg(QLocale(QLocale::English).toString(static_cast<qlonglong>(offset)), QLatin1StringView(reason));
}

// The first node for which `is` holds, or null.
template <typename Nodes, typename Predicate>
auto* firstOf(Nodes& nodes, const Predicate& is) {
    const auto found = std::find_if(nodes.begin(), nodes.end(), is);
    return found != nodes.end() ? &*found : nullptr;
}

// Replaces ranges in the node and its inner nodes by their bytes; false if they can't be read.
template <typename Node>
bool loadContents(ByteSource& source, Node& node) {
    for (Node& inner : node.inner) {
        if (!loadContents(source, inner))
            return false;
    }
    const auto* const range = std::get_if<ByteRange>(&node.content);
    if (range == nullptr)
        return true;
    QByteArray bytes(range->size, '\0');
    const bool isThere = bytes.isEmpty() || source.read(range->start, bytes) == bytes.size();
    node.content = std::move(bytes);
    return isThere;
}

// The content of a loaded node, otherwise empty.
template <typename Node>
QByteArray loadedContent(const Node* node) {
    const auto* const bytes = node != nullptr ? std::get_if<QByteArray>(&node->content) : nullptr;
    return bytes != nullptr ? *bytes : QByteArray();
}

} // namespace ql240::containers
