// Black's best defence: the one that survives longest.
//
// Defences are not scored but eliminated. In the rounds 1, 3, 5, ... every defence that is left is
// asked whether white mates it within so many half-moves; a defence that is mated leaves, and the
// last one left is the best. Two routines ask in this way: GetBestDefence for any black node, with a
// limit to its effort; FindLongestDefence for a node where every defence loses, without one. As far
// as GetBestDefence looks, they name the same move: of the defences that last longest, the last of
// the list.
//
// The list is that of the search: evasions when in check, else all moves by squares upward, then,
// in one-colour play, the pass; without the illegal ones.
//
// Both search again below the node, on its thread, and overwrite what the thread context remembers
// of the levels below. A free-standing node will do, and so will a slot of the node stack. After a
// stop they return false and leave the results alone. Ancestors of the node take part in the
// repetition test; they are the past of the position, so a line that comes back to one of them (but
// not to the root) counts as no mate.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// Half-moves up to which GetBestDefence tells mates apart by searching.
constexpr int kMaxDefenceRound = 13;

// Black to move. The result is
//   - the null move of a1 (from, to and flags 0) if black has no legal move;
//   - a move after which white provably cannot mate any more, if one is met;
//   - else the defence that survives longest, up to kMaxDefenceRound half-moves and to the length
//     of the node. Defences that survive all rounds are asked of the register of solved positions
//     (FindInRegister at the child's own level); then the first of the list is the result.
bool GetBestDefence(TChessboard& node, TMove* move);

// Black to move and every legal defence loses within m_nMoves: the defence that survives longest,
// and in *halfMoves the half-moves white then needs (odd). Also false if black is mated already.
bool FindLongestDefence(TChessboard& node, TMove* defence, int* halfMoves);

}  // namespace quillmere
