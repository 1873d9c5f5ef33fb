// Finds the black figures that cannot or should not move (SH_DONTLETFIGUREUNBLOCK).
#pragma once

#include "core/chessboard.h"

#include <vector>

namespace quillmere {

// Half-moves of a task from which on the blocked figures are looked for.
constexpr int kBlockFinderHalfMoves = 7;

// The squares of the black pawns and figures (no king) of a root that have no safe move, pawns first,
// each group by rising square, kMaxBlockedFigures at most. The node is left as it was; it needs a
// thread context.
std::vector<u8> FindBlockedFigures(TChessboard& node);

// Replaces the block list of the thread's settings by these figures and turns the heuristic on;
// HeurParams follows. Returns how many there are; with none, or with fewer than
// kBlockFinderHalfMoves left, 0, and nothing is changed.
int BlockFinder(TChessboard& node);

}  // namespace quillmere
