// Cases named "Thread..." start threads; they are the ones to run under the thread sanitizer.
#include "search/mate_search.h"
#include "search/pause.h"
#include "search/solve.h"
#include "tests/support/search_board.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace quillmere {
namespace {

using test::CSearchBoard;

constexpr const char* kFen = "8/6R1/7p/5K1k/8/6p1/5bPP/4N3";

std::vector<int> Order(const std::vector<TMove>& list) {
    std::vector<int> order;
    for (const TMove move : list)
        order.push_back(move.to);
    return order;
}

TEST(CheckPause, NothingAsked_Runs) {
    CSearchBoard board(kFen, 5);
    TListState state;
    EXPECT_EQ(CheckPause(board.Root(), state), EPause::kRun);
}

TEST(CheckPause, StopForAll_IsLatchedInTheThread) {
    CSearchBoard board(kFen, 5);
    SetStop(board.Context(), kStopAll);
    TListState state;
    EXPECT_EQ(CheckPause(board.Root(), state), EPause::kStop);
    SetStop(board.Context(), kStopNone);
    EXPECT_EQ(CheckPause(board.Root(), state), EPause::kStop) << "a stop once seen stays";
    EXPECT_TRUE(IsStopped(board.Root()));
}

TEST(CheckPause, StopForAnotherThread_DoesNotConcernThisOne) {
    CSearchBoard board(kFen, 5);
    board.Thread().threadId = 3;
    TListState state;
    SetStop(board.Context(), kStopAll, 2);
    EXPECT_EQ(CheckPause(board.Root(), state), EPause::kRun);
    SetStop(board.Context(), kStopAll, 3);
    EXPECT_EQ(CheckPause(board.Root(), state), EPause::kStop);
}

TEST(CheckPause, StopLevelOfTheThread_Stops) {
    CSearchBoard board(kFen, 5);
    board.Thread().stopLevel = kThreadStops;
    TListState state;
    EXPECT_EQ(CheckPause(board.Root(), state), EPause::kStop);
}

TEST(CheckPause, ManualControlBelowItsBound_Skips) {
    CSearchBoard board(kFen, 5);
    SetManualControl(board.Context(), 7, ERotate::kNone);
    TListState state;
    EXPECT_EQ(CheckPause(board.Root(), state), EPause::kSkip);
    EXPECT_EQ(board.Context().stopKind.load(), kStopManual) << "the node at the bound ends it";
}

TEST(CheckPause, ManualSwap_TriesTheInterruptedMoveNext) {
    CSearchBoard board(kFen, 5);
    SetManualControl(board.Context(), 5, ERotate::kSwap);
    std::vector<TMove> list = {MakeMove(0, 1), MakeMove(0, 2), MakeMove(0, 3), MakeMove(0, 4)};
    TListState state{list.data(), 4, 2};
    EXPECT_EQ(CheckPause(board.Root(), state), EPause::kRun);
    EXPECT_EQ(state.index, 1);
    EXPECT_EQ(Order(list), (std::vector<int>{1, 3, 2, 4}));
    EXPECT_EQ(board.Context().stopKind.load(), kStopNone) << "what was saved comes back";
}

TEST(CheckPause, ManualMoveToEnd_TriesTheInterruptedMoveLast) {
    CSearchBoard board(kFen, 5);
    SetManualControl(board.Context(), 5, ERotate::kMoveToEnd);
    std::vector<TMove> list = {MakeMove(0, 1), MakeMove(0, 2), MakeMove(0, 3), MakeMove(0, 4)};
    TListState state{list.data(), 4, 2};
    EXPECT_EQ(CheckPause(board.Root(), state), EPause::kRun);
    EXPECT_EQ(state.index, 1);
    EXPECT_EQ(Order(list), (std::vector<int>{1, 3, 4, 2}));
}

TEST(CheckPause, ManualControlOverAPause_GivesThePauseBack) {
    CSearchBoard board(kFen, 5);
    SetStop(board.Context(), kStopPause, 7);
    SetManualControl(board.Context(), 5, ERotate::kSwap);
    SetManualControl(board.Context(), 5, ERotate::kMoveToEnd);
    std::vector<TMove> list = {MakeMove(0, 1), MakeMove(0, 2), MakeMove(0, 3)};
    TListState state{list.data(), 3, 1};
    EXPECT_EQ(CheckPause(board.Root(), state), EPause::kRun) << "the pause is another thread's";
    EXPECT_EQ(Order(list), (std::vector<int>{2, 3, 1}));
    EXPECT_EQ(board.Context().stopKind.load(), kStopPause);
    EXPECT_EQ(board.Context().stopThread.load(), 7);
}

TEST(CheckPause, ManualControlAtTheFirstMove_RotatesNothing) {
    CSearchBoard board(kFen, 5);
    SetManualControl(board.Context(), 5, ERotate::kSwap);
    std::vector<TMove> list = {MakeMove(0, 1), MakeMove(0, 2)};
    TListState state{list.data(), 2, 0};
    EXPECT_EQ(CheckPause(board.Root(), state), EPause::kRun);
    EXPECT_EQ(state.index, 0);
    EXPECT_EQ(Order(list), (std::vector<int>{1, 2}));
}

TEST(FindMate, ManualSkip_IsDoubtfulAndNeverAMate) {
    CSearchBoard board("6k1/5ppp/8/8/8/8/8/R3K3", 3);
    for (const u16 bound : {4, 5, 9}) {
        SetManualControl(board.Context(), bound, ERotate::kNone);
        EXPECT_EQ(FindMate(board.Root(), true), kDoubtful) << bound;
    }
}

TEST(CheckDefences, ManualSkipOfAHeldThread_IsDoubtful) {
    CSearchBoard board("6k1/5ppp/8/8/8/8/8/R3K3", 3);
    ASSERT_EQ(board.Play("a1a8"), kMoveMade);
    ASSERT_EQ(CheckDefences(board.Node()), kMate);
    SetManualControl(board.Context(), 5, ERotate::kNone);
    board.Thread().stopLevel = kThreadWaits;
    EXPECT_EQ(CheckDefences(board.Node()), kDoubtful);
}

TEST(FindMate, StoppedSearch_ReportsNoMate) {
    // A mate in three that a stopped thread must not claim.
    CSearchBoard board(kFen, 5);
    SetStop(board.Context(), kStopAll);
    EXPECT_EQ(FindMate(board.Root(), true), kNoMate);
    EXPECT_TRUE(IsStopped(board.Root()));
}

TEST(Solve, ThreadPausedAndResumed_GivesTheSameResult) {
    CSearchBoard board("n7/3p1p2/NpkNp1p1/1p2P3/3Q4/6B1/b7/4K3", 5);
    TSearchContext context;
    TSolveResult paused;
    SetStop(context, kStopPause);
    std::atomic<bool> isDone{false};
    std::thread thread([&] {
        paused = Solve(board.Root(), TSolveRequest{.halfMoves = 5}, context);
        isDone = true;
    });
    EXPECT_FALSE(isDone.load());
    SetStop(context, kStopNone);
    thread.join();
    TSearchContext other;
    const TSolveResult straight = Solve(board.Root(), TSolveRequest{.halfMoves = 5}, other);
    EXPECT_EQ(paused.verdict, straight.verdict);
    EXPECT_EQ(paused.nodes, straight.nodes);
}

TEST(Solve, ThreadStoppedFromOutside_EndsAndClaimsNothing) {
    // Far too long to be decided.
    CSearchBoard board("8/8/8/3k4/8/8/3P4/3K4", 61);
    TSearchContext context;
    TSolveResult result;
    std::thread thread(
        [&] { result = Solve(board.Root(), TSolveRequest{.halfMoves = 61}, context); });
    while (context.nodeCount.load() == 0)
        std::this_thread::yield();
    SetStop(context, kStopAll);
    thread.join();
    EXPECT_EQ(result.verdict, ESolveVerdict::kStopped);
    EXPECT_TRUE(result.keys.empty());
    EXPECT_FALSE(result.isComplete);
}

}  // namespace
}  // namespace quillmere
