#include "skin_writer.h"

#include <QBuffer>
#include <QDataStream>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QPainter>
#include <algorithm>

#include "shapes.h"

namespace ql240::skin {
namespace {

constexpr qsizetype kLargestPalette = 256;

// The same pixels in the format that loads fastest: with a palette if there are few colours (a window's
// background has some 70), otherwise without alpha if it is opaque.
QImage quickToRead(const QImage& image) {
    const QImage plain = image.convertToFormat(QImage::Format_ARGB32);
    QImage indexed(plain.size(), QImage::Format_Indexed8);
    QHash<QRgb, int> palette;
    bool opaque = true;
    for (int y = 0; y < plain.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(plain.constScanLine(y));
        uchar* indices = indexed.scanLine(y);
        for (int x = 0; x < plain.width(); ++x) {
            opaque = opaque && qAlpha(line[x]) == 255;
            if (palette.size() <= kLargestPalette && !palette.contains(line[x]))
                palette.insert(line[x], static_cast<int>(palette.size()));
            if (palette.size() <= kLargestPalette)
                indices[x] = static_cast<unsigned char>(palette.value(line[x]));
        }
    }
    if (palette.size() > kLargestPalette)
        return opaque ? plain.convertToFormat(QImage::Format_RGB32) : plain;
    QList<QRgb> colours(palette.size());
    for (auto it = palette.cbegin(); it != palette.cend(); ++it)
        colours[it.value()] = it.key();
    indexed.setColorTable(colours);
    return indexed;
}

QByteArray pngBytes(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    quickToRead(image).save(&buffer, "PNG", 0); // quality 0: strongest compression
    return bytes;
}

// An icon file with one PNG: a header of 6 bytes, then a directory with one entry of 16 bytes.
QByteArray icoBytes(const QImage& image) {
    const QByteArray png = pngBytes(image);
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    const auto edge = [](int pixels) { return static_cast<std::uint8_t>(pixels == 256 ? 0 : pixels); };
    stream << static_cast<std::uint16_t>(0) << static_cast<std::uint16_t>(1) << static_cast<std::uint16_t>(1);
    stream << edge(image.width()) << edge(image.height()) << static_cast<std::uint8_t>(0)
           << static_cast<std::uint8_t>(0) << static_cast<std::uint16_t>(1) << static_cast<std::uint16_t>(32)
           << static_cast<std::uint32_t>(png.size()) << static_cast<std::uint32_t>(22);
    stream.writeRawData(png.constData(), static_cast<int>(png.size()));
    return bytes;
}

bool writeFile(const QString& path, const QByteArray& bytes, QString& error) {
    QFile file(path);
    if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly) ||
        file.write(bytes) != bytes.size() || !file.flush()) {
        error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

QByteArray resourceList(const QStringList& paths) {
    QString list = QStringLiteral("<RCC>\n<qresource prefix=\"/\">\n");
    for (const QString& path : paths)
        list += QStringLiteral("<file>%1</file>\n").arg(path);
    return (list + QStringLiteral("</qresource>\n</RCC>\n")).toUtf8();
}

} // namespace

QImage renderPicture(const Picture& picture, const Palette& palette, const QString& sourceFolder, int scale,
                     QString& error) {
    QImage image(picture.size * scale, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(scale, scale);
    Canvas canvas(painter, picture, palette, sourceFolder);
    for (const Shape& shape : picture.shapes) {
        const PaintFunction paint = findShape(shape.verb);
        ShapeArguments arguments(shape, palette);
        painter.save();
        paint ? paint(canvas, arguments) : arguments.fail(QStringLiteral("no such shape"));
        painter.restore();
        if (!arguments.atEnd())
            arguments.fail(QStringLiteral("too many arguments"));
        if (!arguments.error().isEmpty()) {
            error = arguments.error();
            return {};
        }
    }
    painter.end();
    return image;
}

bool writeSkin(const PictureTable& table, const QString& sourceFolder, const QDir& output, QString& error) {
    QStringList paths;
    for (const Picture& picture : table.pictures) {
        const bool isIcon = picture.path.endsWith(QLatin1String(".ico"));
        for (int scale = 1; scale <= (isIcon ? 1 : 2); ++scale) {
            const QImage image = renderPicture(picture, table.palette, sourceFolder, scale, error);
            if (image.isNull())
                return false;
            QString path = QStringLiteral("gfx_r/") + picture.path;
            if (scale == 2)
                path.replace(QLatin1String(".png"), QLatin1String("@2x.png"));
            if (!writeFile(output.filePath(path), isIcon ? icoBytes(image) : pngBytes(image), error))
                return false;
            paths << path;
        }
    }
    return writeFile(output.filePath(QStringLiteral("skin.qrc")), resourceList(paths), error);
}

} // namespace ql240::skin
