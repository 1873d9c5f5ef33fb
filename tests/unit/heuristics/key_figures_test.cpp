#include "core/search_context.h"
#include "heuristics/key_figures.h"
#include "heuristics/key_square.h"
#include "search/move_ordering.h"
#include "tests/support/boards.h"
#include "tests/support/white_rules.h"

#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using test::CWhiteRuleBoard;
using test::SquareOf;
using test::TextOfSquare;

struct TPatternCase {
    const char* what;
    const char* fen;
    const char* found;  // "" for nothing
};

TEST(KeyLine, IsTheFileOfALoneRook) {
    constexpr TPatternCase kCases[] = {
        {"up and down", "7k/8/8/1prp4/1P1P4/8/8/K7", "c"},
        {"it can leave", "k1r5/8/8/8/8/8/8/K7", ""},
        {"two rooks", "r6k/8/8/1prp4/1P1P4/8/8/K7", ""},
        {"along its rank", "kr6/pp6/8/8/8/8/8/K7", ""},
        {"no rook", "k7/8/8/8/8/8/8/K7", ""},
    };
    for (const TPatternCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, 9, 0);
        const u8 file = FindKeyLine(board.Root());
        EXPECT_EQ(file == kNoSquare ? "" : std::string(1, static_cast<char>('a' + file)), c.found)
            << c.what;
        EXPECT_EQ(UseKeyLine(board.Root()), file != kNoSquare) << c.what;
        EXPECT_EQ(board.Context().KeyLineFile, file) << c.what;
        EXPECT_EQ(board.Root().Heur, file != kNoSquare ? u32{SH_KEYLINE} : 0) << c.what;
    }
}

TEST(KeyDiagonal, IsTheOnlyOneOfALoneBishop) {
    constexpr TPatternCase kCases[] = {
        {"the long one", "7k/8/5p2/4b3/3p1p2/8/8/K7", "h2 b8"},
        {"from a corner", "b6k/8/8/8/8/8/8/K7", "h1 a8"},
        {"both ways", "7k/8/8/4b3/8/8/8/6K1", ""},
        {"two squares are no diagonal", "k7/8/8/8/8/1p6/b7/6K1", ""},
        {"two bishops", "b6k/8/8/8/8/8/8/K3b3", ""},
        {"no move", "b6k/1p6/8/8/8/8/8/K7", ""},
    };
    for (const TPatternCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, 9, 0);
        u8 squares[2];
        const bool isFound = FindKeyDiagonal(board.Root(), squares);
        EXPECT_EQ(isFound ? TextOfSquare(squares[0]) + " " + TextOfSquare(squares[1]) : "", c.found)
            << c.what;
        EXPECT_EQ(UseKeyDiagonal(board.Root()), isFound) << c.what;
        EXPECT_EQ(board.Context().KeyDiagonalSquares[0], squares[0]) << c.what;
        EXPECT_EQ(board.Context().KeyDiagonalSquares[1], squares[1]) << c.what;
        EXPECT_EQ(board.Root().Heur, isFound ? u32{SH_KEYDIAGONAL} : 0) << c.what;
    }
}

TEST(KeyWhiteFigure, PinsADearManToAKingThatCannotMove) {
    constexpr TPatternCase kCases[] = {
        {"a bishop pins a knight", "6rk/6np/7p/8/8/8/PB6/K7", "b2 g7"},
        {"the king can move", "7k/6np/7p/8/8/8/PB6/K7", ""},
        {"a pinned pawn is cheap", "6rk/6pp/7p/8/8/8/PB6/K7", ""},
        {"it can be taken", "6rk/6np/7p/8/8/8/PB6/K2n4", ""},
    };
    for (const TPatternCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, 9, 0);
        const TKeyWhiteFigure key = FindKeyWhiteFigure(board.Root());
        const bool isFound = key.square != kNoSquare;
        EXPECT_EQ(isFound ? TextOfSquare(key.square) + " " + TextOfSquare(key.pinned) : "", c.found)
            << c.what;
        EXPECT_EQ(UseKeyWhiteFigure(board.Root()), isFound) << c.what;
        EXPECT_EQ(board.Settings().KeyWhiteFigureSquare, key.square) << c.what;
        EXPECT_EQ(board.Settings().KeyWhiteFigurePinned, key.pinned) << c.what;
        EXPECT_EQ(board.Root().Heur, isFound ? u32{SH_KEYWHITEFIGURE} : 0) << c.what;
    }
}

TEST(KeySquare, IsWhereMostMenCanCome) {
    constexpr TPatternCase kCases[] = {
        {"knight and pawn", "n6k/8/8/2p5/8/2P5/8/K7", ""},
        {"two knights", "n1n4k/8/8/8/8/8/8/K7", "b6"},
        {"two squares alike", "7k/8/8/8/8/1n1n4/8/7K", ""},
        {"the square is attacked", "n1n4k/8/8/P7/8/8/8/K7", ""},
        {"three men against two", "n1n3bk/8/8/3n4/8/8/8/K7", "b6"},
        {"none moves", "7k/7p/7P/8/8/8/8/K7", ""},
    };
    for (const TPatternCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, 9, 0);
        const u8 square = FindKeySquare(board.Root());
        EXPECT_EQ(square == kNoSquare ? "" : TextOfSquare(square), c.found) << c.what;
        EXPECT_EQ(UseKeySquare(board.Root()), square != kNoSquare) << c.what;
        EXPECT_EQ(board.Settings().KeySquare, square) << c.what;
        EXPECT_EQ(board.Root().Heur, square != kNoSquare ? u32{SH_KEYSQUARE} : 0) << c.what;
    }
}

TEST(SweepingRook, WaitsOnItsFirstRank) {
    struct TCase {
        const char* what;
        const char* fen;
        bool suits;
    };
    constexpr TCase kCases[] = {
        {"it waits", "k7/8/K7/8/8/8/8/3R4", true},
        {"not on the first rank", "k7/8/K7/8/8/8/3R4/8", false},
        {"attacked", "k7/8/K7/6b1/8/8/8/2R5", false},
        {"no room", "k7/8/K7/8/8/8/8/1nRn4", false},
        {"the king is free", "8/8/4k3/8/8/8/8/K2R4", false},
        {"a queen is there", "k7/8/K7/8/8/8/7Q/3R4", false},
        {"two rooks", "k7/8/K7/8/8/8/8/3R3R", false},
    };
    for (const TCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, 9, 0);
        EXPECT_EQ(SuitsSweepingRook(board.Root()), c.suits) << c.what;
    }
}

// The bonus of the sort

TEST(KeySquareBonus, GoesToCapturesOnTheKeySquare) {
    struct TCase {
        const char* what;
        const char* fen;
        const char* line;
        const char* move;
        int bonus;
    };
    constexpr TCase kCases[] = {
        {"a figure came", "7k/8/2n5/8/4P3/2P5/8/K7", "a1a2 c6d4", "c3d4", 6},
        {"a figure took", "7k/8/2n5/8/3PP3/2P5/8/K7", "a1a2 c6d4", "c3d4", 6},
        {"another square", "7k/8/2n5/8/4P3/2P5/8/K7", "a1a2 c6a5", "c3d4", 0},
        {"another answer", "7k/8/2n5/8/4P3/2P5/8/K7", "a1a2 c6d4", "c3c4", 0},
        {"a pawn far from its king", "7k/8/8/3p4/8/2P5/8/K7", "a1a2 d5d4", "c3d4", 0},
        {"a pawn near its king", "8/8/6k1/3p4/8/2P5/8/K7", "a1a2 d5d4", "c3d4", 6},
        {"the king", "8/8/8/3k4/8/8/7P/K5N1", "a1a2 d5d4", "g1d4", 0},
    };
    for (const TCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, 9, SH_KEYSQUARE);
        board.Settings().KeySquare = static_cast<u8>(SquareOf("d4"));
        EXPECT_EQ(KeySquareBonus(board.Root(), test::MoveOf(c.move)), 0) << "no move before";
        TChessboard& node = board.Line(c.line);
        EXPECT_EQ(KeySquareBonus(node, test::MoveOf(c.move)), c.bonus) << c.what;
        node.Heur = 0;
        EXPECT_EQ(KeySquareBonus(node, test::MoveOf(c.move)), 0) << c.what << ", off";
        node.Heur = SH_KEYSQUARE;
        node.m_pass = kPassComplete;
        EXPECT_EQ(KeySquareBonus(node, test::MoveOf(c.move)), 0) << c.what << ", complete";
    }
}

TEST(KeySquareBonus, LowersTheKeysOfBothSorts) {
    const auto keyOf = [](u32 heur, bool isLean) {
        CWhiteRuleBoard board("7k/8/2n5/8/4P3/2P5/8/K7", 9, heur);
        board.Settings().KeySquare = static_cast<u8>(SquareOf("d4"));
        TMoveList list;
        list.count = 1;
        list[0] = test::MoveOf("c3d4");
        TChessboard& node = board.Line("a1a2 c6d4");
        int mateFound = 0;
        u8 quiet = 0;
        u8 retry = 0;
        if (isLean)
            SortWhiteMovesLean(node, 1, list.moves);
        else
            SortWhiteMoves(node, 1, list.moves, &mateFound, &quiet, false, &retry);
        return isLean ? static_cast<i8>(list[0].enPassant) : static_cast<int>(list[0].enPassant);
    };
    EXPECT_EQ(keyOf(SH_KEYSQUARE, true), keyOf(0, true) - kKeySquareBonus);
    EXPECT_EQ(keyOf(SH_KEYSQUARE, false), keyOf(0, false) - kKeySquareBonus);
}

}  // namespace
}  // namespace quillmere
