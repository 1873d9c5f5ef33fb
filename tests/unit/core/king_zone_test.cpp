#include "core/attacks.h"
#include "core/geometry.h"
#include "core/king_zone.h"
#include "tests/support/boards.h"
#include "tests/support/random_positions.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace quillmere {
namespace {

// The zone of a king off the edge: the squares around it, in the order of the king's moves.
TEST(KingZone, Bits_StandForTheTargetsOfTheKing) {
    for (int king = 0; king < kSquareCount; ++king) {
        for (int square = 0; square < kSquareCount; ++square) {
            int expected = 0;
            for (int i = 0; i < kGeometry.kingCount[king]; ++i)
                expected |= kGeometry.kingTargets[king][i] == square ? 1 << i : 0;
            EXPECT_EQ(ZoneBit(king, square), expected) << king << " " << square;
        }
    }
}

// On a board with that man alone the table is what the attack test says.
TEST(KingZone, Attack_IsThatOfTheManAlone) {
    const struct {
        u8 figure;
        ECount count;
    } rows[] = {{kWhiteQueen, kWhiteQueens},
                {kWhiteRook, kWhiteRooks},
                {kWhiteBishop, kWhiteBishops},
                {kWhiteKnight, kWhiteKnights},
                {kWhitePawn, kWhitePawns}};
    for (const auto& row : rows) {
        for (int king = 0; king < kSquareCount; ++king) {
            for (int from = 0; from < kSquareCount; ++from) {
                if (from == king ||
                    (row.figure == kWhitePawn && (RankOf(from) == 0 || RankOf(from) == 7)))
                    continue;
                TChessboard board;
                InitBoard(board);
                board.m_board[from] = row.figure;
                board.m_counts[row.count] = 1;
                board.m_figureListValid = 0;
                // The white king far away from the zone, so that only the man attacks.
                const int corner = KingDistance(king, 0) > 3 ? 0 : 63;
                board.m_whiteKingFile = static_cast<i8>(FileOf(corner));
                board.m_whiteKingRank = static_cast<i8>(RankOf(corner));
                int expected = 0;
                for (int i = 0; i < kGeometry.kingCount[king]; ++i) {
                    const int square = kGeometry.kingTargets[king][i];
                    expected |= IsAttackedByWhite(board, square) ? 1 << i : 0;
                }
                ASSERT_EQ(ZoneAttack(KindOf(row.figure), king, from), expected)
                    << int{row.figure} << " " << king << " " << from;
            }
        }
    }
}

TEST(SafeKingSteps, EqualTheStepsThatTheAttackTestAllows) {
    reference::CRandom random(31);
    int open = 0;
    int shut = 0;
    for (int i = 0; i < 40'000; ++i) {
        reference::TPosition position = reference::RandomMelee(random, random.Between(3, 20));
        TChessboard board;
        bridge::FillBoard(board, position);
        ValidateBoard(board, true);
        const TChessboard before = board;
        const u8 steps = SafeKingSteps(board);
        ASSERT_TRUE(std::equal(board.m_board, board.m_board + kSquareCount, before.m_board));
        const int king = board.BlackKingSquare();
        TChessboard lifted = board;
        lifted.m_board[king] = 0;
        lifted.m_figureListValid = 0;
        for (int k = 0; k < kGeometry.kingCount[king]; ++k) {
            const int square = kGeometry.kingTargets[king][k];
            const bool isSafe =
                !IsBlack(board.m_board[square]) && !IsAttackedByWhite(lifted, square);
            ASSERT_EQ((steps >> k & 1) != 0, isSafe) << reference::ToFen(position);
            (isSafe ? open : shut) += 1;
        }
        ASSERT_EQ(steps >> kGeometry.kingCount[king], 0);
        board.m_figureListValid = 0;
        ASSERT_EQ(SafeKingSteps(board), steps) << reference::ToFen(position);
    }
    EXPECT_GT(open, 10'000);
    EXPECT_GT(shut, 10'000);
}

}  // namespace
}  // namespace quillmere
