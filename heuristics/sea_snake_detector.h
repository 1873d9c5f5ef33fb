// Finds the double zugzwang of SH_SEASNAKE at the root.
#pragma once

#include "core/chessboard.h"

#include <vector>

namespace quillmere {

// Squares 0..63; kNoSquare in `approach`: there is no pattern, and the rest means nothing.
struct TSeaSnakeSquares {
    u8 approach = kNoSquare;
    u8 turnBack = kNoSquare;
    u8 pendulum1 = kNoSquare;
    u8 pendulum2 = kNoSquare;
    // The plan begins after these moves; white's and black's in turn. May be empty.
    std::vector<TMove> onlyAfter;
};

// Half-moves of a task from which on the pattern is looked for.
constexpr int kSeaSnakeHalfMoves = 15;

// Looks at a root with white to move, in a task of `moves` half-moves. The node is left as it was;
// it needs a thread context.
void SeaSnakeDetect(TChessboard& node, TSeaSnakeSquares& result, int moves);

// Stores the squares in the settings of the thread and the moves in the search context, and turns
// SH_SEASNAKE on, as a plan that the program found itself; HeurParams follows. Nothing happens
// without a pattern.
void StoreSeaSnake(TChessboard& node, const TSeaSnakeSquares& squares);

}  // namespace quillmere
