#include "core/thread_context.h"
#include "heuristics/heur_params.h"
#include "search/pause.h"
#include "search/quick_mate.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>
#include <tuple>

namespace quillmere {
namespace {

using test::CSearchBoard;

constexpr const char* kMateInOne = "k7/8/K7/8/8/8/8/7R";
// Mate in two by a quiet key.
constexpr const char* kQuietMateInTwo = "7k/8/5K2/8/8/8/8/1Q6";
constexpr const char* kMateInFour = "8/8/3k4/8/8/3K4/8/R6R";
// White gives its queen for nothing, or black's queen comes to check.
constexpr const char* kQueenFalls = "8/2k5/7Q/8/8/3K4/8/R6R";
constexpr const char* kQueenChecks = "7k/q7/2R3K1/8/8/8/8/2R5";

void Give(CSearchBoard& board, u32 heur) {
    board.Thread().computeHeurParams = ComputeHeurParams;
    board.Root().m_pass = kPassHeuristics;
    SetHeur(board.Root(), heur);
}

TEST(QuickMate, DepthsOfTheTable_AreOddOrTheOneAbove) {
    for (int depth = 1; depth <= kMaxQuickMateDepth; ++depth) {
        CSearchBoard board(kMateInFour, 21);
        EXPECT_EQ(QuickMate(board.Root(), depth), depth >= 7 ? kMate : kNoMate) << depth;
    }
}

TEST(QuickMate, OutsideTheTable_NothingIsKnown) {
    for (const int depth : {-1, 0, kMaxQuickMateDepth + 1, 1000}) {
        CSearchBoard board(kMateInOne, 21);
        EXPECT_EQ(QuickMate(board.Root(), depth), kNothingKnown) << depth;
    }
}

TEST(QuickMate, InsideAnotherQuickSearch_IsNotMade) {
    CSearchBoard board(kMateInOne, 9);
    EXPECT_TRUE(MayTryQuickMates(board.Root()));
    board.Thread().quickSearch.isRunning = true;
    EXPECT_FALSE(MayTryQuickMates(board.Root()));
    EXPECT_EQ(QuickMate(board.Root(), 3), kNothingKnown);
}

TEST(QuickMate, ALentList_IsLeftToItsNode) {
    CSearchBoard board(kMateInOne, 9);
    board.Thread().replay.flag = 1;
    EXPECT_FALSE(MayTryQuickMates(board.Root()));
}

TEST(QuickMate, WithoutMoreHalfMovesThanItsDepth_IsNotMade) {
    CSearchBoard board(kQuietMateInTwo, 5);
    EXPECT_EQ(QuickMate(board.Root(), 5), kNothingKnown);
    EXPECT_EQ(QuickMate(board.Root(), 7), kNothingKnown);
    EXPECT_EQ(QuickMate(board.Root(), 3), kMate);
}

TEST(QuickMate, InTheModeOfChecks_TakesChecksOnly) {
    for (const u8 mode : {u8{2}, u8{3}}) {
        CSearchBoard board(kQuietMateInTwo, 9);
        board.Thread().heuristics.FfmMode = mode;
        Give(board, SH_FINDFORCEDMATE);
        EXPECT_EQ(QuickMate(board.Root(), 3) == kMate, mode != 2);
        EXPECT_EQ(QuickMate(board.Root(), 1), kNoMate);
        EXPECT_FALSE(board.Thread().quickSearch.isChecksOnly);
    }
    CSearchBoard board(kMateInOne, 9);
    board.Thread().heuristics.FfmMode = 2;
    Give(board, SH_FINDFORCEDMATE);
    EXPECT_EQ(QuickMate(board.Root(), 3), kMate);
}

TEST(QuickMate, LeavesWordAndThreadAsTheyWere) {
    CSearchBoard board(kMateInFour, 9);
    Give(board, SH_FINDFORCEDMATE | SH_ASSERTBLACKKINGSURROUNDED);
    const TChessboard before = board.Root();
    QuickMate(board.Root(), 5);
    EXPECT_EQ(board.Root().Heur, before.Heur);
    EXPECT_EQ(board.Root().HeurParams, before.HeurParams);
    EXPECT_EQ(board.Root().m_nMoves, 9);
    EXPECT_FALSE(board.Thread().quickSearch.isRunning);
    EXPECT_EQ(board.Thread().quickSearch.additional, 0);
    EXPECT_FALSE(board.Thread().isLogHidden);
}

TEST(TryQuickMates, TheGivenDepth_IsTriedAtEachLevel) {
    for (int halfMoves = 5; halfMoves <= 25; halfMoves += 2) {
        CSearchBoard one(kMateInOne, static_cast<u16>(halfMoves));
        one.Context().m_shLookForQuickerMateDepth = 1;
        EXPECT_EQ(TryQuickMates(one.Root()), kMate) << halfMoves;
        CSearchBoard two(kQuietMateInTwo, static_cast<u16>(halfMoves));
        two.Context().m_shLookForQuickerMateDepth = 1;
        EXPECT_EQ(TryQuickMates(two.Root()), kNothingKnown) << halfMoves;
    }
}

TEST(TryQuickMates, InTasksOf15HalfMoves_TheDepthIsElevenAtMost) {
    // A mate in four, asked for in a task of nine half-moves.
    for (const auto& [root, given, isMate] :
         {std::tuple(9, 7, true), std::tuple(9, 31, true), std::tuple(9, 5, false)}) {
        CSearchBoard board(kMateInFour, static_cast<u16>(root));
        board.Context().m_shLookForQuickerMateDepth = static_cast<i16>(given);
        EXPECT_EQ(TryQuickMates(board.Root()) == kMate, isMate) << given;
    }
    CSearchBoard node(kMateInFour, 15);
    node.Root().m_nMoves = 13;
    node.Context().m_shLookForQuickerMateDepth = 31;
    EXPECT_EQ(TryQuickMates(node.Root()), kMate) << "eleven of thirteen";
    node.Root().m_nMoves = 11;
    EXPECT_EQ(TryQuickMates(node.Root()), kNothingKnown) << "no more than the depth";
}

TEST(TryQuickMates, ByItself_LooksUnderTheRuleOfTheEdge) {
    for (const u32 heur : {u32{0}, u32{SH_KEEPKINGONTHEEDGE}, u32{SH_ASSERTBLACKKINGSURROUNDED}}) {
        CSearchBoard board(kMateInOne, 7);
        Give(board, heur);
        EXPECT_EQ(TryQuickMates(board.Root()) == kMate, heur == SH_KEEPKINGONTHEEDGE) << heur;
    }
}

// A short mate behind the capture of white's queen, or a queen's check from the edge, and behind
// neither.
TEST(TryQuickMates, BehindAQueensCheckOrLoss_LooksFurtherInLongTasks) {
    struct TRow {
        const char* fen;
        const char* white;
        const char* black;
        u8 mode;
        u16 root;
        bool isMate;
    };
    constexpr TRow kRows[] = {
        {kQueenFalls, "h6d6", "c7d6", 0, 17, true},
        {kQueenFalls, "h6d6", "c7d6", 0, 15, false},
        {kQueenFalls, "h6d6", "c7d6", 7, 17, false},
        {kQueenFalls, "h6d6", "c7d6", 6, 17, true},
        {kQueenFalls, "h6h5", "c7d6", 0, 17, false},
        {kQueenChecks, "c1d1", "a7g1", 0, 17, true},
        {kQueenChecks, "c1d1", "a7g1", 0, 15, false},
        {kQueenChecks, "c1d1", "a7a6", 0, 17, false},
    };
    for (const TRow& row : kRows) {
        CSearchBoard board(row.fen, row.root);
        board.Thread().heuristics.FfmMode = row.mode;
        Give(board, row.mode != 0 ? SH_FINDFORCEDMATE : u32{0});
        ASSERT_EQ(board.Play(row.white), kMoveMade) << row.fen;
        ASSERT_EQ(board.Play(row.black), kMoveMade) << row.fen;
        EXPECT_EQ(TryQuickMates(board.Node()) == kMate, row.isMate)
            << row.fen << " " << row.black << " " << row.root << " " << int{row.mode};
    }
}

}  // namespace
}  // namespace quillmere
