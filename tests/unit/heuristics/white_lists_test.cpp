#include "core/search_context.h"
#include "search/mate_search.h"
#include "tests/support/boards.h"
#include "tests/support/white_rules.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>

namespace quillmere {
namespace {

using test::CWhiteRuleBoard;
using test::SquareOf;

using TTexts = std::set<std::string>;

TTexts TextsOf(const TMoveList& list) {
    TTexts texts;
    for (const TMove move : list)
        texts.insert(test::TextOfMove(move));
    return texts;
}

TTexts Words(const std::string& text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

// "" for no list.
TTexts ListOf(TChessboard& node) {
    TMoveList list;
    return ReplaceWhiteMoves(node, list) ? TextsOf(list) : TTexts{};
}

// Key white figure

struct TPinBoard : CWhiteRuleBoard {
    TPinBoard(const char* fen, u16 halfMoves) : CWhiteRuleBoard(fen, halfMoves, SH_KEYWHITEFIGURE) {
        Settings().KeyWhiteFigureSquare = static_cast<u8>(SquareOf("b2"));
        Settings().KeyWhiteFigurePinned = static_cast<u8>(SquareOf("g7"));
    }
};

TEST(KeyWhiteFigure, ListKeepsThePin) {
    struct TCase {
        const char* fen;
        const char* moves;
    };
    constexpr TCase kCases[] = {
        // The bishop stays, its capture could be taken back; the knight stays off f6 and d4.
        {"7k/6np/7p/8/8/5N2/PB5p/K6n", "a1b1 a2a3 a2a4 f3d2 f3e1 f3g1 f3g5 f3h2 f3h4"},
        // A safe capture of the pinned figure ends the pin for good.
        {"7k/6np/7p/8/8/8/PB5p/K5Rn",
         "a1b1 a2a3 a2a4 b2g7 g1f1 g1e1 g1d1 g1c1 g1b1 g1h1 g1g2 g1g3 g1g4 g1g5 g1g6 g1g7"},
    };
    for (const TCase& c : kCases) {
        TPinBoard board(c.fen, 9);
        EXPECT_EQ(ListOf(board.Root()), Words(c.moves)) << c.fen;
    }
}

TEST(KeyWhiteFigure, PlainListWhereThePinDoesNotHelp) {
    const char* fen = "7k/6np/7p/8/8/5N2/PB5p/K6n";
    TPinBoard few(fen, 7);
    EXPECT_EQ(ListOf(few.Root()), TTexts{}) << "too few half-moves";
    TPinBoard broken("7k/6np/7p/4p3/8/5N2/PB5p/K6n", 9);
    EXPECT_EQ(ListOf(broken.Root()), TTexts{}) << "a pawn stands between";
    TPinBoard unset(fen, 9);
    unset.Settings().KeyWhiteFigureSquare = kNoSquare;
    EXPECT_EQ(ListOf(unset.Root()), TTexts{});
    TPinBoard check("7k/6np/7p/8/8/5N2/PBn4p/K7", 9);
    EXPECT_EQ(ListOf(check.Root()), TTexts{}) << "in check";
    // The only moves are the key bishop's: none would be left.
    TPinBoard alone("7k/6np/7p/8/8/p7/PB6/Kb6", 9);
    EXPECT_EQ(ListOf(alone.Root()), Words("a1b1"));
    TPinBoard last("7k/6np/7p/8/8/p7/PB6/Kn5r", 9);
    EXPECT_EQ(ListOf(last.Root()), Words("a1b1"));
}

// Zugzwang

void StorePositionAfter(CWhiteRuleBoard& board, const std::string& line) {
    CWhiteRuleBoard other("7k/7p/8/8/8/3K4/P7/6RB", 5, 0);
    TChessboard& node = other.Line(line);
    board.Context().HasZugzwangPosition = true;
    std::memcpy(board.Context().ZugzwangBoard, node.m_board, kSquareCount);
}

TEST(Zugzwang, MoveThatGoesBack_IsTheOnlyOne) {
    for (const char* move : {"d3e3", "g1a1", "a2a4"}) {
        CWhiteRuleBoard board("7k/7p/8/8/8/3K4/P7/6RB", 17, SH_ZUGZWANG);
        StorePositionAfter(board, move);
        EXPECT_EQ(ListOf(board.Root()), TTexts{move});
        EXPECT_EQ(board.Root().Heur, SH_ZUGZWANG);
    }
}

TEST(Zugzwang, PromotionLeadsBackWithItsOwnKindOnly) {
    CWhiteRuleBoard board("7k/P6p/8/8/8/8/8/K7", 17, SH_ZUGZWANG);
    CWhiteRuleBoard other("7k/P6p/8/8/8/8/8/K7", 17, 0);
    const TChessboard& node = other.Line("a7a8R");
    board.Context().HasZugzwangPosition = true;
    std::memcpy(board.Context().ZugzwangBoard, node.m_board, kSquareCount);
    EXPECT_EQ(ListOf(board.Root()), TTexts{"a7a8r"});
}

TEST(Zugzwang, WithoutAWayBack_TheBitEndsNearTheEnd) {
    struct TCase {
        u16 halfMoves;
        u32 heur;
    };
    for (const TCase& c : {TCase{13, 0}, TCase{15, SH_ZUGZWANG}}) {
        CWhiteRuleBoard board("7k/7p/8/8/8/3K4/P7/6RB", c.halfMoves, SH_ZUGZWANG);
        StorePositionAfter(board, "d3e3 h7h6 e3e4");
        EXPECT_EQ(ListOf(board.Root()), TTexts{});
        EXPECT_EQ(board.Root().Heur, c.heur) << c.halfMoves;
    }
    CWhiteRuleBoard none("7k/7p/8/8/8/3K4/P7/6RB", 5, SH_ZUGZWANG);
    EXPECT_EQ(ListOf(none.Root()), TTexts{});
    EXPECT_EQ(none.Root().Heur, SH_ZUGZWANG) << "no position is stored";
}

// Triangles

TEST(ZugzwangTriangles, KingWalksAndGuardsFollow) {
    CWhiteRuleBoard board("7k/7p/8/8/8/3K4/P7/6RB", 9, SH_ZUGZWANGTRIANGLES);
    EXPECT_EQ(ListOf(board.Root()), TTexts{}) << "no squares";
    board.Settings().ZugzwangTriangleSquares[0] = static_cast<u8>(SquareOf("e3"));
    board.Settings().ZugzwangTriangleSquares[1] = static_cast<u8>(SquareOf("d2"));
    EXPECT_EQ(ListOf(board.Root()),
              Words("d3e3 d3d2 d3e2 g1f1 g1e1 g1d1 g1c1 g1b1 g1a1 g1g2 g1g3 g1g4 g1g5 g1g6 g1g7 "
                    "g1g8"));
    CWhiteRuleBoard away("7k/7p/8/8/6K1/8/P7/6RB", 9, SH_ZUGZWANGTRIANGLES);
    away.Settings() = board.Settings();
    EXPECT_EQ(ListOf(away.Root()), TTexts{}) << "the king stands off the triangle";
}

TEST(ZugzwangTriangles, FigureBeforeABlackPawnGuards) {
    CWhiteRuleBoard board("7k/8/p7/8/8/3K4/3B4/8", 9, SH_ZUGZWANGTRIANGLES);
    board.Settings().ZugzwangTriangleSquares[0] = static_cast<u8>(SquareOf("e3"));
    board.Settings().ZugzwangTriangleSquares[1] = static_cast<u8>(SquareOf("e2"));
    EXPECT_EQ(ListOf(board.Root()),
              Words("d3e3 d3e2 d2c1 d2e1 d2c3 d2b4 d2a5 d2e3 d2f4 d2g5 d2h6"));
}

// Sea snake

TEST(SeaSnake, WithoutAGenerator_ThePlainListIsUsed) {
    CWhiteRuleBoard board("7k/7p/8/8/8/3K4/P7/6RB", 17, SH_SEASNAKE);
    EXPECT_EQ(ListOf(board.Root()), TTexts{});
    EXPECT_EQ(board.Root().Heur, SH_SEASNAKE);
}

TEST(SeaSnake, PawnCaptureThatUnblocks_EndsTheHeuristic) {
    struct TCase {
        const char* fen;
        const char* line;
        u32 heur;
        const char* why;
    };
    constexpr TCase kCases[] = {
        {"7k/8/8/3p4/2NP4/8/7P/K7", "a1a2 d5c4", 0, "it stood before a pawn"},
        {"7k/8/8/3p4/2N5/8/7P/K7", "a1a2 d5c4", SH_SEASNAKE, "nothing was blocked"},
        {"7k/8/2p5/2Pp4/8/8/7P/K7", "a1a2 h8g8", SH_SEASNAKE, "no capture"},
        {"7k/8/8/1p6/P7/8/7P/K7", "a1a2 b5a4", SH_SEASNAKE, "a free pawn takes a free pawn"},
        {"7k/8/8/pp6/P7/8/7P/K7", "a1a2 b5a4", 0, "the pawn a4 stood before a man"},
        {"7k/8/8/8/1p6/8/2P4P/K7", "c2c4 b4c3", SH_SEASNAKE, "in passing, nothing blocked"},
        {"7k/8/8/2n5/1p6/8/2P4P/K7", "c2c4 b4c3", 0, "in passing, c4 stood before a man"},
        {"7k/8/8/3r4/2NP4/8/7P/K7", "a1a2 d5d4", SH_SEASNAKE, "a rook"},
    };
    for (const TCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, 17, SH_SEASNAKE);
        TChessboard& node = board.Line(c.line);
        EXPECT_EQ(ListOf(node), TTexts{});
        EXPECT_EQ(node.Heur, c.heur) << c.fen << ' ' << c.line << ": " << c.why;
    }
}

// Cut lists

TEST(TakeFullList, SwitchesTheBlockedFiguresOffOnce) {
    CWhiteRuleBoard board("7k/8/8/8/8/8/R7/K7", 5, SH_DONTLETFIGUREUNBLOCK | SH_AREKINGSNEAR);
    EXPECT_TRUE(TakeFullList(board.Root()));
    EXPECT_EQ(board.Root().Heur, SH_AREKINGSNEAR);
    EXPECT_FALSE(TakeFullList(board.Root()));
}

TEST(SkipWorstWhiteMoves, ShortListsStayWhole) {
    CWhiteRuleBoard board("7k/8/8/8/8/8/R7/K7", 7, SH_SKIPWORSTWHITEMOVES);
    EXPECT_EQ(CountWithoutWorst(board.Root(), 12), 12);
    EXPECT_EQ(CountWithoutWorst(board.Root(), 13), 12);
    EXPECT_EQ(CountWithoutWorst(board.Root(), 30), 20);
    board.Root().Heur = SH_AREKINGSNEAR;
    EXPECT_EQ(CountWithoutWorst(board.Root(), 30), 30);
}

TEST(SkipWorstWhiteMoves, CutListIsDoubtful) {
    // No mate is near. With the blocked pawns white has two moves, with the rook more than twelve.
    struct TCase {
        const char* fen;
        u16 halfMoves;
        TVerdict verdict;
    };
    constexpr TCase kCases[] = {
        {"7k/8/8/p7/P7/8/8/K7", 7, kNoMate},
        {"7k/8/8/8/8/8/R7/K7", 7, kDoubtful},
        {"7k/8/8/8/8/8/R7/K7", 5, kNoMate},  // too near the end for a sort
    };
    for (const TCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, c.halfMoves, SH_SKIPWORSTWHITEMOVES);
        EXPECT_EQ(FindMate(board.Root(), true), c.verdict) << c.fen << ' ' << c.halfMoves;
    }
}

}  // namespace
}  // namespace quillmere
