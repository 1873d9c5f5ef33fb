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

}  // namespace
}  // namespace quillmere
