// Dynamic fallback (`HeurFallback`): a node whose position has changed its type tries a stricter word.
//
// White's king now stands before the black pawn that is nearest to promotion, and the black king on the
// edge: black has little left to move but its king, so that white may well mate without letting it
// move at all. The node is searched so to its full length within a little work. A mate is a mate
// under any word; otherwise the node stands as it was.
//
// Threads: as FindMate.
#pragma once

#include "core/chessboard.h"
#include "core/thread_context.h"

namespace quillmere {

// The position of the white node has come into the type with the last two half-moves, and its word is
// not the strict one.
bool IsFallbackDue(const TChessboard& node);

// Does white mate in the node, with the black king not let move? False too after a stop and where the
// work did not suffice. Everything but the register is as before.
bool MatesByFallback(const TChessboard& node);

// Fallbacks stand neither in each other nor in a search for quicker mates.
inline bool MayFallBack(const TChessboard& node) {
    const TThreadContext& thread = *node.m_threadContext;
    return thread.heuristics.HeurFallback && node.Heur != 0 && node.m_pass < kPassComplete &&
           !thread.quickSearch.isRunning && thread.replay.flag == 0 && IsFallbackDue(node);
}

}  // namespace quillmere
