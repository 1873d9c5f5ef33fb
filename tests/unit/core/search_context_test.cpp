#include "core/search_context.h"
#include "core/thread_context.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace quillmere {
namespace {

TEST(TSearchContext, Defaults_AreThoseOfAnUnlimitedSearch) {
    const TSearchContext context;
    EXPECT_EQ(context.stopKind.load(), kStopNone);
    EXPECT_EQ(context.stopThread.load(), kAllThreads);
    EXPECT_EQ(context.nodeLimit, 0u);
    EXPECT_FALSE(context.isExact);
    EXPECT_EQ(context.repetitionBound, 65535);
    EXPECT_EQ(context.materialTables, nullptr);
    EXPECT_EQ(context.progress, nullptr);
}

TEST(TSearchContext, ResetAnalysis_ZeroesTheCountersOnly) {
    TSearchContext context;
    context.nodeCount = 12;
    context.isNodeLimitReached = true;
    context.nodeLimit = 7;
    context.repetitionBound = 3;
    SetStop(context, kStopPause, 2);
    context.ResetAnalysis();
    EXPECT_EQ(context.nodeCount.load(), 0u);
    EXPECT_FALSE(context.isNodeLimitReached.load());
    EXPECT_EQ(context.nodeLimit, 7u);
    EXPECT_EQ(context.repetitionBound, 3);
    EXPECT_EQ(context.stopKind.load(), kStopPause);
    EXPECT_EQ(context.stopThread.load(), 2);
}

TEST(SetStop, KindAndThread_AreWrittenTogether) {
    TSearchContext context;
    SetStop(context, kStopAll);
    EXPECT_EQ(context.stopKind.load(), kStopAll);
    EXPECT_EQ(context.stopThread.load(), kAllThreads);
    SetStop(context, kStopNone, 4);
    EXPECT_EQ(context.stopKind.load(), kStopNone);
    EXPECT_EQ(context.stopThread.load(), 4);
}

// Two plain fields, written under the lock by several threads, never differ.
TEST(CStopSlotLock, OneHolder_AtATime) {
    TSearchContext context;
    int first = 0;
    int second = 0;
    int torn = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 2000; ++i) {
                const CStopSlotLock lock(context);
                torn += first != second ? 1 : 0;
                ++first;
                ++second;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(first, 6000);
    EXPECT_EQ(second, 6000);
}

// A thread's context

TEST(TThreadContext, Room_HoldsEveryLevelOfTheRoot) {
    TThreadContext thread(9, 5);
    EXPECT_EQ(thread.threadId, 5);
    EXPECT_GE(thread.nodes.size(), 10u);
    EXPECT_GE(thread.levels.size(), 10u);
    EXPECT_EQ(&thread.ChildSlot(9), &thread.nodes[9]);
    EXPECT_EQ(&thread.ChildSlot(1), &thread.nodes[1]);
    EXPECT_EQ(thread.stopLevel.load(), kThreadRuns);
    EXPECT_EQ(thread.rootNode, nullptr);
}

TEST(TThreadContext, TakenOverLine_UsesTheSecondStackUpToItsBound) {
    TThreadContext thread(9);
    thread.takeOverNodes.resize(11);
    thread.takeOverBound = 5;
    EXPECT_EQ(&thread.ChildSlot(6), &thread.nodes[6]);
    EXPECT_EQ(&thread.ChildSlot(5), &thread.takeOverNodes[5]);
    EXPECT_EQ(&thread.ChildSlot(2), &thread.takeOverNodes[2]);
}

TEST(TThreadContext, ClearHorizon_TakesTheDoubtWithIt) {
    TThreadContext thread(9);
    thread.levels[4].horizon = 8;
    thread.levels[4].isHorizonDoubtful = true;
    thread.levels[3].horizon = 7;
    thread.ClearHorizon(4);
    EXPECT_EQ(thread.levels[4].horizon, 0);
    EXPECT_FALSE(thread.levels[4].isHorizonDoubtful);
    EXPECT_EQ(thread.levels[3].horizon, 7);
}

}  // namespace
}  // namespace quillmere
