// White's king walks a triangle to lose a move (SH_ZUGZWANGTRIANGLES).
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// The king's moves on the triangle of `ZugzwangTriangleSquares`, and the moves of the figures that
// guard. False: there is no list, because no squares are set, the king stands off the triangle, or
// it has no move on it. White is not in check.
bool TriangleMoves(const TChessboard& node, TMoveList& list);

// Two squares of a triangle for the white king of a root with white to move; kNoSquare where there is
// none. They are not stored. The node is left as it was; it needs a thread context.
bool FindZugzwangTriangle(TChessboard& node, u8 (&squares)[2]);

}  // namespace quillmere
