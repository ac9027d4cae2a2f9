#include "contact_sheet.h"

#include <QPainter>
#include <algorithm>

#include "skin_writer.h"

namespace ql240::skin {
namespace {

constexpr int kSheetWidth = 1720;
constexpr int kGap = 14;
constexpr int kCaption = 16;
constexpr int kNarrowest = 96; // room for the captions of small pictures
constexpr int kTall = 100;     // pictures of this height or more have rows of their own

struct Cell {
    QPoint corner;
    QString caption;
    QImage image;
};

QString caption(const Picture& picture) {
    const QString name = picture.path.section(QLatin1Char('/'), -1);
    return name.endsWith(QLatin1String(".png")) ? name.chopped(4) : name;
}

// Rows from left to right, each as high as its highest picture.
int place(std::vector<Cell>& cells) {
    QPoint corner(kGap, kGap);
    int rowHeight = 0;
    bool isTallRow = false;
    for (Cell& cell : cells) {
        const int width = std::max(cell.image.width(), kNarrowest);
        const bool isTall = cell.image.height() >= kTall;
        if (corner.x() + width + kGap > kSheetWidth || isTall != isTallRow) {
            isTallRow = isTall;
            corner = QPoint(kGap, corner.y() + rowHeight);
            rowHeight = 0;
        }
        cell.corner = corner;
        corner.rx() += width + kGap;
        rowHeight = std::max(rowHeight, cell.image.height() + kCaption + kGap);
    }
    return corner.y() + rowHeight;
}

} // namespace

QImage contactSheet(const PictureTable& table, const QString& sourceFolder, QString& error) {
    std::vector<Cell> cells;
    for (const Picture& picture : table.pictures) {
        const QImage image = renderPicture(picture, table.palette, sourceFolder, 1, error);
        if (image.isNull())
            return {};
        cells.push_back({{}, caption(picture), image});
    }
    QImage sheet(kSheetWidth, place(cells), QImage::Format_RGB32);
    sheet.fill(table.palette.value(QStringLiteral("base")));
    QPainter painter(&sheet);
    QFont font(QStringLiteral("Open Sans"));
    font.setPixelSize(11);
    painter.setFont(font);
    painter.setPen(table.palette.value(QStringLiteral("text")));
    for (const Cell& cell : cells) {
        painter.drawImage(cell.corner, cell.image);
        painter.drawText(cell.corner + QPoint(0, cell.image.height() + 12), cell.caption);
    }
    return sheet;
}

} // namespace ql240::skin
