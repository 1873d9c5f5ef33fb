#include "search/repetition.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::CSearchBoard;

int LevelAfter(CSearchBoard& board, const std::vector<std::string>& moves) {
    for (const std::string& move : moves)
        EXPECT_EQ(board.Play(move), kMoveMade) << move;
    int level = 0;
    return IsRepetition(board.Node(), &level) ? level : 0;
}

constexpr const char* kRooks = "r6k/8/8/8/8/8/8/R6K";

// The root itself is never the earlier node, so the walks start after two moves.
const std::vector<std::string> kStart = {"a1b1", "a8b8"};

TEST(IsRepetition, TheRoot_IsNoRepetition) {
    CSearchBoard board(kRooks, 13);
    EXPECT_EQ(LevelAfter(board, {"h1g1", "h8g8", "g1h1", "g8h8"}), 0);
    EXPECT_EQ(LevelAfter(board, {"h1g1"}), 12) << "its children are";
}

TEST(IsRepetition, ShuffleOfFourHalfMoves_GivesTheEarlierLevel) {
    CSearchBoard board(kRooks, 15);
    LevelAfter(board, kStart);
    EXPECT_EQ(LevelAfter(board, {"h1g1", "h8g8", "g1h1"}), 0);
    EXPECT_EQ(LevelAfter(board, {"g8h8"}), 13);
}

TEST(IsRepetition, LongWalk_GoesBackTwoHalfMovesAtATime) {
    CSearchBoard board(kRooks, 23);
    LevelAfter(board, kStart);
    EXPECT_EQ(LevelAfter(board, {"h1g1", "h8g8", "g1f1", "g8f8", "f1g1", "f8g8", "g1h1", "g8h8"}),
              21);
}

TEST(IsRepetition, PawnMoveOrCapture_StartsAnew) {
    CSearchBoard pawn("r6k/p7/8/8/8/8/7P/R6K", 21);
    EXPECT_EQ(LevelAfter(pawn, {"h1g1", "a7a6", "g1h1", "h8g8", "h1g1"}), 0);
    EXPECT_EQ(LevelAfter(pawn, {"g8h8"}), 19) << "the node after the pawn move";
    CSearchBoard capture("r6k/8/8/8/8/8/8/R6K", 21);
    EXPECT_EQ(LevelAfter(capture, {"a1a8", "h8g7", "h1g1", "g7h7", "g1h1"}), 0);
    EXPECT_EQ(LevelAfter(capture, {"h7g7"}), 19);
}

TEST(IsRepetition, BlackToMove_IsFoundAsWell) {
    CSearchBoard board(kRooks, 15);
    LevelAfter(board, kStart);
    EXPECT_EQ(LevelAfter(board, {"h1g1", "h8g8", "g1h1", "g8h8"}), 13);
    EXPECT_EQ(LevelAfter(board, {"h1g1"}), 12);
}

TEST(IsRepetition, LostCastlingRight_MakesItAnotherPosition) {
    CSearchBoard board("1k6/8/8/8/8/8/8/4K2R", 21);
    EXPECT_EQ(LevelAfter(board, {"e1f1", "b8a8", "f1e1", "a8b8"}), 0);
    // The second time round nothing changes any more.
    EXPECT_EQ(LevelAfter(board, {"e1f1", "b8a8", "f1e1", "a8b8"}), 17);
}

TEST(IsRepetition, EnPassantInTheEarlierNode_MakesItAnotherPosition) {
    CSearchBoard board("r6k/p7/8/1P6/8/8/8/R6K", 22);
    EXPECT_EQ(LevelAfter(board, {"a7a5"}), 0);
    EXPECT_EQ(LevelAfter(board, {"h1g1", "h8g8", "g1h1", "g8h8"}), 0) << "bxa6 was possible";
    EXPECT_EQ(LevelAfter(board, {"h1g1", "h8g8", "g1h1", "g8h8"}), 17);
}

TEST(IsRepetition, Bound_LimitsTheLevel) {
    CSearchBoard board(kRooks, 15);
    LevelAfter(board, kStart);
    board.Context().repetitionBound = 12;
    EXPECT_EQ(LevelAfter(board, {"h1g1", "h8g8", "g1h1", "g8h8"}), 0);
    EXPECT_EQ(LevelAfter(board, {"h1g1"}), 12);
    board.Context().repetitionBound = 0;
    EXPECT_EQ(LevelAfter(board, {}), 0) << "zero switches the test off";
}

TEST(IsRepetition, FewerThanFourParents_IsNone) {
    CSearchBoard board(kRooks, 13);
    EXPECT_EQ(LevelAfter(board, {}), 0);
    EXPECT_EQ(LevelAfter(board, {"h1g1", "h8g8"}), 0);
}

TEST(RaiseHorizon, KeepsTheHighestAndEveryDoubt) {
    TThreadContext thread(9);
    RaiseHorizon(thread, 3, 7, false);
    RaiseHorizon(thread, 3, 5, true);
    EXPECT_EQ(thread.levels[3].horizon, 7);
    EXPECT_TRUE(thread.levels[3].isHorizonDoubtful);
    thread.ClearHorizon(3);
    EXPECT_EQ(thread.levels[3].horizon, 0);
    EXPECT_FALSE(thread.levels[3].isHorizonDoubtful);
}

}  // namespace
}  // namespace quillmere
