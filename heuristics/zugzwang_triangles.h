// White's king walks a triangle to lose a move (SH_ZUGZWANGTRIANGLES).
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// The king's moves on the triangle of `ZugzwangTriangleSquares`, and the moves of the figures that
// guard. False: there is no list, because no squares are set, the king stands off the triangle, or
// it has no move on it. White is not in check.
bool TriangleMoves(const TChessboard& node, TMoveList& list);

}  // namespace quillmere
