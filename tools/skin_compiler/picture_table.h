// The table that says which pictures the skin has and what each is made of: plain text, one statement a line.
//
//   color NAME R G B [A]                     a colour of the palette
//   picture NAME WxH [: SHAPE ARGUMENTS…]    a picture; the indented lines below it are its shapes
//   buttons NAME WxH STYLE [GLYPH [GLYPH]]   the pictures NAME1, NAME2 and NAME3: normal, hover, pressed
//   outside NAME…                            pictures that something other than the code asks for
//
// A name without a slash lies under gfx_r/2012, one with a slash under gfx_r; ".png" unless it says
// otherwise.
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
    QString stem; // of the three pictures of a line "buttons"; empty for others
    std::vector<Shape> shapes;
};

using Palette = QHash<QString, QColor>;

struct PictureTable {
    Palette palette;
    std::vector<Picture> pictures;
    QStringList askedForOutside; // paths
};

// Reads the table's text. On a mistake the result is empty and `error` says where it is.
std::optional<PictureTable> parsePictureTable(const QString& text, QString& error);

} // namespace ql240::skin
