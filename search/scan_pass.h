// The look at a first move that searches nothing: what the register knows exactly, and mates in one.
#pragma once

#include "core/chessboard.h"
#include "core/verdict.h"

namespace quillmere {

// White's first move, or black's defence, of a root: kMate or kNoMate where that is known for
// certain, kDoubtful where a search must tell. The root's word plays no part.
TVerdict ScanFirstMove(TChessboard& root, TMove move);

}  // namespace quillmere
