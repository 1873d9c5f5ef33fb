// The black king keeps few free squares around it (SH_ASSERTBLACKKINGSURROUNDED).
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// After white's last move the black king has more free squares than the rule allows. The promotion
// marks of the node must stand (heuristics/promotion_marks.h). The board is changed while it runs
// and restored.
bool IsKingLetOut(TChessboard& child);

// How many free squares the rule allows; kAnyFlights where it does not ask.
constexpr int kAnyFlights = 8;
int AllowedFlights(const TChessboard& child);

}  // namespace quillmere
