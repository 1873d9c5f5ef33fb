// What the nodes ask of their neighbours, at the places where they ask it.
//
// None of these answers is needed for a correct verdict: a lookup that knows nothing, a list left
// in generation order and a test that says no only change how long the proof takes. The parts of
// the engine that will answer are not there; until then every function here answers "nothing
// known", and the compiler removes the question.
#pragma once

#include "core/chessboard.h"
#include "core/rights.h"
#include "core/verdict.h"

namespace quillmere::hooks {

// Precalculated endings

// The verdict of the endgame tables for a node that carries kPositionHasTables.
inline TVerdict AskTables(const TChessboard& /*node*/) {
    return kNothingKnown;
}

// Tests that may end a node early

// A pattern near the root of a deep tree, and the proof of mate that follows from it.
inline bool IsPatternPosition(const TChessboard& /*node*/) {
    return false;
}
inline TVerdict TryPatternMate(TChessboard& /*node*/) {
    return kNothingKnown;
}
// One-colour play with a white knight, which cannot keep to one colour.
inline bool KnightsKeepColour(const TChessboard& /*node*/) {
    return true;
}
inline bool TryOneColourMate(TChessboard& /*node*/) {
    return false;
}
// The child looks lost whatever black does; then FinishMate, a complete black node, takes it.
inline bool IsMateUnavoidable(TChessboard& /*child*/) {
    return false;
}

// Lists and their order

// The complete list of the moves that must be looked at in a forcing situation. False: none.
inline bool GetForcingMoves(TChessboard& /*node*/, TMoveList& /*list*/) {
    return false;
}

// Threads

inline TVerdict SplitNode(TChessboard& /*node*/, TMoveList& /*list*/) {
    return kNoSplit;
}

// Assumptions besides those of heuristics/rules.h

// The child is searched first as if a blocked figure of black could not be unblocked.
inline bool ShouldTryUnblockFirst(const TChessboard& /*child*/) {
    return false;
}

}  // namespace quillmere::hooks
