#include "heuristics/block_finder.h"
#include "tests/support/boards.h"
#include "tests/support/white_rules.h"

#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using test::CWhiteRuleBoard;

std::string TextOf(const std::vector<u8>& squares) {
    std::string text;
    for (const u8 square : squares)
        text += (text.empty() ? "" : " ") + test::TextOfSquare(square);
    return text;
}

TEST(BlockFinder, ListsMenWithoutASafeMove) {
    struct TCase {
        const char* what;
        const char* fen;
        const char* squares;
    };
    constexpr TCase kCases[] = {
        {"pawns first, no king", "bn5k/1p6/1P6/8/8/8/8/K7", "b7 a8"},
        {"eight at most", "8/5p1p/8/8/p3Q2K/rp5p/1p3ppr/b2N1bqk", "b2 f2 g2 b3 h3 a4 a1 g1"},
        {"a knight that loses itself everywhere", "n6k/8/3P4/P7/8/8/8/K7", "a8"},
        {"a knight with one safe square", "n6k/8/8/P7/8/8/8/K7", ""},
        {"it takes as much as it loses", "n6k/2N5/3P4/P7/8/8/8/K7", ""},
        {"pinned along its line", "k6K/r7/8/8/8/8/8/R7", ""},
        {"pinned off its line", "k6K/n7/8/8/8/8/8/R7", "a7"},
        {"white is in check", "k7/8/8/8/8/1p6/1P6/K6r", ""},
    };
    for (const TCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, 9, 0);
        EXPECT_EQ(TextOf(FindBlockedFigures(board.Root())), c.squares) << c.what;
    }
}

TEST(BlockFinder, StoresTheListAndTurnsTheHeuristicOn) {
    constexpr const char* kFen = "bn5k/1p6/1P6/8/8/8/8/K7";
    CWhiteRuleBoard board(kFen, 7, SH_3MOVESTOMATE);
    board.Settings().BlockedFigureCount = 3;
    EXPECT_EQ(BlockFinder(board.Root()), 2);
    EXPECT_EQ(board.Root().Heur, SH_3MOVESTOMATE | SH_DONTLETFIGUREUNBLOCK);
    EXPECT_EQ(board.Settings().BlockedFigureCount, 2);
    EXPECT_EQ(board.Settings().BlockedFigureCountBefore, 3);
    EXPECT_EQ(board.Settings().BlockedFigureSquares[0], test::SquareOf("b7"));
    EXPECT_EQ(board.Settings().BlockedFigureInitialSquares[1], test::SquareOf("a8"));
    EXPECT_EQ(board.Settings().BlockedFigureSquares[2], kNoSquare);
    EXPECT_EQ(board.Root().m_trackedFigures[1], test::SquareOf("a8"));
    EXPECT_EQ(board.Root().m_trackedFigures[2], -1);

    for (const auto& [fen, halfMoves] : {std::pair(kFen, 5), std::pair("7k/8/8/8/8/8/8/K7", 7)}) {
        CWhiteRuleBoard none(fen, static_cast<u16>(halfMoves), SH_3MOVESTOMATE);
        none.Settings().BlockedFigureCount = 3;
        EXPECT_EQ(BlockFinder(none.Root()), 0);
        EXPECT_EQ(none.Root().Heur, SH_3MOVESTOMATE);
        EXPECT_EQ(none.Settings().BlockedFigureCount, 3);
    }
}

}  // namespace
}  // namespace quillmere
