#include "heuristics/heur_params.h"
#include "search/heuristic_fallback.h"
#include "search/pause.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>
#include <utility>

namespace quillmere {
namespace {

using test::CSearchBoard;

// White's king may go before the pawn; black's stands in the corner.
constexpr const char* kBefore = "k7/7R/8/8/8/3p4/8/4K3";

void Prepare(CSearchBoard& board, u32 heur) {
    board.Thread().computeHeurParams = ComputeHeurParams;
    board.Thread().heuristics.HeurFallback = true;
    board.Root().m_pass = kPassHeuristics;
    SetHeur(board.Root(), heur);
}

TEST(IsFallbackDue, OnceWhitesKingHasComeBeforeThePawn) {
    CSearchBoard board(kBefore, 15);
    Prepare(board, SH_DONTLOSEANYFIGURES);
    EXPECT_FALSE(IsFallbackDue(board.Root())) << "no move was made";
    board.Play("e1d2");
    board.Play("a8b8");
    EXPECT_TRUE(IsFallbackDue(board.Node()));
    EXPECT_TRUE(MayFallBack(board.Node()));
    board.Play("h7g7");
    board.Play("b8a8");
    EXPECT_FALSE(IsFallbackDue(board.Node())) << "the type is an old one";
}

TEST(IsFallbackDue, NotUnderTheStrictWord) {
    CSearchBoard board(kBefore, 15);
    Prepare(board, SH_KEEPKINGONTHEEDGE);
    board.Play("e1d2");
    board.Play("a8b8");
    EXPECT_TRUE(IsFallbackDue(board.Node()));
    board.Thread().heuristics.StrictKingMove = true;
    EXPECT_FALSE(IsFallbackDue(board.Node()));
}

TEST(MayFallBack, OnlyWithItsOptionAndAWord) {
    CSearchBoard board(kBefore, 15);
    Prepare(board, SH_DONTLOSEANYFIGURES);
    board.Play("e1d2");
    board.Play("a8b8");
    board.Thread().heuristics.HeurFallback = false;
    EXPECT_FALSE(MayFallBack(board.Node()));
    board.Thread().heuristics.HeurFallback = true;
    board.Thread().quickSearch.isRunning = true;
    EXPECT_FALSE(MayFallBack(board.Node()));
    board.Thread().quickSearch.isRunning = false;
    board.Node().m_pass = kPassComplete;
    EXPECT_FALSE(MayFallBack(board.Node()));
}

TEST(MatesByFallback, ProvesAMate_AndPutsEverythingBack) {
    for (const auto& [fen, isMate] :
         {std::pair("k7/7R/1K6/8/8/8/8/8", true), std::pair("8/8/8/8/4k3/8/8/K6R", false)}) {
        CSearchBoard board(fen, 9);
        Prepare(board, SH_DONTLOSEANYFIGURES);
        const THeuristicSettings before = board.Thread().heuristics;
        EXPECT_EQ(MatesByFallback(board.Root()), isMate) << fen;
        EXPECT_TRUE(before == board.Thread().heuristics);
        EXPECT_EQ(board.Thread().workLimit, kNoWorkLimit);
        EXPECT_FALSE(board.Thread().isSafe);
        EXPECT_FALSE(board.Thread().quickSearch.isRunning);
        EXPECT_FALSE(IsStopped(board.Root()));
        EXPECT_EQ(board.Root().Heur, u32{SH_DONTLOSEANYFIGURES});
    }
}

}  // namespace
}  // namespace quillmere
