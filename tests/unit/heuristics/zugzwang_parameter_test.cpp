#include "core/chess_exception.h"
#include "core/colour_swap.h"
#include "core/search_context.h"
#include "heuristics/catalogue.h"
#include "heuristics/heuristics_parser.h"
#include "tests/support/boards.h"
#include "tests/support/white_rules.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using test::CWhiteRuleBoard;
using test::SquareOf;

constexpr const char* kFen = "7k/7p/8/8/8/3K4/P7/6RB";
// The same for a black mate, as the user sees it.
constexpr const char* kUsers = "6rb/p7/3k4/8/8/8/7P/7K";

TEST(ZugzwangParameter, MovesLeadToThePosition) {
    CWhiteRuleBoard board(kFen, 17, 0);
    ParseHeuristics(board.Root(), "SH_ZUGZWANG(Kd3-e3, h7-h6, Ke3-d3, h6-h5, Kd3-e3)");
    EXPECT_EQ(board.Root().Heur, SH_ZUGZWANG);
    ASSERT_TRUE(board.Context().HasZugzwangPosition);
    const u8* stored = board.Context().ZugzwangBoard;
    for (int square = 0; square < kSquareCount; ++square) {
        u8 expected = board.Root().m_board[square];
        if (square == SquareOf("d3") || square == SquareOf("h7"))
            expected = 0;
        if (square == SquareOf("e3"))
            expected = kWhiteKing;
        if (square == SquareOf("h5"))
            expected = kBlackPawn;
        EXPECT_EQ(stored[square], expected) << test::TextOfSquare(square);
    }
    EXPECT_EQ(HeuristicsText(board.Root()).substr(0, 11), "SH_ZUGZWANG") << "moves are not told";
}

TEST(ZugzwangParameter, BlackMateIsToldInTheUsersMoves) {
    CWhiteRuleBoard users(kUsers, 16, 0);
    const TChessboard swapped = SwapColours(users.Root());
    CWhiteRuleBoard board(kFen, 17, 0);
    ASSERT_TRUE(std::equal(swapped.m_board, swapped.m_board + 64, board.Root().m_board));
    board.Context().areColoursSwapped = true;
    ParseHeuristics(board.Root(), "SH_ZUGZWANG(Kd6-e6)");
    EXPECT_EQ(board.Context().ZugzwangBoard[SquareOf("e3")], kWhiteKing);
    EXPECT_EQ(board.Context().ZugzwangBoard[SquareOf("d3")], 0);
    EXPECT_EQ(board.Context().ZugzwangBoard[SquareOf("h7")], kBlackPawn);
}

TEST(ZugzwangParameter, WithoutMovesThePositionStays) {
    CWhiteRuleBoard board(kFen, 17, 0);
    board.Context().HasZugzwangPosition = true;
    board.Context().ZugzwangBoard[5] = kWhiteRook;
    ParseHeuristics(board.Root(), "SH_ZUGZWANG");
    EXPECT_TRUE(board.Context().HasZugzwangPosition);
    EXPECT_EQ(board.Context().ZugzwangBoard[5], kWhiteRook);
}

TEST(ZugzwangParameter, BadMovesAreRefused) {
    for (const char* moves : {"Kd3-d5", "Kd3-e3, h7-h6", "nonsense", "Kd3-e3, Kd3-e3", "h7-h6"}) {
        CWhiteRuleBoard board(kFen, 17, SH_3MOVESTOMATE);
        try {
            ParseHeuristics(board.Root(), std::string("SH_ZUGZWANG(") + moves + ")");
            ADD_FAILURE() << moves;
        } catch (const ChessException& error) {
            EXPECT_STREQ(error.what(), "Invalid move for SH_ZUGZWANG") << moves;
        }
        EXPECT_EQ(board.Root().Heur, SH_3MOVESTOMATE) << moves;
        EXPECT_FALSE(board.Context().HasZugzwangPosition) << moves;
    }
}

}  // namespace
}  // namespace quillmere
