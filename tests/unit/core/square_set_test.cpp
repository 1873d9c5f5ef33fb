#include "core/square_set.h"
#include "tests/support/boards.h"
#include "tests/support/random.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using test::SquareOf;

// A board of random occupation, and the walk that a slider makes on it.
TSquareSet Walk(int square, int direction, TSquareSet occupied) {
    TSquareSet set = 0;
    for (int i = 1; i <= kGeometry.rayLength[square][direction]; ++i) {
        const int to = square + i * kStep[direction];
        set |= SetOf(to);
        if ((occupied & SetOf(to)) != 0)
            break;
    }
    return set;
}

TEST(SquareSet, ForEachSquare_VisitsEverySquareUpward) {
    std::string seen;
    ForEachSquare(SetOf(0) | SetOf(35) | SetOf(63),
                  [&seen](int square) { seen += test::TextOfSquare(square); });
    EXPECT_EQ(seen, "a1d5h8");
    ForEachSquare(0, [](int) { FAIL() << "an empty set has no squares"; });
}

TEST(SquareSet, RaysEndAtTheFirstMan) {
    test::CRandom random(1);
    for (int round = 0; round < 200; ++round) {
        const TSquareSet occupied = random.Next() & random.Next();
        for (int square = 0; square < kSquareCount; ++square) {
            TSquareSet rook = 0;
            TSquareSet bishop = 0;
            for (int d = 0; d < kDirections; ++d) {
                const TSquareSet walk = Walk(square, d, occupied);
                ASSERT_EQ(RayAttacks(square, d, occupied), walk) << square << ' ' << d;
                (kSliderBit[d] == kRook ? rook : bishop) |= walk;
            }
            ASSERT_EQ(SliderAttacks(kRook, square, occupied), rook);
            ASSERT_EQ(SliderAttacks(kBishop, square, occupied), bishop);
            ASSERT_EQ(SliderAttacks(kQueen, square, occupied), rook | bishop);
            ASSERT_EQ(WhiteAttacks(kQueen, square, occupied), rook | bishop);
        }
    }
}

TEST(SquareSet, BetweenAndBeyond_AreTheTwoSidesOfASquareOnItsLine) {
    for (int a = 0; a < kSquareCount; ++a) {
        for (int b = 0; b < kSquareCount; ++b) {
            const TSquareSet between = kSetTables.between[a][b];
            const TSquareSet beyond = kSetTables.beyond[a][b];
            if (a == b || LineBit(a, b) == 0) {
                ASSERT_EQ(between | beyond, 0U) << a << ' ' << b;
                continue;
            }
            const int d = kSetTables.direction[a][b];
            ASSERT_EQ(kStep[d], LineStep(a, b));
            ASSERT_EQ(between | SetOf(b) | beyond, kSetTables.ray[a][d]);
            ASSERT_EQ(between & beyond, 0U);
            ASSERT_EQ(between, kSetTables.between[b][a]);
            ASSERT_EQ(beyond, kSetTables.ray[b][d]);
        }
    }
}

TEST(SquareSet, PawnAttacks_DoNotLeapOverTheEdgeFiles) {
    EXPECT_EQ(WhitePawnAttacks(SetOf(SquareOf("a2"))), SetOf(SquareOf("b3")));
    EXPECT_EQ(WhitePawnAttacks(SetOf(SquareOf("h2"))), SetOf(SquareOf("g3")));
    EXPECT_EQ(WhitePawnAttacks(SetOf(SquareOf("e7"))),
              SetOf(SquareOf("d8")) | SetOf(SquareOf("f8")));
    EXPECT_EQ(WhitePawnAttacks(SetOf(SquareOf("e8"))), 0U);
    EXPECT_EQ(WhitePawnSources(SetOf(SquareOf("e1"))), 0U);
}

TEST(SquareSet, Sources_AreTheSquaresThatAttackBack) {
    const TSquareSet occupied = SetOf(20) | SetOf(29) | SetOf(42);
    for (const u8 kind : {kKing, kPawn, kBishop, kRook, kQueen, kKnight}) {
        for (int target = 0; target < kSquareCount; ++target) {
            TSquareSet sources = 0;
            for (int from = 0; from < kSquareCount; ++from) {
                if ((WhiteAttacks(kind, from, occupied) & SetOf(target)) != 0)
                    sources |= SetOf(from);
            }
            ASSERT_EQ(WhiteSources(kind, target, occupied), sources) << int{kind} << ' ' << target;
        }
    }
}

TEST(SquareSet, TakeMen_TellsTheColoursApart) {
    const TChessboard board = test::FilledBoard("r3k2r/8/8/3pP3/8/8/P7/R3K2R");
    TSquareSet white = 0;
    TSquareSet black = 0;
    TakeMen(board.m_board, &white, &black);
    for (int square = 0; square < kSquareCount; ++square) {
        EXPECT_EQ((white & SetOf(square)) != 0, IsWhite(board.m_board[square])) << square;
        EXPECT_EQ((black & SetOf(square)) != 0, IsBlack(board.m_board[square])) << square;
    }
}

}  // namespace
}  // namespace quillmere
