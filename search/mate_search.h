// The recursive proof search: FindMate is the white node, CheckDefences the black node.
//
// They answer one question: can white force mate within m_nMoves half-moves against every
// defence? There is no score, no window and no iterative deepening inside. A white node needs one
// move that works; a black node needs all defences to fail.
//
// The caller has made the move that led to the node. The node's search context and thread context
// must be set, and the thread context must have room for its level. After a stop every result is
// void (IsStopped in search/pause.h). Nodes never throw and never allocate.
//
// Doubt. A "no mate" is exact only if nothing was left out below it. A white node is tainted when
// a move was left out by an assumption, when a child was doubtful, when its list was replaced or
// cut; a tainted node answers kDoubtful. A result that depends on a repetition higher up is
// kRepetition; it carries the level it depends on (its horizon) and its doubt in the thread
// context, and the node that the horizon points to, or any above it, resolves it.
#pragma once

#include "core/chessboard.h"
#include "core/verdict.h"

namespace quillmere {

// White to move, m_nMoves odd. useRegister: the register of solved positions may be asked.
TVerdict FindMate(TChessboard& node, bool useRegister);

// Black to move, m_nMoves even: kMate if all defences fail, else the verdict of the first that
// does not.
TVerdict CheckDefences(TChessboard& node);

// Adds the nodes that the thread has not yet added to the shared counter.
void FlushNodeCount(const TChessboard& node);

}  // namespace quillmere
