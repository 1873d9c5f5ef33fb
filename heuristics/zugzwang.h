// White goes back to a position in which black is in zugzwang (SH_ZUGZWANG).
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// White's moves that lead to the stored position of the search context at once. False: there is no
// such move, or no position is stored. White is not in check.
bool ZugzwangMoves(TChessboard& node, TMoveList& list);

}  // namespace quillmere
