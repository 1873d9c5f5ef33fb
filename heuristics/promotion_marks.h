// Marks of white's promotions on a node: one that lies ahead, one that lies behind.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// A white pawn can reach promotion with the moves that white has left: no man stands before it on
// its file. Captures are not counted on, and black's moves are not looked at.
bool IsPromotionAhead(const TChessboard& node);

// Writes kSearchPromotionAhead, as it is, and kSearchPromotionPassed, once white has promoted. After
// each of white's moves, and once for a root, which has no last move.
void MarkPromotions(TChessboard& node);

}  // namespace quillmere
