// What the nodes ask of the heuristics: which lines to leave out, and what a move does to the word.
//
// A rule only ever leaves lines out or changes the word of a subtree; it never finds a mate and never
// drops a black move. So a mate that is found under any word is a mate, and whatever a rule left out
// makes the node doubtful (search/mate_search.cpp). The rules act in the passes below
// kPassComplete. Each of the routines looks at the word first, so that a search without heuristics
// pays for one test; the techniques stand in files of their own, named below.
//
// Threads: the routines work on the node and the records of its own thread.
#pragma once

#include "core/chessboard.h"
#include "core/heuristics.h"
#include "core/move.h"

namespace quillmere {

namespace rules {

// Behind the tests of the word below; not for other callers.
bool DoOthersRest(const TChessboard& node);  // forced_mate_word.cpp
void CutToForcedMate(TChessboard& node);     // forced_mate_word.cpp

}  // namespace rules

// The word is followed on the line, whether or not its rules are in force at the node.
inline bool IsWordOn(const TChessboard& node) {
    return node.Heur != 0 && node.m_pass < kPassComplete;
}

// Any rule of the mask is in force at the node. While forced mates are looked for, the others may
// rest.
inline bool AreRulesOn(const TChessboard& node, u32 mask) {
    return (node.Heur & mask) != 0 && node.m_pass < kPassComplete &&
           ((node.Heur & SH_FINDFORCEDMATE) == 0 || !rules::DoOthersRest(node));
}

// While forced mates are looked for without any other rule: takes the others off the node's word.
inline void CutToForcedMate(TChessboard& node) {
    if ((node.Heur & SH_FINDFORCEDMATE) != 0 && node.m_pass < kPassComplete)
        rules::CutToForcedMate(node);
}

namespace rules {

// Behind the tests of the word below; not for other callers.
bool ReplaceWhiteMoves(TChessboard& node, TMoveList& list);   // white_lists.cpp
int CountWithoutWorst(int count);                             // white_lists.cpp
bool IsKingMoveLeftOut(const TChessboard& node, TMove move);  // receding_king.cpp
bool IsMoveLeftOut(TChessboard& child);                       // white_screens.cpp
bool IsReplyLeftOut(TChessboard& child);                      // position_test.cpp
void UpdateAfterWhiteMove(TChessboard& child);                // white_updates.cpp
void UpdateAfterBlackMove(TChessboard& child);                // black_updates.cpp

}  // namespace rules

// White's list

// A list in place of white's moves, made by a heuristic; it taints the node. False: none, and then
// the heuristic may have taken its bit off the node.
inline bool ReplaceWhiteMoves(TChessboard& node, TMoveList& list) {
    return AreRulesOn(node, kListHeuristics) && rules::ReplaceWhiteMoves(node, list);
}

// Of a list of so many moves in the sort's order, how many are searched; fewer taint the node.
inline int CountWithoutWorst(const TChessboard& node, int count) {
    return AreRulesOn(node, SH_SKIPWORSTWHITEMOVES) ? rules::CountWithoutWorst(count) : count;
}

// After a list that the sort had cut failed: switches off, for this node, the heuristic that had it
// cut. False if it is off already.
bool TakeFullList(TChessboard& node);  // white_lists.cpp

// White's moves. A move left out taints the node.

// Before it is made.
inline bool IsKingMoveLeftOut(const TChessboard& node, TMove move) {
    return AreRulesOn(node, SH_DONTRECEDEBLACKKING) && rules::IsKingMoveLeftOut(node, move);
}
// After it was made: the child is the black node.
inline bool IsMoveLeftOut(TChessboard& child) {
    return AreRulesOn(child, kMoveHeuristics) && rules::IsMoveLeftOut(child);
}

// Black's replies. The child is the white node, the reply its last move.

// The line is given up; the black node is doubtful.
inline bool IsReplyLeftOut(TChessboard& child) {
    return AreRulesOn(child, ~u32{0}) && rules::IsReplyLeftOut(child);
}

// The word of the subtree, after each move that was made, before anything else looks at the child.
// HeurParams follows.
inline void UpdateAfterWhiteMove(TChessboard& child) {
    if (IsWordOn(child))
        rules::UpdateAfterWhiteMove(child);
}
inline void UpdateAfterBlackMove(TChessboard& child) {
    if (IsWordOn(child))
        rules::UpdateAfterBlackMove(child);
}

// Notes a single queen that hunts the king, before black's first reply.
void NoteSingleQueen(TChessboard& node);  // single_queen.cpp

}  // namespace quillmere
