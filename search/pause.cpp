#include "search/pause.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace quillmere {
namespace {

struct TStopSlot {
    u8 kind;
    bool isAddressed;
};

TStopSlot ReadStopSlot(const TChessboard& node) {
    TSearchContext& context = *node.m_searchContext;
    const CStopSlotLock lock(context);
    const u16 thread = context.stopThread.load(std::memory_order_relaxed);
    return TStopSlot{context.stopKind.load(std::memory_order_relaxed),
                     thread == kAllThreads ||
                         thread == static_cast<u16>(node.m_threadContext->threadId)};
}

// Manual control has done its work at this node: what stood in the slot before comes back.
void RestoreStopSlot(TSearchContext& context) {
    const CStopSlotLock lock(context);
    if (context.stopKind.load(std::memory_order_relaxed) != kStopManual)
        return;
    context.stopThread.store(context.savedStopThread, std::memory_order_relaxed);
    context.stopKind.store(context.savedStopKind, std::memory_order_relaxed);
}

// Steps back to the move that was interrupted and puts it behind the current one, or last.
void Rotate(TListState& state, ERotate mode) {
    if (mode == ERotate::kNone || state.index == 0)
        return;
    --state.index;
    TMove* interrupted = state.list + state.index;
    if (mode == ERotate::kSwap && state.index + 1 < state.count)
        std::swap(interrupted[0], interrupted[1]);
    else if (mode == ERotate::kMoveToEnd)
        std::rotate(interrupted, interrupted + 1, state.list + state.count);
}

void Sleep(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace

EPause CheckPauseSlow(TChessboard& node, TListState& state, int sleepMilliseconds) {
    TSearchContext& context = *node.m_searchContext;
    TThreadContext& thread = *node.m_threadContext;
    for (;;) {
        const u8 stopLevel = thread.stopLevel.load(std::memory_order_relaxed);
        if (stopLevel >= kThreadStops)
            return EPause::kStop;
        const TStopSlot slot = ReadStopSlot(node);
        if (slot.kind == kStopAll && slot.isAddressed) {
            thread.stopLevel.store(kThreadStops, std::memory_order_relaxed);
            return EPause::kStop;
        }
        if (slot.kind == kStopManual && slot.isAddressed) {
            if (node.m_nMoves < context.stopBoundLevel.load(std::memory_order_relaxed))
                return EPause::kSkip;
            Rotate(state, context.rotateMode.load(std::memory_order_relaxed));
            RestoreStopSlot(context);
            continue;
        }
        const bool isPaused = slot.kind == kStopPause && slot.isAddressed;
        if (stopLevel != kThreadWaits && !isPaused)
            return EPause::kRun;
        Sleep(isPaused ? sleepMilliseconds : kWhitePauseMs);
    }
}

}  // namespace quillmere
