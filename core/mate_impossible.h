// Can white still mate? The rules that a black move asks when white has neither queen nor rook.
//
// Four of them hold without any assumption:
//   - the white king alone never mates;
//   - king and one minor figure, or king and bishops of one colour of squares, never mate a bare
//     king;
//   - king and two knights force a mate of a bare king only if they mate at once: whoever is to be
//     mated in two could have avoided the corner, which the exhaustive list of these positions
//     shows;
//   - king and one minor figure against king and exactly one figure, without pawns, force mate only
//     if they mate at once; shown by the same exhaustive list.
// The lists are gone through in tests/differential/material_rules_test.cpp.
//
// All other rules are rules of thumb about where the black king stands and what surrounds it. They
// are asked only under heuristics, in a pass that proves nothing negative, and make the node
// doubtful. Each of them has counterexamples: with black pawns in the corner a lone knight mates.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// After a black move that was made in full (m_nMoves counts the half-moves left, white to move).
// Returns kMoveMade, kMateImpossible (proved) or kMateImpossibleAssumed. A line on which the rules
// were passed without result is marked, and asked again only after a capture.
int TestMateImpossible(TChessboard& node, bool isCapture);

// White has only pawns besides its king, and cannot mate in the half-moves left. Answers true only
// where that is proved: one pawn that cannot promote in time against a bare king. Without
// promotion king and pawn never mate a bare king, since even in the corner one flight stays free.
bool IsPawnEndHopeless(const TChessboard& node);

}  // namespace quillmere
