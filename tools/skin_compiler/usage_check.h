// Compares the table with the program's sources: every picture that the code names must be in the table, and
// every picture in the table must be named by the code.
//
// The code names a picture in a string literal: by its resource path, by its name alone ("check",
// "shock_bg"), by the prefix of a "buttons" line ("play_"), or by a pattern whose %1 stands for a number
// ("s%1").
#pragma once

#include <QStringList>

#include "picture_table.h"

namespace ql240::skin {

struct UsageReport {
    QStringList missing; // named by the code or declared "outside", not in the table
    QStringList unused;  // in the table, not named anywhere
};

// The string literals of one source text, without its comments.
struct NamedPictures {
    QStringList mentioned; // every string literal
    QStringList required;  // those that can only be pictures
};

NamedPictures namedPictures(const QString& source);

UsageReport checkUsage(const PictureTable& table, const NamedPictures& named);

// Reads all sources below a folder.
NamedPictures readSources(const QString& folder);

} // namespace ql240::skin
