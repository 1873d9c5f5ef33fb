#include "core/chess_exception.h"
#include "core/colour_swap.h"
#include "core/fen.h"

#include <cstring>
#include <gtest/gtest.h>

namespace quillmere {
namespace {

TChessboard BoardOf(const char* fen) {
    TChessboard board;
    InitBoard(board);
    EXPECT_TRUE(SetFromFENCode(board, fen, nullptr, nullptr)) << fen;
    return board;
}

TEST(ColourSwap, Figure_KeepsItsKindAndChangesItsColour) {
    EXPECT_EQ(SwapFigure(0), 0);
    EXPECT_EQ(SwapFigure(kWhiteKing), kBlackKing);
    EXPECT_EQ(SwapFigure(kBlackQueen), kWhiteQueen);
    EXPECT_EQ(SwapFigure(kWhitePawn), kBlackPawn);
}

TEST(ColourSwap, Square_KeepsItsFileAndMirrorsItsRank) {
    EXPECT_EQ(SwapSquare(SquareAt(0, 0)), SquareAt(0, 7));
    EXPECT_EQ(SwapSquare(SquareAt(4, 1)), SquareAt(4, 6));
    EXPECT_EQ(SwapSquare(SquareAt(7, 7)), SquareAt(7, 0));
}

TEST(ColourSwap, Move_KeepsPromotionAndMarks) {
    const TMove move{48, 57, static_cast<u8>(kKnight | kMoveMarkForced), 1};
    const TMove swapped = SwapMove(move);
    EXPECT_EQ(swapped.from, 8);
    EXPECT_EQ(swapped.to, 1);
    EXPECT_EQ(swapped.flags, move.flags);
    EXPECT_EQ(swapped.enPassant, move.enPassant);
}

struct TSwapCase {
    const char* fen;
    const char* swapped;
};

constexpr TSwapCase kCases[] = {
    {"8/8/8/8/8/Q7/4p3/5k1K", "5K1k/4P3/q7/8/8/8/8/8"},
    {"r3k2r/8/8/8/8/8/8/4K3", "4k3/8/8/8/8/8/8/R3K2R"},
    {"4k3/8/8/3Pp3/8/8/1N4b1/4K3", "4k3/1n4B1/8/8/3pP3/8/8/4K3"},
};

TEST(ColourSwap, Board_IsTheMirroredPosition) {
    for (const TSwapCase& row : kCases) {
        const TChessboard swapped = SwapColours(BoardOf(row.fen));
        EXPECT_EQ(GetFENCode(swapped, true), row.swapped);
    }
}

TEST(ColourSwap, Board_SwappedTwiceIsItself) {
    for (const TSwapCase& row : kCases) {
        const TChessboard board = BoardOf(row.fen);
        const TChessboard twice = SwapColours(SwapColours(board));
        EXPECT_EQ(std::memcmp(twice.m_board, board.m_board, sizeof board.m_board), 0) << row.fen;
    }
}

TEST(ColourSwap, Board_HasItsBookkeepingDerived) {
    const TChessboard swapped = SwapColours(BoardOf("8/8/8/8/8/5k2/4p3/Q4K2"));
    EXPECT_EQ(swapped.m_counts[kBlackQueens], 1);
    EXPECT_EQ(swapped.m_counts[kWhitePawns], 1);
    EXPECT_EQ(swapped.m_whiteInCheck, kNotInCheck);
    EXPECT_EQ(swapped.m_blackInCheck, SquareAt(4, 6));
}

}  // namespace
}  // namespace quillmere
