// Cuts pieces out of MP4 clips. Any thread.
#pragma once

#include "clips/cut/cut_range.h"

namespace ql240::cut {

// Nothing, with the reason in `problem`, if the range can't be cut. The file is open, outlives the piece and
// is only read.
std::unique_ptr<ClipPiece> pieceOfMp4(QFileDevice& file, CutRange range, bool keepsSound, QString& problem);

} // namespace ql240::cut
