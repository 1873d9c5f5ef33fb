// The search for a quicker mate: before a node makes its list it looks for a mate in fewer moves than
// it has, so that a long search need not find a short mate the slow way.
//
// It is the ordinary node on a copy with fewer half-moves, with the same parents, so that castling, en
// passant and repetition are judged by the whole line. Forced-mate restrictions are off in it; in the
// mode that takes checks only, it takes checks only too. A mate that it finds is a mate of the node.
// Its failure proves nothing: a position of the line above may have been repeated, or moves were left
// out. What it proves exactly below itself is in the register like that of any node.
//
// Threads: as FindMate.
#pragma once

#include "core/chessboard.h"
#include "core/thread_context.h"
#include "core/verdict.h"

namespace quillmere {

// Half-moves of the quick searches that can be asked for by QuickMate.
constexpr int kMaxQuickMateDepth = 18;

// White, to move in `node`, mates within `depth` half-moves: the routine for depths 1 and 2, that for
// 3 and 4, and so on to 17 and 18. kMate if so, and also if the register knows a longer mate on the
// way that the half-moves of the node still allow; else what its search said, which proves nothing of
// the node; kNothingKnown outside 1..18, inside another quick search, and where the node has no more
// half-moves than that. Void after a stop.
TVerdict QuickMate(TChessboard& node, int depth);

// Tries the quick searches that are due at the node: kMate if one mates, else kNothingKnown.
TVerdict TryQuickMates(TChessboard& node);

// Quick searches are not nested.
inline bool MayTryQuickMates(const TChessboard& node) {
    constexpr int kLeastHalfMoves = 5;  // below it the direct tests are as quick
    const TThreadContext& thread = *node.m_threadContext;
    return node.m_nMoves >= kLeastHalfMoves && !thread.quickSearch.isRunning &&
           thread.replay.flag == 0;
}

}  // namespace quillmere
