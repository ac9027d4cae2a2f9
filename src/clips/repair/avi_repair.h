// Repairs AVI clips. Their headers precede the media, so no other clip is needed. Blocks while reading and
// writing; any thread.
#pragma once

#include "clips/repair/mp4_repair.h"

namespace ql240::repair {

// Whether it is an AVI file without an index, or with lists that have no size.
bool lacksAviIndex(QFileDevice& file);

// Both files are open; `to` is empty. The caller discards the output if there is a failure or no picture;
// `problem` then has the reason if the headers are invalid.
Saved saveAvi(QFileDevice& from, QFileDevice& to, const containers::CopyProgress& progress, QString& problem);

} // namespace ql240::repair
