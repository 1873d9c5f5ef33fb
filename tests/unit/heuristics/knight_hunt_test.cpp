#include "tests/support/reply_cases.h"

namespace quillmere {
namespace {

using test::TReplyCase;

constexpr u32 kHeur = SH_CAPTUREKNIGHT;

class KnightHunt : public test::ReplyRule {};

TEST_P(KnightHunt, GivesUpAKnightOutOfReach) {
    test::CheckReplyCase(GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Rows,
    KnightHunt,
    testing::Values(
        TReplyCase{"OutOfReach", kHeur, "4k3/8/8/7n/8/8/8/R3K3", 4, "h5g3", true},
        TReplyCase{"AttackedByTheRook", kHeur, "4k3/8/8/7n/R7/8/8/4K3", 4, "h5f4", false},
        TReplyCase{"ReachedInTwoMoves", kHeur, "4k3/8/8/7n/8/8/8/R3K3", 6, "h5g3", false},
        TReplyCase{"BesideTheKing", kHeur, "4k3/8/8/7n/8/4K3/8/R7", 4, "h5f4", false},
        TReplyCase{"TheWrongBishop", kHeur, "4k3/8/8/7n/8/8/8/1B2K3", 6, "h5f4", true},
        TReplyCase{"TheRightBishop", kHeur, "4k3/8/8/7n/8/8/8/B3K3", 6, "h5g3", false},
        TReplyCase{"AFarKnight", kHeur, "4k3/8/8/7n/8/8/8/N3K3", 6, "h5g7", true},
        TReplyCase{"AKnightInReach", kHeur, "4k3/8/8/7n/8/5N2/8/4K3", 6, "h5f6", false},
        TReplyCase{"APawnThatPromotes", kHeur, "4k3/P7/8/7n/8/8/8/4K3", 6, "h5g7", false},
        TReplyCase{"WithABlackPawn", kHeur, "4k3/p7/8/7n/8/8/8/R3K3", 4, "h5g3", false},
        TReplyCase{"WithoutAKnight", kHeur, "4k3/8/8/7b/8/8/8/R3K3", 4, "h5g6", false},
        TReplyCase{"WithTwoFigures", kHeur, "4k3/8/8/7n/8/8/8/RB2K3", 4, "h5g3", false},
        TReplyCase{"KingInTheCorner", kHeur, "k7/8/8/7n/8/8/8/1R2K3", 4, "h5g3", false},
        TReplyCase{"KingInOpposition", kHeur, "4k3/8/4K3/7n/8/8/8/B7", 4, "h5f4", false},
        TReplyCase{"NoOpposition", kHeur, "3k4/8/4K3/7n/8/8/8/B7", 4, "h5g3", true}),
    test::NameOfCase);

}  // namespace
}  // namespace quillmere
