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

#include <string>

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

// A list in place of white's moves, made by a heuristic; it taints the node. False: none.
inline bool ReplaceWhiteMoves(TChessboard& /*node*/, TMoveList& /*list*/) {
    return false;
}
// The complete list of the moves that must be looked at in a forcing situation. False: none.
inline bool GetForcingMoves(TChessboard& /*node*/, TMoveList& /*list*/) {
    return false;
}

// After a cut list failed: switches off, for this node, the heuristic that had it cut. False if it
// is off already.
inline bool TakeFullList(TChessboard& /*node*/) {
    return false;
}

// Threads

inline TVerdict SplitNode(TChessboard& /*node*/, TMoveList& /*list*/) {
    return kNoSplit;
}

// Assumptions of heuristics

// White's move is not searched: before it is made, and after.
inline bool IsKingMoveLeftOut(const TChessboard& /*node*/, TMove /*move*/) {
    return false;
}
inline bool IsMoveLeftOut(TChessboard& /*child*/) {
    return false;
}
// After a black reply: the line is given up as doubtful.
inline bool IsReplyLeftOut(TChessboard& /*child*/) {
    return false;
}
// Notes a single queen that hunts the king, before black's first reply.
inline void NoteSingleQueen(TChessboard& /*node*/) {}
// Takes the bookkeeping of the heuristics over to the child, one-colour play included.
inline void UpdateHeuristics(TChessboard& /*child*/) {}
// The heuristics of the word in words, for the moves log; empty if they have none.
inline std::string HeuristicsText(u32 /*heur*/) {
    return {};
}
inline bool ShouldTryUnblockFirst(const TChessboard& /*child*/) {
    return false;
}

}  // namespace quillmere::hooks
