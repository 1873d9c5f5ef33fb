// Where a king could walk while everything else stands still: the geometry that the pattern tests of
// the root and the king's routes share.
//
// All sets are over the 64 squares. A square is safe for a king if no enemy man attacks it with the
// king itself off the board, so that a king cannot hide in its own shadow; an enemy man on the square
// counts as taken, and is safe if it is not protected. Pins are not looked at: a pinned man attacks.
#pragma once

#include "core/chessboard.h"
#include "core/square_set.h"

#include <array>

namespace quillmere {

// Squares that black's men attack, the white king off the board; and the same for white.
TSquareSet AttackedByBlackMen(const TChessboard& node);
TSquareSet AttackedByWhiteMen(const TChessboard& node);

// Squares that the king could stand on: safe, and not held by a man of its own.
TSquareSet SafeForWhiteKing(const TChessboard& node);
TSquareSet SafeForBlackKing(const TChessboard& node);

// All squares next to a square of the set.
TSquareSet NeighboursOf(TSquareSet set);

// The squares of `enterable` that a king on `from` can come to, `from` included.
TSquareSet KingRegion(int from, TSquareSet enterable);

constexpr u8 kUnreachable = 255;
using TKingDistances = std::array<u8, kSquareCount>;
// King moves from each square of `enterable` to `to`, which counts as enterable itself;
// kUnreachable for all others.
TKingDistances KingDistancesTo(int to, TSquareSet enterable);

}  // namespace quillmere
