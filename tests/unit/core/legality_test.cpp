#include "core/legality.h"
#include "core/make_move.h"
#include "core/move_generation.h"
#include "tests/support/boards.h"
#include "tests/support/game_line.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using test::CGameLine;
using test::MoveOf;
using test::TextOfMoves;
using test::ValidBoard;

std::string LegalMovesOf(TChessboard& board) {
    TMove list[kMoveListSize];
    return TextOfMoves(list, GetLegalMoves(board, list));
}

TEST(IsLegalMove, RookThatShieldsItsKing_MovesAlongTheFileOnly) {
    TChessboard board = ValidBoard("4r2k/8/8/8/4R3/8/8/4K3");
    board.m_nMoves = 1;
    for (const char* move : {"e4e2", "e4e3", "e4e5", "e4e6", "e4e7", "e4e8"})
        EXPECT_TRUE(IsLegalMove(board, MoveOf(move))) << move;
    for (const char* move : {"e4a4", "e4d4", "e4f4", "e4h4"})
        EXPECT_FALSE(IsLegalMove(board, MoveOf(move))) << move;
}

// Both pawns leave the rank of king and rook, though no man stands pinned before the move.
TEST(IsLegalMove, EnPassantThatOpensARank_IsIllegalForEitherSide) {
    CGameLine white("7k/4p3/8/K2P3r/8/8/8/8", 4);
    white.Play("e7e5");
    EXPECT_FALSE(IsLegalMove(white.Node(), MoveOf("d5e6")));
    CGameLine black("8/8/8/8/k2p3R/8/4P3/7K", 3);
    black.Play("e2e4");
    EXPECT_FALSE(IsLegalMove(black.Node(), MoveOf("d4e3")));
    // With one more man on the rank it is legal.
    CGameLine shielded("7k/4p3/8/K1NP3r/8/8/8/8", 4);
    shielded.Play("e7e5");
    EXPECT_TRUE(IsLegalMove(shielded.Node(), MoveOf("d5e6")));
}

// The capturing pawn is pinned on a diagonal, or on the file that it leaves.
TEST(IsLegalMove, EnPassantByAPinnedPawn_IsIllegal) {
    CGameLine diagonal("7k/1b2p3/8/3P4/4K3/8/8/8", 4);
    diagonal.Play("e7e5");
    EXPECT_FALSE(IsLegalMove(diagonal.Node(), MoveOf("d5e6")));
    CGameLine file("3r3k/4p3/8/3P4/3K4/8/8/8", 4);
    file.Play("e7e5");
    EXPECT_FALSE(IsLegalMove(file.Node(), MoveOf("d5e6")));
    CGameLine along("7k/4p3/8/3P4/8/1K6/8/8", 4);
    along.Play("e7e5");
    EXPECT_TRUE(IsLegalMove(along.Node(), MoveOf("d5e6")));
    // The capture goes along the line of the pin.
    CGameLine onTheLine("6bk/4p3/8/3P4/2K5/8/8/8", 4);
    onTheLine.Play("e7e5");
    EXPECT_TRUE(IsLegalMove(onTheLine.Node(), MoveOf("d5e6")));
    CGameLine black("8/8/8/4k3/3p4/8/1B2P3/7K", 3);
    black.Play("e2e4");
    EXPECT_FALSE(IsLegalMove(black.Node(), MoveOf("d4e3")));
}

TEST(IsLegalMove, Checks_MustBeAnswered) {
    TChessboard board = ValidBoard("4r2k/8/8/8/8/8/3P1B2/4K3");
    board.m_nMoves = 1;
    EXPECT_FALSE(IsLegalMove(board, MoveOf("d2d3")));
    EXPECT_TRUE(IsLegalMove(board, MoveOf("f2e3")));
    EXPECT_TRUE(IsLegalMove(board, MoveOf("e1d1")));
    EXPECT_FALSE(IsLegalMove(board, MoveOf("e1e2")));
}

// Material that cannot mate is no matter of legality.
TEST(GetLegalMoves, CaptureThatEndsAllMatingMaterial_IsListed) {
    TChessboard board = ValidBoard("k7/8/8/8/8/8/1n6/K1B5");
    board.m_nMoves = 3;
    EXPECT_EQ(LegalMovesOf(board), "a1a2 a1b2 a1b1 c1b2 c1d2 c1e3 c1f4 c1g5 c1h6");
}

TEST(GetLegalMoves, SideToMove_FollowsTheParity) {
    TChessboard board = ValidBoard("7k/8/8/8/8/8/8/K7");
    board.m_nMoves = 0;
    EXPECT_EQ(LegalMovesOf(board), "h8h7 h8g7 h8g8");
    board.m_nMoves = 1;
    EXPECT_EQ(LegalMovesOf(board), "a1a2 a1b2 a1b1");
}

TEST(GetLegalMoves, MateAndStalemate_HaveNone) {
    TChessboard mate = ValidBoard("k7/1Q6/1K6/8/8/8/8/8");
    EXPECT_EQ(LegalMovesOf(mate), "");
    TChessboard stalemate = ValidBoard("k7/2Q5/1K6/8/8/8/8/8");
    EXPECT_EQ(LegalMovesOf(stalemate), "");
}

TEST(GetLegalMoves, NodeAndThread_StayAsTheyWere) {
    CGameLine line("4k3/8/8/8/3p4/8/4P3/R3K2R", 5);
    line.Play("e2e4");
    TChessboard& node = line.Node();
    line.Thread().isPromotionSquareFree = true;
    line.Thread().levels[3].horizon = 9;
    const u64 made = line.Thread().madeMoves;
    TChessboard before;
    std::memcpy(static_cast<void*>(&before), &node, sizeof(node));
    TMove list[kMoveListSize];
    EXPECT_GT(GetLegalMoves(node, list), 0);
    EXPECT_EQ(std::memcmp(&before, &node, sizeof(node)), 0);
    EXPECT_EQ(line.Thread().madeMoves, made);
    EXPECT_EQ(line.Thread().levels[3].horizon, 9);
    EXPECT_TRUE(line.Thread().isPromotionSquareFree);
}

}  // namespace
}  // namespace quillmere
