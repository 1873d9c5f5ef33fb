#include "core/chess_exception.h"
#include "core/material.h"
#include "core/move_generation.h"
#include "tests/support/boards.h"
#include "tests/support/random_positions.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using test::SquareOf;
using test::ValidBoard;

TEST(Material, FiguresAreCountedWithoutKingAndPawnsMenWithBoth) {
    const TChessboard board = ValidBoard("qrbnk3/pppp4/8/8/8/8/PPP5/K1QRBBNN");
    EXPECT_EQ(CountWhiteFigures(board), 6);
    EXPECT_EQ(CountWhiteMen(board), 10);
    EXPECT_EQ(CountBlackFigures(board), 4);
    EXPECT_EQ(CountBlackMen(board), 9);
    EXPECT_FALSE(IsBlackBare(board));
    const TChessboard pawn = ValidBoard("k7/p7/8/8/8/8/8/K7");
    EXPECT_EQ(CountBlackFigures(pawn), 0);
    EXPECT_FALSE(IsBlackBare(pawn));
    EXPECT_TRUE(IsBlackBare(ValidBoard("k7/8/8/8/8/8/P7/K7")));
}

TEST(Material, MenAroundTheBlackKing_ArePawnsAndFiguresOfBlack) {
    EXPECT_EQ(CountBlackMenAroundKing(ValidBoard("8/8/2ppp3/2rkP3/2n1n3/8/8/K7")), 6);
    EXPECT_EQ(CountBlackMenAroundKing(ValidBoard("kr6/pp6/2p5/8/8/8/8/K7")), 3);
    EXPECT_EQ(CountBlackMenAroundKing(ValidBoard("k7/8/8/8/8/8/8/K7")), 0);
    // Across the edge in memory
    EXPECT_EQ(CountBlackMenAroundKing(ValidBoard("8/8/r7/7k/r7/8/8/K7")), 0);
}

TEST(Material, BishopsOfOneColour_AreTold) {
    EXPECT_TRUE(AreWhiteBishopsOnOneColour(ValidBoard("k7/8/8/8/8/8/8/K7")));
    EXPECT_TRUE(AreWhiteBishopsOnOneColour(ValidBoard("7k/8/8/8/8/8/8/K1B1B3")));
    EXPECT_FALSE(AreWhiteBishopsOnOneColour(ValidBoard("7k/8/8/8/8/8/8/K1BB4")));
    // Black's do not count.
    EXPECT_TRUE(AreWhiteBishopsOnOneColour(ValidBoard("7k/8/8/8/8/8/8/K1Bb4")));
}

TEST(Material, HopelessAgainstABareKing_IsKingAndBishopsOfOneColour) {
    const struct {
        const char* fen;
        bool isHopeless;
    } rows[] = {
        {"7k/8/8/8/8/8/8/K7", true},
        {"7k/8/8/8/8/8/8/K1B5", true},
        {"7k/8/8/8/8/8/8/K1B1B1B1", true},
        {"7k/8/8/8/8/8/8/K1BB4", false},
        {"7k/8/8/8/8/8/8/K1N5", false},
        {"7k/8/8/8/8/8/P7/K1B5", false},
        {"7k/8/8/8/8/8/8/K1R5", false},
        {"7k/8/8/8/8/8/8/K1Q5", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(IsHopelessAgainstBareKing(ValidBoard(row.fen)), row.isHopeless) << row.fen;
}

TEST(Material, PromotionCorner_HasTheBishopsColourOrNot) {
    // a8 is light, h8 dark
    EXPECT_TRUE(IsPromotionCornerOfBishop(SquareOf("a2"), SquareOf("b1")));
    EXPECT_FALSE(IsPromotionCornerOfBishop(SquareOf("a2"), SquareOf("c1")));
    EXPECT_TRUE(IsPromotionCornerOfBishop(SquareOf("h5"), SquareOf("c1")));
    EXPECT_FALSE(IsPromotionCornerOfBishop(SquareOf("h5"), SquareOf("b1")));
}

TEST(Material, CornerIsReachable_ByTheNearerKing) {
    const struct {
        const char* fen;
        const char* pawn;
        bool isReachable;
    } rows[] = {
        {"k7/8/8/8/P7/8/8/7K", "a4", true},
        {"8/8/2k5/P7/8/8/8/7K", "a5", true},   // two steps against three of the pawn
        {"8/P7/2k5/8/8/8/8/7K", "a7", false},  // two steps against one
        {"8/8/3k4/P7/8/8/8/7K", "a5", true},   // three against three
        {"8/8/4k3/P7/8/8/8/7K", "a5", false},
        {"1K6/8/2k5/P7/8/8/8/8", "a5", false},  // white's king is nearer
        {"8/8/K1k5/P7/8/8/8/8", "a5", true},    // as near
        {"7k/8/8/8/7P/8/8/K7", "h4", true},
        {"k7/8/8/8/7P/8/8/K7", "h4", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(IsCornerReachable(ValidBoard(row.fen), SquareOf(row.pawn)), row.isReachable)
            << row.fen;
}

// The bound of the moves

TEST(UpperBoundOfMoves, MaterialOfTheGame_HasTheKnownMaximum) {
    EXPECT_EQ(UpperBoundOfWhiteMoves(ValidBoard("7k/8/8/8/8/8/PPPPPPPP/RNBQKBNR")), 218);
    EXPECT_EQ(UpperBoundOfWhiteMoves(ValidBoard("6bk/8/8/8/8/8/PPPPPPP1/RNBQKBNQ")), 218);
    EXPECT_EQ(UpperBoundOfBlackMoves(ValidBoard("rnbqkbnr/pppppppp/8/8/8/8/8/7K")), 218);
}

// The position with the most moves that is known.
TEST(UpperBoundOfMoves, PositionOf218Moves_ReachesIt) {
    const TChessboard board = ValidBoard("R6R/3Q4/1Q4Q1/4Q3/2Q4Q/Q4Q2/pp1Q4/kBNN1KB1");
    TMove list[kMoveListSize];
    EXPECT_EQ(GetAllWhiteMoves(board, list), 218);
    EXPECT_EQ(UpperBoundOfWhiteMoves(board), 218);
}

// Any material, also what no game can bring about: the moves never pass the bound, and neither do
// those after the pawns have become queens.
TEST(UpperBoundOfMoves, NoPosition_HasMoreMoves) {
    reference::CRandom random(218);
    int most = 0;
    int beyondGame = 0;
    for (int i = 0; i < 100'000; ++i) {
        TChessboard board;
        InitBoard(board);
        const auto putOnFree = [&](u8 figure, int firstSquare, int squares) {
            for (int attempt = 0; attempt < 200; ++attempt) {
                const int square = firstSquare + random.Below(squares);
                if (board.m_board[square] == 0) {
                    board.m_board[square] = figure;
                    return;
                }
            }
        };
        putOnFree(kWhiteKing, 0, 64);
        putOnFree(kBlackKing, 0, 64);
        constexpr u8 kFigures[] = {
            kWhiteQueen, kWhiteQueen, kWhiteQueen, kWhiteRook, kWhiteBishop, kWhiteKnight};
        const int kinds = 1 + random.Below(6);
        for (int man = random.Below(26); man > 0; --man)
            putOnFree(kFigures[random.Below(kinds)], 0, 64);
        for (int pawn = random.Chance(50) ? random.Below(12) : 0; pawn > 0; --pawn) {
            const bool isOnSeventh = random.Chance(60);
            putOnFree(kWhitePawn, isOnSeventh ? 48 : 8, isOnSeventh ? 8 : 40);
        }
        for (int man = random.Below(10); man > 0; --man) {
            const bool isOnEighth = random.Chance(60);
            putOnFree(kBlackKnight, isOnEighth ? 56 : 0, isOnEighth ? 8 : 56);
        }
        try {
            ValidateBoard(board, true);
        } catch (const ChessException&) {
            continue;  // both kings attacked
        }
        const int bound = UpperBoundOfWhiteMoves(board);
        // A list of its own: positions that the root refuses may pass the room of a node's.
        TMove list[1024];
        const int moves = GetAllWhiteMoves(board, list);
        ASSERT_LE(moves, bound);
        most = std::max(most, moves);
        beyondGame += bound != 218 ? 1 : 0;
        TChessboard promoted = board;
        for (int square = 0; square < kSquareCount; ++square) {
            if (promoted.m_board[square] == kWhitePawn)
                promoted.m_board[square] = kWhiteQueen;
        }
        ASSERT_LE(GetAllWhiteMoves(promoted, list), bound);
    }
    EXPECT_GT(most, 200);
    EXPECT_GT(beyondGame, 1000);
}

}  // namespace
}  // namespace quillmere
