#include "search/best_defence.h"
#include "search/pause.h"
#include "tests/support/boards.h"
#include "tests/support/search_board.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using test::CSearchBoard;
using test::MoveOf;
using test::TextOfMove;

std::string BestOf(TChessboard& node) {
    TMove move = MoveOf("h8a1");
    EXPECT_TRUE(GetBestDefence(node, &move));
    return TextOfMove(move);
}

std::string BestOf(const std::string& fen, u16 halfMoves) {
    CSearchBoard board(fen, halfMoves);
    return BestOf(board.Root());
}

TEST(GetBestDefence, NoLegalMove_IsTheNullMove) {
    for (const char* fen : {"k7/1Q6/1K6/8/8/8/8/8", "k7/8/1Q6/8/8/8/8/4K3"}) {
        CSearchBoard board(fen, 4);
        TMove move = {1, 2, kQueen, 3};
        ASSERT_TRUE(GetBestDefence(board.Root(), &move)) << fen;
        EXPECT_EQ(move.from, 0);
        EXPECT_EQ(move.to, 0);
        EXPECT_EQ(move.flags, 0);
    }
}

TEST(GetBestDefence, OneLegalMove_IsTheResultWithoutASearch) {
    CSearchBoard board("7k/8/6K1/8/8/8/8/R7", 8);
    EXPECT_EQ(BestOf(board.Root()), "h8g8");
    EXPECT_EQ(board.Context().nodeCount, 0u);
    EXPECT_EQ(board.Thread().pendingNodes, 0u);
}

TEST(GetBestDefence, DefencesOfOneLength_AreToldApartByTheListsOrder) {
    // All three are mated by Rb8. They leave in the order of the list, and the last stays.
    EXPECT_EQ(BestOf("7k/8/6K1/8/p6p/8/8/1R6", 2), "h8g8");
    // The longer task has more rounds, but one defence is left after the first.
    EXPECT_EQ(BestOf("7k/8/6K1/8/p6p/8/8/1R6", 8), "h8g8");
}

TEST(GetBestDefence, TheDefenceThatLastsLonger_Wins) {
    // Rb8 mates at once unless the new queen or rook can go between.
    EXPECT_EQ(BestOf("7k/8/6K1/8/p7/8/2p5/1R6", 2), "c2c1q");
}

TEST(GetBestDefence, MoveAfterWhichWhiteCannotMate_IsTheBestAtOnce) {
    // Taking the pawn leaves a bare king. Other moves come before it in the list and hold as long.
    CSearchBoard board("8/8/8/kP6/8/8/8/7K", 30);
    EXPECT_EQ(BestOf(board.Root()), "a5b5");
    EXPECT_EQ(board.Context().nodeCount + board.Thread().pendingNodes, 0u)
        << "it is met in the first round";
}

TEST(GetBestDefence, DefencesThatSurviveAllRounds_GiveTheFirstOfTheList) {
    EXPECT_EQ(BestOf("8/8/8/8/8/7p/5k1P/7K", 20), "f2f1");
    EXPECT_EQ(BestOf("8/8/8/8/8/7p/5k1P/7K", 6), "f2f1");
}

TEST(GetBestDefence, NoHalfMovesLeft_IsTheFirstOfTheListUnsearched) {
    CSearchBoard board("7k/8/6K1/8/p6p/8/8/1R6", 2);
    board.Root().m_nMoves = 0;
    EXPECT_EQ(BestOf(board.Root()), "a4a3");
}

TEST(GetBestDefence, InCheck_OnlyEvasionsAreTried) {
    EXPECT_EQ(BestOf("k6R/8/8/2K5/8/8/8/8", 2), "a8a7");
}

TEST(GetBestDefence, OneColourPlay_HasThePassInItsList) {
    // Stalemate, but for the bishop that the mode took off the board.
    CSearchBoard board("k7/8/1Q6/8/8/8/8/4K3", 4);
    board.Root().m_captureState = kOneColourParity1;
    TMove move{};
    ASSERT_TRUE(GetBestDefence(board.Root(), &move));
    EXPECT_EQ(move.from, test::SquareOf("a8"));
    EXPECT_EQ(move.to, test::SquareOf("a8"));
}

TEST(GetBestDefence, Stop_LeavesTheResultAlone) {
    CSearchBoard board("7k/8/6K1/8/p6p/8/8/1R6", 8);
    board.Thread().stopLevel = kThreadStops;
    TMove move = MoveOf("a1h8");
    EXPECT_FALSE(GetBestDefence(board.Root(), &move));
    EXPECT_EQ(TextOfMove(move), "a1h8");
}

TEST(GetBestDefence, StopOfTheAnalysis_IsSeenInTheSearch) {
    CSearchBoard board("8/8/8/8/3k4/8/1Q6/K7", 12);
    SetStop(board.Context(), kStopAll);
    TMove move = MoveOf("a1h8");
    EXPECT_FALSE(GetBestDefence(board.Root(), &move));
    EXPECT_EQ(TextOfMove(move), "a1h8");
}

TEST(GetBestDefence, NodeOfTheStack_IsNotOverwritten) {
    // White's first move has been made in the slot of the root's level, as a search does.
    CSearchBoard board("8/8/8/8/8/Q7/4p3/5k1K", 9);
    TChessboard& node = board.Thread().ChildSlot(9);
    node = board.Root();
    node.m_parent = &board.Root();
    ASSERT_EQ(MakeWhiteMove(node, MoveOf("a3f8")), kMoveMade);
    const TChessboard before = node;
    EXPECT_EQ(BestOf(node), "f1e1");
    EXPECT_EQ(std::memcmp(&before, &node, sizeof node), 0);
    EXPECT_EQ(board.Root().m_nMoves, 9);
}

TEST(GetBestDefence, AndTheMainLine_NameTheSameMove) {
    for (const char* fen : {"7k/8/6K1/8/p6p/8/8/1R6", "8/8/8/8/4Q3/8/8/5k1K"}) {
        CSearchBoard board(fen, 8);
        TMove defence{};
        int halfMoves = 0;
        ASSERT_TRUE(FindLongestDefence(board.Root(), &defence, &halfMoves));
        EXPECT_EQ(TextOfMove(defence), BestOf(board.Root())) << fen;
    }
}

TEST(FindLongestDefence, MatedAlready_IsFalse) {
    CSearchBoard board("k7/1Q6/1K6/8/8/8/8/8", 4);
    TMove defence{};
    int halfMoves = 0;
    EXPECT_FALSE(FindLongestDefence(board.Root(), &defence, &halfMoves));
}

TEST(FindLongestDefence, TellsWhatWhiteNeedsAtLeast) {
    CSearchBoard board("7k/8/6K1/8/p6p/8/8/1R6", 8);
    TMove defence{};
    int halfMoves = 0;
    ASSERT_TRUE(FindLongestDefence(board.Root(), &defence, &halfMoves));
    EXPECT_EQ(halfMoves, 1);
    EXPECT_EQ(TextOfMove(defence), "h8g8");
}

TEST(FindLongestDefence, Stop_LeavesTheResultAlone) {
    CSearchBoard board("7k/8/6K1/8/p6p/8/8/1R6", 8);
    board.Thread().stopLevel = kThreadStops;
    TMove defence = MoveOf("a1h8");
    int halfMoves = 77;
    EXPECT_FALSE(FindLongestDefence(board.Root(), &defence, &halfMoves));
    EXPECT_EQ(TextOfMove(defence), "a1h8");
    EXPECT_EQ(halfMoves, 77);
}

}  // namespace
}  // namespace quillmere
