// White's answer to a black man on the key square (SH_KEYSQUARE).
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// What the sort takes off the key of white's move: kKeySquareBonus where it answers black's last
// move to the key square, else 0.
constexpr int kKeySquareBonus = 6;
int KeySquareBonus(const TChessboard& node, TMove move);

}  // namespace quillmere
