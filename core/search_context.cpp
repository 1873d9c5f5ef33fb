#include "core/search_context.h"

namespace quillmere {

void TSearchContext::ResetAnalysis() {
    nodeCount.store(0, std::memory_order_relaxed);
    isNodeLimitReached.store(false, std::memory_order_relaxed);
    relaxationTimes.Start(relaxationClock());
}

CStopSlotLock::CStopSlotLock(TSearchContext& context) : m_context(context) {
    while (m_context.stopLock.test_and_set(std::memory_order_acquire)) {
    }
}

CStopSlotLock::~CStopSlotLock() {
    m_context.stopLock.clear(std::memory_order_release);
}

void SetManualControl(TSearchContext& context, u16 boundLevel, ERotate mode, u16 stopThread) {
    const CStopSlotLock lock(context);
    if (context.stopKind.load(std::memory_order_relaxed) != kStopManual) {
        context.savedStopKind = context.stopKind.load(std::memory_order_relaxed);
        context.savedStopThread = context.stopThread.load(std::memory_order_relaxed);
    }
    context.stopBoundLevel.store(boundLevel, std::memory_order_relaxed);
    context.rotateMode.store(mode, std::memory_order_relaxed);
    context.stopThread.store(stopThread, std::memory_order_relaxed);
    context.stopKind.store(kStopManual, std::memory_order_relaxed);
}

void SetStop(TSearchContext& context, u8 stopKind, u16 stopThread) {
    const CStopSlotLock lock(context);
    context.stopThread.store(stopThread, std::memory_order_relaxed);
    context.stopKind.store(stopKind, std::memory_order_relaxed);
}

}  // namespace quillmere
