// What was printed to a PDF file: its images' positions on the page, and their pixels.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QRect>
#include <QRegularExpression>

namespace ql240 {

// The contents of the file's streams, in file order.
inline QList<QByteArray> pdfStreams(const QString& path) {
    QFile file(path);
    if (!file.open(QFile::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    QList<QByteArray> streams;
    for (qsizetype at = bytes.indexOf("stream\n"); at >= 0; at = bytes.indexOf("stream\n", at + 1))
        streams << bytes.mid(at + 7, bytes.indexOf("endstream", at + 7) - at - 7);
    return streams;
}

// In the printer's pixels from the corner of the printable area.
inline QList<QRect> imagePlaces(const QString& path) {
    static const QRegularExpression drawing(QStringLiteral(
        "([\\d.]+) 0 0 ([\\d.]+) ([\\d.-]+) ([\\d.-]+) cm\\s+(\\d+) 0 0 -(\\d+) 0 \\d+ cm /Im"));
    QByteArray descriptions;
    for (const QByteArray& stream : pdfStreams(path))
        if (stream.startsWith('\x78'))
            descriptions += qUncompress(QByteArray::fromHex("00001000") + stream);
    QList<QRect> places;
    auto found = drawing.globalMatch(QString::fromLatin1(descriptions));
    while (found.hasNext()) {
        const QRegularExpressionMatch match = found.next();
        const auto number = [&match](int group) { return match.captured(group).toDouble(); };
        places << QRectF(number(3), number(4), number(1) * number(5), number(2) * number(6)).toRect();
    }
    return places;
}

inline QList<QImage> printedImages(const QString& path) {
    QList<QImage> images;
    for (const QByteArray& stream : pdfStreams(path))
        if (const QImage image = QImage::fromData(stream, "JPEG"); !image.isNull())
            images << image;
    return images;
}

} // namespace ql240
