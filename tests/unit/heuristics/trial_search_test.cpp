#include "heuristics/heur_params.h"
#include "heuristics/trial_search.h"
#include "search/pause.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using test::CSearchBoard;

// A mate in three in which black's king is not let off the edge.
constexpr const char* kMateInThree = "8/6R1/7p/5K1k/8/6p1/5bPP/4N3";
constexpr const char* kMateInFour = "8/8/3k4/8/8/3K4/8/R6R";

// No mate in five, and much to search.
constexpr const char* kLongWork = "8/8/8/8/4k3/8/8/K6R";

TTrialRequest Request(u32 heur, int halfMoves, u64 workLimit = kNoTrialLimit) {
    TTrialRequest request;
    request.heur = heur;
    request.halfMoves = halfMoves;
    request.workLimit = workLimit;
    return request;
}

void Prepare(CSearchBoard& board) {
    board.Thread().computeHeurParams = ComputeHeurParams;
}

TEST(RunTrial, ShorterTasksOfTheSameRoot_AreJudgedByTheirOwnLength) {
    CSearchBoard board(kMateInFour, 9);
    Prepare(board);
    EXPECT_EQ(RunTrial(board.Root(), Request(0, 9)).verdict, ETrialVerdict::kMate);
    EXPECT_EQ(RunTrial(board.Root(), Request(0, 7)).verdict, ETrialVerdict::kMate);
    EXPECT_EQ(RunTrial(board.Root(), Request(0, 5)).verdict, ETrialVerdict::kNoMate);
}

TEST(RunTrial, UnderAWord_NoMateIsOnlyDoubt) {
    CSearchBoard board(kMateInFour, 9);
    Prepare(board);
    EXPECT_EQ(RunTrial(board.Root(), Request(SH_KEEPKINGONTHEEDGE, 5)).verdict,
              ETrialVerdict::kDoubtful);
}

TEST(RunTrial, ALimitOfWork_EndsItSoon) {
    CSearchBoard board(kLongWork, 9);
    Prepare(board);
    const TTrialResult whole = RunTrial(board.Root(), Request(0, 9));
    ASSERT_GT(whole.madeMoves, 1000u);
    const TTrialResult cut = RunTrial(board.Root(), Request(0, 9, 300));
    EXPECT_EQ(cut.verdict, ETrialVerdict::kLimit);
    EXPECT_LT(cut.madeMoves, whole.madeMoves);
    EXPECT_FALSE(IsStopped(board.Root()));
    EXPECT_EQ(RunTrial(board.Root(), Request(0, 9)).verdict, ETrialVerdict::kNoMate);
}

TEST(RunTrial, AStopFromOutside_IsHonouredAndStays) {
    CSearchBoard board(kMateInFour, 9);
    Prepare(board);
    SetStop(board.Context(), kStopAll);
    const TTrialResult result = RunTrial(board.Root(), Request(0, 7));
    EXPECT_EQ(result.verdict, ETrialVerdict::kStopped);
    EXPECT_EQ(result.triedMoves, 0);
    EXPECT_TRUE(IsStopped(board.Root()));
    EXPECT_EQ(board.Thread().rootNode, &board.Root());
}

TEST(RunTrial, TheNodeLimitOfTheContext_CountsTrials) {
    CSearchBoard board(kLongWork, 9);
    Prepare(board);
    board.Context().nodeLimit = 256;
    EXPECT_EQ(RunTrial(board.Root(), Request(0, 9)).verdict, ETrialVerdict::kStopped);
    EXPECT_TRUE(board.Context().isNodeLimitReached);
}

TEST(RunTrial, OneFirstMove_IsTriedAlone) {
    CSearchBoard board(kMateInFour, 7);
    Prepare(board);
    TTrialRequest request = Request(0, 7);
    request.firstMove = MakeMove(String2Square("d3"), String2Square("d2"));
    const TTrialResult quiet = RunTrial(board.Root(), request);
    EXPECT_EQ(quiet.verdict, ETrialVerdict::kNoMate);
    EXPECT_EQ(quiet.triedMoves, 1);
    request.firstMove = MakeMove(String2Square("a1"), String2Square("a6"));
    const TTrialResult key = RunTrial(board.Root(), request);
    EXPECT_EQ(key.verdict, ETrialVerdict::kMate);
    EXPECT_TRUE(MovesEqual(key.mate, *request.firstMove));
}

TEST(TryHeur, SeesAMate_AndPutsTheWordBack) {
    CSearchBoard board(kMateInThree, 9);
    Prepare(board);
    SetHeur(board.Root(), SH_DONTLOSEANYFIGURES);
    EXPECT_TRUE(TryHeur(board.Root(), SH_KEEPKINGONTHEEDGE, 3, kNoTrialLimit));
    EXPECT_FALSE(TryHeur(board.Root(), SH_KEEPKINGONTHEEDGE, 2, kNoTrialLimit));
    EXPECT_EQ(board.Root().Heur, u32{SH_DONTLOSEANYFIGURES});
}

TEST(TryKing, PutsTheFormsBack) {
    CSearchBoard board(kMateInThree, 9);
    Prepare(board);
    const THeuristicSettings before = board.Thread().heuristics;
    EXPECT_TRUE(TryKing(board.Root(), false, false, false, 3));
    EXPECT_TRUE(TryKing(board.Root(), false, false, true, 3));
    EXPECT_FALSE(TryStrictKing(board.Root(), 2));
    EXPECT_TRUE(before == board.Thread().heuristics);
}

}  // namespace
}  // namespace quillmere
