#include "core/make_move.h"
#include "core/rights.h"
#include "tests/support/boards.h"
#include "tests/support/game_line.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>

namespace quillmere {
namespace {

using test::CGameLine;
using test::SquareOf;
using test::TextOfSquare;
using test::ValidBoard;

constexpr const char* kRooksAtHome = "r3k2r/8/8/8/8/8/8/R3K2R";

// The rights after a line of play: 1 white short, 2 white long, 4 and 8 the same for black.
int RightsAfter(const char* fen, u16 halfMoves, std::initializer_list<const char*> moves) {
    CGameLine line(fen, halfMoves);
    for (const char* move : moves)
        line.Play(move);
    return DerivedCastlingRights(line.Node());
}

TEST(CastlingRights, AtTheRoot_FollowFromTheBoard) {
    const struct {
        const char* fen;
        int rights;
    } rows[] = {
        {kRooksAtHome, 15},
        {"4k2r/8/8/8/8/8/8/4K2R", 5},
        {"r3k3/8/8/8/8/8/8/R3K3", 10},
        {"r3k2r/8/8/8/8/8/8/R2K3R", 12},
        {"r2k3r/8/8/8/8/8/8/R3K2R", 3},
        {"4k3/8/8/8/8/8/8/N3K2r", 0},
        {"R3k2R/8/8/8/8/8/8/4K3", 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(DerivedCastlingRights(ValidBoard(row.fen)), row.rights) << row.fen;
    }
}

TEST(CastlingRights, ALine_TakesThemAway) {
    const struct {
        const char* name;
        std::initializer_list<const char*> moves;
        int rights;
    } rows[] = {
        {"nothing moved", {"a1a2", "a8a7"}, 1 | 4},
        {"king that came back", {"e1f1", "a8b8", "f1e1", "b8a8"}, 4},
        {"king that stays away", {"e1f1", "e8d8"}, 0},
        {"rook that came back", {"h1h2", "e8d8", "h2h1", "d8e8"}, 2},
        {"rook captured at home", {"h1h8", "e8d7"}, 2},
        {"both rooks of a file gone", {"h1h8", "e8d7", "h8h1", "d7e8"}, 2},
        {"castled", {"e1g1", "e8c8"}, 0},
    };
    for (const auto& row : rows)
        EXPECT_EQ(RightsAfter(kRooksAtHome, 9, row.moves), row.rights) << row.name;
}

// A rook taken in its corner was landed on, and so was the corner by the rook that came instead.
TEST(CastlingRights, AnotherRookInTheCorner_GivesNoRight) {
    const std::initializer_list<const char*> moves = {
        "g4g3", "h8h1", "g2h1", "e8e7", "h1e4", "e7e8", "g3g1", "e8e7", "g1h1", "e7e8"};
    CGameLine line("4k2r/8/8/8/6R1/8/6B1/4K2R", 11);
    for (const char* move : moves)
        line.Play(move);
    ASSERT_EQ(line.Node().m_board[kSquareE1], kWhiteKing);
    ASSERT_EQ(line.Node().m_board[kSquareH1], kWhiteRook);
    EXPECT_FALSE(HasWhiteCastlingRight(line.Node(), true));
    // The king of that board at a root has it.
    EXPECT_TRUE(HasWhiteCastlingRight(ValidBoard("4k3/8/8/8/4B3/8/8/4K2R"), true));
}

TEST(CastlingRights, PromotedRookInTheCorner_GivesNoRight) {
    CGameLine line("4k3/P7/8/8/8/8/7p/4K3", 9);
    for (const char* move : {"e1f2", "h2h1r", "f2e2", "h1h2", "e2e1", "h2h1"})
        line.Play(move);
    EXPECT_EQ(DerivedCastlingRights(line.Node()), 0);
}

// A pass moves no figure: the squares that its record names were not left.
TEST(CastlingRights, Pass_TakesNothingAway) {
    CGameLine line(kRooksAtHome, 7);
    line.Play("a1a2");
    TChessboard pass = line.Node();
    pass.m_parent = &line.Node();
    ASSERT_EQ(MakeBlackMove(pass, MakeMove(kSquareE8, kSquareE8), false), kMoveMade);
    EXPECT_EQ(DerivedCastlingRights(pass), 1 | 4 | 8);
    TChessboard after = pass;
    after.m_parent = &pass;
    ASSERT_EQ(MakeWhiteMove(after, MakeMove(SquareOf("a2"), SquareOf("a3"))), kMoveMade);
    EXPECT_EQ(DerivedCastlingRights(after), 1 | 4 | 8);
    TChessboard whitePass = pass;
    whitePass.m_parent = &pass;
    MakeNullMove(whitePass);
    EXPECT_EQ(DerivedCastlingRights(whitePass), 1 | 4 | 8);
}

TEST(DoubleStepSquare, OnlyAPawnsLastDoubleStep_Counts) {
    CGameLine line("4k3/3p4/8/4P3/8/7R/P7/4K3", 7);
    EXPECT_EQ(DoubleStepSquare(line.Node()), kNoSquare);
    line.Play("a2a4");
    EXPECT_EQ(DoubleStepSquare(line.Node()), SquareOf("a4"));
    line.Play("d7d5");
    EXPECT_EQ(DoubleStepSquare(line.Node()), SquareOf("d5"));
    line.Play("h3h5");  // sixteen squares on, but a rook
    EXPECT_EQ(DoubleStepSquare(line.Node()), kNoSquare);
    line.Play("e8e7");
    EXPECT_EQ(DoubleStepSquare(line.Node()), kNoSquare);
}

TEST(DoubleStepSquare, RootWithALastMove_HasNone) {
    TChessboard board = ValidBoard("4k3/8/8/3pP3/8/8/8/4K3");
    board.m_lastMove = MakeMove(SquareOf("d7"), SquareOf("d5"));
    EXPECT_EQ(DoubleStepSquare(board), kNoSquare);
    EXPECT_FALSE(IsEnPassantPossible(board));
}

TEST(IsEnPassantPossible, NeedsAnEnemyPawnBesideTheDoubleStep) {
    const struct {
        const char* fen;
        const char* move;
        bool isPossible;
    } rows[] = {
        {"4k3/8/8/8/3p4/8/4P3/4K3", "e2e4", true},
        {"4k3/8/8/8/5p2/8/4P3/4K3", "e2e4", true},
        {"4k3/8/8/8/3P4/8/4P3/4K3", "e2e4", false},
        {"4k3/8/8/8/3n4/8/4P3/4K3", "e2e4", false},
        {"4k3/8/8/3p4/8/8/4P3/4K3", "e2e4", false},
        // Neighbours in memory only: h4 beside a5, a4 beside h3
        {"4k3/8/8/p7/8/8/7P/4K3", "h2h4", false},
        {"4k3/8/8/8/8/7p/P7/4K3", "a2a4", false},
    };
    for (const auto& row : rows) {
        CGameLine line(row.fen, 3);
        line.Play(row.move);
        EXPECT_EQ(IsEnPassantPossible(line.Node()), row.isPossible) << row.fen;
    }
    CGameLine black("4k3/3p4/8/4P3/8/8/8/4K3", 4);
    black.Play("d7d5");
    EXPECT_TRUE(IsEnPassantPossible(black.Node()));
}

TEST(HasLostCastlingRightAtHome, MenAtHomeWithoutTheRight_AreTold) {
    CGameLine line(kRooksAtHome, 9);
    EXPECT_FALSE(HasLostCastlingRightAtHome(line.Node()));
    line.Play("a1a2");
    EXPECT_FALSE(HasLostCastlingRightAtHome(line.Node()));  // not at home any more
    line.Play("e8d8");
    line.Play("a2a1");
    EXPECT_TRUE(HasLostCastlingRightAtHome(line.Node()));
    line.Play("d8e8");
    EXPECT_TRUE(HasLostCastlingRightAtHome(line.Node()));
    CGameLine black("r3k3/8/8/8/8/8/8/4K3", 8);
    for (const char* move : {"e8d8", "e1d1", "d8e8"})
        black.Play(move);
    EXPECT_TRUE(HasLostCastlingRightAtHome(black.Node()));
}

}  // namespace
}  // namespace quillmere
