// How the nodes ask and fill the register of solved positions.
//
// What may be stored, so that the register never tells a lie:
//   - a mate, always: it was proved;
//   - an exact "no mate" only of a white node from which nothing was left out, whose repetitions
//     are all resolved below it, in a search without heuristics, and never after a stop;
//   - everything else of a white node as doubtful, under the heuristics that it was found with.
// Only white nodes take part: an element has one pair of depths for a position without a side, so
// only odd depths (half-moves) enter.
//
// A position takes part only if its 64 squares describe it in full. It does not while an en passant
// capture is possible, while a king and a rook stand at home whose castling right is gone, and in
// one-colour play, where a bishop was taken off the board: the verdict belongs to no real position
// then.
//
// The register hangs on the search context (TSearchContext::tempRegister); without one nothing is
// known and nothing stored.
#pragma once

#include "core/chessboard.h"
#include "core/verdict.h"

namespace quillmere {

// Half-moves left in a node from which on it is asked: below it a look-up costs more than the
// search.
constexpr int kRegisterLevel = 3;

// May the register be asked about this node, and filled with it?
bool MayUseRegister(const TChessboard& node);

// All of these may be called only where MayUseRegister answers true.

// What is known about the node at its own depth: kMate, kNoMate, kDoubtful or kNothingKnown.
TVerdict FindInRegister(const TChessboard& node);

void StoreMate(const TChessboard& node);
// The exact "no mate", where the rules above allow it; else doubtful.
void StoreNoMate(const TChessboard& node);
void StoreDoubtful(const TChessboard& node);

// Compares a node that was proved a mate with what the register says: a contradiction would be a
// fault of the program. It asserts and counts, and never overturns the proof. Builds with
// assertions only.
void CheckMateAgainstRegister(const TChessboard& node);

}  // namespace quillmere
