// Exact legality, for people: moves of a list, perft, played moves, mate and stalemate texts.
// It never uses the search's rules about mating material.
//
// The node may be any node, also a free-standing board without contexts, and one with no half-moves
// left; only the parity of m_nMoves counts. Nothing of the caller's thread is touched.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// The pseudo-legal move of the side to move leaves the own king unattacked.
bool IsLegalMove(TChessboard& node, TMove move);

// Legal moves of the side to move, in generation order.
int GetLegalMoves(TChessboard& node, TMove* list);

}  // namespace quillmere
