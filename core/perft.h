// Counting the tree of legal moves, the standard check of a move generator.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// A root for perft: the board of `position` with the side to move and room for `depth` half-moves.
// m_nMoves gets the smallest fitting value of the right parity. Throws ChessException on an illegal
// position or where the side that just moved stands in check.
void SetupPerftRoot(TChessboard& root, bool whiteToMove, int depth);

// Number of sequences of `depth` half-moves, every move made in full and none counted in bulk.
// The root's thread context must have room for its m_nMoves. Rights are the derived ones: no en
// passant in the first move.
u64 Perft(TChessboard& root, int depth);

}  // namespace quillmere
