// Compares the table with the program's sources: every picture that the code names must be in the table, and
// every picture of the table must be named by the code.
//
// The code names a picture in a string literal: by its resource path, by its name alone ("check",
// "shock_bg"), by the stem of a table line "buttons" ("play_"), or by a pattern whose %1 stands for a number
// ("s%1").
#pragma once

#include <QStringList>

#include "picture_table.h"

namespace ql240::skin {

struct UsageReport {
    QStringList missing; // named by the code or as asked for outside, not in the table
    QStringList unused;  // in the table, named nowhere
};

// What one source text says, comments left out.
struct NamedPictures {
    QStringList mentioned; // every string literal
    QStringList required;  // those of them that can mean nothing but a picture
};

NamedPictures namedPictures(const QString& source);

UsageReport checkUsage(const PictureTable& table, const NamedPictures& named);

// Reads all sources below a folder.
NamedPictures readSources(const QString& folder);

} // namespace ql240::skin
