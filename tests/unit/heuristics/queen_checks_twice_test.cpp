#include "tests/support/reply_cases.h"

namespace quillmere {
namespace {

using test::TReplyCase;

constexpr u32 kHeur = SH_DONTLETBLACKQUEENCHECKTWICE;

class QueenChecksTwice : public test::ReplyRule {};

TEST_P(QueenChecksTwice, GivesUpTheSecondCheckInARow) {
    test::CheckReplyCase(GetParam());
}

// The kings are far apart; the queen checks from e6 first.
constexpr const char* kFar = "7k/8/1q6/8/8/8/8/R3K3";
// The same with a knight that guards c4, and with one that does not.
constexpr const char* kGuarded = "7k/8/1q6/8/8/8/1N6/R3K3";
constexpr const char* kUnguarded = "7k/8/1q6/8/8/8/N7/R3K3";
constexpr const char* kEdge = "2k5/8/8/8/8/7q/8/R3K3";

INSTANTIATE_TEST_SUITE_P(
    Rows,
    QueenChecksTwice,
    testing::Values(
        TReplyCase{"SecondCheck", kHeur, kFar, 8, "b6e6 e1f1 e6h3", true},
        TReplyCase{"FirstCheck", kHeur, kFar, 8, "b6e6", false},
        TReplyCase{"NoCheckBetween", kHeur, kFar, 8, "b6e6 e1f1 e6d7 a1b1 d7h3", false},
        TReplyCase{"NoCheckNow", kHeur, kFar, 8, "b6e6 e1f1 e6d7", false},
        TReplyCase{"TheKnightTakes", kHeur, kGuarded, 8, "b6e6 e1f1 e6c4", false},
        TReplyCase{"NobodyTakes", kHeur, kUnguarded, 8, "b6e6 e1f1 e6c4", true},
        TReplyCase{"TheKingTakes", kHeur, kFar, 8, "b6e3 e1d1 e3d2", false},
        TReplyCase{"AStepAlongTheEdge", kHeur, kEdge, 8, "h3h4 e1d1 h4h5", false},
        TReplyCase{"AStepOffTheEdge", kHeur, kEdge, 8, "h3h4 e1d1 h4g4", true},
        TReplyCase{"AnotherQueen", kHeur, "7k/8/1q6/7q/8/8/8/R3K3", 8, "b6e6 e1f1 h5h1", false}),
    test::NameOfCase);

TEST(QueenChecksTwice, NearKingsAllowTheSecondCheckAndNotTheThird) {
    test::CReplyLine line("8/8/8/8/8/2k5/8/Rq1RK3", 10, kHeur);
    line.Play("b1e4 e1f1 e4f3");
    EXPECT_TRUE(line.IsLeftOut());
    test::CReplyLine near("8/8/8/8/q7/3k4/8/R4K2", 10, kHeur);
    near.Play("a4f4 f1g1 f4g3 g1f1 g3f3");
    EXPECT_TRUE(near.IsLeftOut());
    test::CReplyLine second("8/8/8/8/q7/3k4/8/R4K2", 10, kHeur);
    second.Play("a4f4 f1e1 f4h4");
    EXPECT_FALSE(second.IsLeftOut());
}

}  // namespace
}  // namespace quillmere
