// The table of the skin's pictures and the shapes that each consists of: plain text, one statement per line.
//
//   color NAME R G B [A]                     a colour of the palette
//   picture NAME WxH [: SHAPE ARGUMENTS…]    a picture; the indented lines below it are its shapes
//   buttons NAME WxH STYLE [GLYPH [GLYPH]]   the pictures NAME1, NAME2 and NAME3: normal, hover, pressed
//   outside NAME…                            pictures that something other than the code asks for
//
// A name without a slash is under gfx_r/2012, one with a slash under gfx_r; the suffix is ".png" unless the
// name has one.
#pragma once

#include <QColor>
#include <QHash>
#include <QSize>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace ql240::skin {

struct Shape {
    int line = 0; // of the table, for messages
    QString verb;
    QStringList arguments;
};

struct Picture {
    QString path; // below gfx_r, with its suffix: "2012/play_1.png"
    QSize size;   // logical pixels
    QString stem; // of the three pictures of a "buttons" line; empty for others
    std::vector<Shape> shapes;
};

using Palette = QHash<QString, QColor>;

struct PictureTable {
    Palette palette;
    std::vector<Picture> pictures;
    QStringList askedForOutside; // paths
};

// Parses the table's text. On an error the result is empty and `error` says where it is.
std::optional<PictureTable> parsePictureTable(const QString& text, QString& error);

} // namespace ql240::skin
