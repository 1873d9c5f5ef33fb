// What a capture or a promotion of white does to the edge rules of the subtree.
//
// Each routine takes the word of the node and returns the new one; the node is the black node after
// the move. HeurParams is the caller's.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// The rules that hold the black king in place.
constexpr u32 kEdgeRules =
    SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE | SH_ASSERTBLACKKINGSURROUNDED;
static_assert(kEdgeRules == 0x80044);

// SH_CAPTUREKNIGHT has reached its aim with the capture of a knight.
u32 RelaxAfterKnightCapture(u32 heur, u8 captured);

// A capture that decides (`AutomaticDynamicRelax`).
u32 RelaxAfterDecision(const TChessboard& child, u32 heur, u8 captured);

// A promotion to a queen that checks along the edge of the black king.
u32 RelaxAfterPromotion(const TChessboard& child, u32 heur);

}  // namespace quillmere
