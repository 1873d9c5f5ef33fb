#include "core/geometry.h"
#include "tests/support/boards.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace quillmere {
namespace {

using test::SquareOf;

// Every table is compared with the coordinates, square by square.

TEST(Geometry, Relation_IsThatOfTheMenOnAnEmptyBoard) {
    for (int a = 0; a < kSquareCount; ++a) {
        for (int b = 0; b < kSquareCount; ++b) {
            const int df = std::abs(FileOf(a) - FileOf(b));
            const int dr = std::abs(RankOf(a) - RankOf(b));
            u8 expected = 0;
            if (a != b) {
                if (df == 0 || dr == 0)
                    expected |= kRook;
                if (df == dr)
                    expected |= kBishop;
                if (df * dr == 2)
                    expected |= kKnight;
                if (df <= 1 && dr <= 1)
                    expected |= kKing;
            }
            EXPECT_EQ(Relation(a, b), expected) << a << " " << b;
            EXPECT_EQ(LineBit(a, b), expected & kQueen);
            EXPECT_EQ(IsKnightStep(a, b), (expected & kKnight) != 0);
            EXPECT_EQ(KingDistance(a, b), std::max(df, dr));
        }
    }
}

TEST(Geometry, LineStep_WalksFromOneSquareToTheOther) {
    for (int a = 0; a < kSquareCount; ++a) {
        for (int b = 0; b < kSquareCount; ++b) {
            const int step = LineStep(a, b);
            ASSERT_EQ(step != 0, LineBit(a, b) != 0) << a << " " << b;
            if (step != 0) {
                EXPECT_EQ(a + step * KingDistance(a, b), b);
            }
        }
    }
}

TEST(Geometry, RayLengths_EndAtTheEdge) {
    for (int square = 0; square < kSquareCount; ++square) {
        for (int d = 0; d < kDirections; ++d) {
            int file = FileOf(square);
            int rank = RankOf(square);
            int length = -1;
            for (; file >= 0 && file < 8 && rank >= 0 && rank < 8; ++length) {
                file += kFileStep[d];
                rank += kRankStep[d];
            }
            EXPECT_EQ(kGeometry.rayLength[square][d], length);
            EXPECT_EQ(kStep[d], 8 * kRankStep[d] + kFileStep[d]);
        }
    }
}

TEST(Geometry, KnightTargets_AreAllStepsAndTheRestHarmless) {
    for (int square = 0; square < kSquareCount; ++square) {
        std::set<int> expected;
        for (int other = 0; other < kSquareCount; ++other) {
            if (IsKnightStep(square, other))
                expected.insert(other);
        }
        const auto& row = kGeometry.knightTargets[square];
        EXPECT_EQ(std::set<int>(row.begin(), row.begin() + kGeometry.knightCount[square]),
                  expected);
        EXPECT_EQ(std::set<int>(row.begin(), row.end()), expected);
        EXPECT_EQ(kGeometry.knightCount[square], expected.size());
    }
}

TEST(Geometry, KingTargets_GoSouthFirst) {
    const auto& e4 = kGeometry.kingTargets[SquareOf("e4")];
    const char* expected[8] = {"e3", "d3", "f3", "e5", "d5", "f5", "d4", "f4"};
    ASSERT_EQ(kGeometry.kingCount[SquareOf("e4")], 8);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(e4[i], SquareOf(expected[i]));
    const auto& a8 = kGeometry.kingTargets[SquareOf("a8")];
    ASSERT_EQ(kGeometry.kingCount[SquareOf("a8")], 3);
    EXPECT_EQ(a8[0], SquareOf("a7"));
    EXPECT_EQ(a8[1], SquareOf("b7"));
    EXPECT_EQ(a8[2], SquareOf("b8"));
}

TEST(Geometry, IsLineClear_LooksOnlyBetween) {
    const TChessboard board = test::FilledBoard("8/8/8/8/R2p3r/8/8/8");
    const u8* b = board.m_board;
    EXPECT_TRUE(IsLineClear(b, SquareOf("a4"), SquareOf("d4"), 1));
    EXPECT_FALSE(IsLineClear(b, SquareOf("a4"), SquareOf("e4"), 1));
    EXPECT_TRUE(IsLineClear(b, SquareOf("h4"), SquareOf("d4"), -1));
    EXPECT_TRUE(IsLineClear(b, SquareOf("a4"), SquareOf("b4"), 1));
}

TEST(Geometry, NextFigureSquare_FindsTheColourFromTheSquareOn) {
    const TChessboard board = test::FilledBoard("8/8/8/8/R2p3r/8/8/8");
    EXPECT_EQ(NextFigureSquare(board.m_board, 0, kWhite), SquareOf("a4"));
    EXPECT_EQ(NextFigureSquare(board.m_board, SquareOf("a4"), kWhite), SquareOf("a4"));
    EXPECT_EQ(NextFigureSquare(board.m_board, SquareOf("b4"), kWhite), kSquareCount);
    EXPECT_EQ(NextFigureSquare(board.m_board, SquareOf("e4"), kBlack), SquareOf("h4"));
    EXPECT_EQ(NextFigureSquare(board.m_board, kSquareCount, kBlack), kSquareCount);
}

}  // namespace
}  // namespace quillmere
