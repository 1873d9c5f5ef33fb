// Pause, stop and manual control, asked before every move of a node.
//
// Two bytes are polled without a lock: the stop kind of the analysis and the stop level of the
// thread. Only when one of them is not zero the slow path reads again under the lock of the slot.
//
// A stop that a thread has seen once is latched in its own stop level. From then on every result
// of the thread is void: the nodes return at once, and no node stores or reports a mate without
// having looked at the latch.
#pragma once

#include "core/search_context.h"
#include "core/thread_context.h"

namespace quillmere {

enum class EPause {
    kRun,   // go on with the move at state.index (it may have been rotated)
    kStop,  // leave: the result is void
    kSkip,  // manual control leaves this node: the result is doubtful
};

// The list of a node and the move about to be tried, for the rotation of manual control.
struct TListState {
    TMove* list = nullptr;
    int count = 0;
    int index = 0;
};

EPause CheckPauseSlow(TChessboard& node, TListState& state, int sleepMilliseconds);

// Waits of a paused white and a paused black node, in milliseconds.
constexpr int kWhitePauseMs = 10;
constexpr int kBlackPauseMs = 100;

inline EPause
CheckPause(TChessboard& node, TListState& state, int sleepMilliseconds = kWhitePauseMs) {
    if (node.m_searchContext->stopKind.load(std::memory_order_relaxed) == kStopNone &&
        node.m_threadContext->stopLevel.load(std::memory_order_relaxed) == kThreadRuns)
        return EPause::kRun;
    return CheckPauseSlow(node, state, sleepMilliseconds);
}

// The thread has seen a stop: everything it returns is void.
inline bool IsStopped(const TChessboard& node) {
    return node.m_threadContext->stopLevel.load(std::memory_order_relaxed) >= kThreadStops;
}

// The thread has used up its limit of work: it stops itself, unless it has been stopped already.
inline bool IsWorkUsedUp(const TChessboard& node) {
    TThreadContext& thread = *node.m_threadContext;
    if (thread.madeMoves < thread.workLimit)
        return false;
    u8 expected = kThreadRuns;
    thread.stopLevel.compare_exchange_strong(expected, kThreadAtLimit, std::memory_order_relaxed);
    return expected != kThreadWaits;
}

// The search that had the limit of work is over: the thread runs on, unless it was stopped from outside.
inline void LiftWorkLimitStop(TThreadContext& thread) {
    u8 expected = kThreadAtLimit;
    thread.stopLevel.compare_exchange_strong(expected, kThreadRuns, std::memory_order_relaxed);
}

}  // namespace quillmere
