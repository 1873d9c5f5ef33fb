#include "search/mate_search.h"
#include "tests/support/boards.h"
#include "tests/support/white_rules.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

struct TCase {
    const char* move;
    bool isLeftOut;
};

TEST(RecedingKing, OnlyQuietStepsAwayAreLeftOut) {
    constexpr TCase kCases[] = {
        {"e3e2", true},
        {"e3f2", true},
        {"e3d2", false},  // takes
        {"e3e4", false},
        {"e3d3", false},  // keeps the distance
        {"h1h2", false},  // no king
    };
    test::CWhiteRuleBoard board("4k3/8/8/8/8/4K3/3p4/7R", 5, SH_DONTRECEDEBLACKKING);
    for (const TCase& c : kCases)
        EXPECT_EQ(IsKingMoveLeftOut(board.Root(), test::MoveOf(c.move)), c.isLeftOut) << c.move;
}

TEST(RecedingKing, WithoutTheBitOrInTheLastPass_NothingIsLeftOut) {
    test::CWhiteRuleBoard board("4k3/8/8/8/8/4K3/3p4/7R", 5, SH_SWEEPINGWHITEROOK);
    EXPECT_FALSE(IsKingMoveLeftOut(board.Root(), test::MoveOf("e3e2")));
    board.Root().Heur = SH_DONTRECEDEBLACKKING;
    board.Root().m_pass = kPassComplete;
    EXPECT_FALSE(IsKingMoveLeftOut(board.Root(), test::MoveOf("e3e2")));
}

TEST(RecedingKing, MateThatNeedsARetreat_IsDoubtfulNotAbsent) {
    struct TMateCase {
        const char* fen;
        u16 halfMoves;
    };
    constexpr TMateCase kCases[] = {
        {"7k/8/6RK/7R/8/8/8/8", 3},
        {"8/7N/7K/8/7k/8/6Q1/8", 3},
        {"8/8/8/8/8/5R1K/5B2/4N2k", 3},
        {"7k/6p1/6PK/1Q6/8/8/8/8", 5},
        {"8/8/8/8/5Q2/5K1p/6bp/7k", 5},
    };
    for (const TMateCase& c : kCases) {
        test::CWhiteRuleBoard board(c.fen, c.halfMoves, 0);
        EXPECT_EQ(FindMate(board.Root(), true), kMate) << c.fen;
        board.Root().Heur = SH_DONTRECEDEBLACKKING;
        EXPECT_EQ(FindMate(board.Root(), true), kDoubtful) << c.fen;
    }
}

}  // namespace
}  // namespace quillmere
