// Cuts pieces out of AVI clips. Any thread.
#pragma once

#include "clips/cut/cut_range.h"

namespace ql240::cut {

// Nothing, with the reason in `problem`, if the range can't be cut. The file is open, outlives the piece and
// is only read. `startsLate`: the clip's trailer begins late.
std::unique_ptr<ClipPiece> pieceOfAvi(QFileDevice& file, CutRange range, bool keepsSound, bool startsLate,
                                      QString& problem);

} // namespace ql240::cut
