// Finds at the root what the heuristics of key figures, key lines and key squares rest on.
//
// Each routine works on a root with white to move and leaves the node as it was; none of them stores
// anything. What they return is a guess at the solution, good enough to be tried.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// The file along which a lone black rook defends (SH_KEYLINE), 0..7; kNoSquare for none.
u8 FindKeyLine(TChessboard& node);

// Two squares, the ends, of the diagonal along which a lone black bishop defends (SH_KEYDIAGONAL).
bool FindKeyDiagonal(TChessboard& node, u8 (&squares)[2]);

// The empty square that black must not let go (SH_KEYSQUARE); kNoSquare for none.
u8 FindKeySquare(TChessboard& node);

// A white figure that stands safely and pins an important black figure to a king that cannot move
// (SH_KEYWHITEFIGURE); both squares kNoSquare for none.
struct TKeyWhiteFigure {
    u8 square = kNoSquare;
    u8 pinned = kNoSquare;
};
TKeyWhiteFigure FindKeyWhiteFigure(TChessboard& node);

// The same, stored in the settings of the thread and the search context with their bit turned on;
// HeurParams follows. False if nothing was found, and nothing is changed.
bool UseKeyLine(TChessboard& node);
bool UseKeyDiagonal(TChessboard& node);
bool UseKeySquare(TChessboard& node);
bool UseKeyWhiteFigure(TChessboard& node);

// A white rook can wait on its first rank while black runs out of moves (SH_SWEEPINGWHITEROOK).
bool SuitsSweepingRook(const TChessboard& node);

}  // namespace quillmere
