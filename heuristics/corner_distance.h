// How near to a corner the black king can be held (SH_KEEPKINGNEARCORNER).
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// Distance of a square from the nearest corner: the sum of the edge distances of its file and its
// rank (squares, 0..6), or the greater of the two (moves, 0..3). c2 is 3 and 2.
int CornerDistanceInSquares(int square);
int CornerDistanceInMoves(int square);

// The bound that fits the root, as in `NearCornerDistance`: 0 none, 1..5 squares, -1..-2 moves. The
// settings are not touched.
i8 CornerDistance(const TChessboard& node);

}  // namespace quillmere
