#include "tests/support/reply_cases.h"

namespace quillmere {
namespace {

using test::TReplyCase;

constexpr u32 kHeur = SH_AREKINGSNEAR;

class KingsNear : public test::ReplyRule {};

TEST_P(KingsNear, GivesUpAWayThatIsTooLong) {
    test::CheckReplyCase(GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Rows,
    KingsNear,
    testing::Values(
        // With two moves left the white king makes one step.
        TReplyCase{"Two", kHeur, "7k/8/8/8/8/7K/8/R7", 4, "h8g8", true},
        TReplyCase{"JustInTime", kHeur, "7k/8/8/7K/8/8/8/R7", 4, "h8g8", false},
        TReplyCase{"OneStepShort", kHeur, "7k/8/8/8/7K/8/8/R7", 4, "h8g8", true},
        TReplyCase{"OneMoveMore", kHeur, "7k/8/8/8/7K/8/8/R7", 6, "h8g8", false},
        TReplyCase{"WithAQueenAndPawns", kHeur, "7k/8/8/8/8/8/P6K/Q7", 4, "h8g8", true},
        TReplyCase{"WithAQueenAndARook", kHeur, "7k/8/8/8/8/8/R6K/Q7", 4, "h8g8", false},
        TReplyCase{"WithTwoQueens", kHeur, "7k/8/8/8/8/8/Q6K/1Q6", 4, "h8g7", false},
        TReplyCase{"BehindAPromotion", kHeur, "7k/8/8/8/8/8/p6K/1R6", 4, "a2a1Q", false},
        TReplyCase{"APawnOnTheWay", kHeur, "6k1/8/8/7p/7K/8/8/R7", 4, "g8h8", false},
        TReplyCase{"AGuardedPawnOnTheWay", kHeur, "6k1/8/8/7p/7K/8/4b3/R7", 4, "g8h8", true},
        TReplyCase{"APawnBesideTheWay", kHeur, "6k1/8/8/p7/7K/8/8/R7", 4, "g8h8", true}),
    test::NameOfCase);

}  // namespace
}  // namespace quillmere
