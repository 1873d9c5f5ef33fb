// What black could play in a root if it were black's turn: the mobility that the pattern tests of the
// root are about.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// The node with the move handed to black, on which black's moves can be listed and judged. White to
// move in the node, which stays as it is; en passant is off. For tests of legality only: nothing may
// be searched on it.
TChessboard WithBlackToMove(TChessboard& node);

// The position after a legal black move other than castling, with black to move again: white stands
// still. For the same tests only.
TChessboard AfterBlackMove(const TChessboard& blackNode, TMove move);

// After the legal black move white cannot take the moved man with a gain: it is not attacked, or
// black can take back and the cheapest attacker is worth as much. What the move takes counts for it.
bool IsSafeBlackMove(const TChessboard& blackNode, TMove move);

// Legal moves of the man on the square that are safe; kMoveListSize entries. Returns the count.
int GetSafeBlackMoves(TChessboard& blackNode, int square, TMove* list);

}  // namespace quillmere
