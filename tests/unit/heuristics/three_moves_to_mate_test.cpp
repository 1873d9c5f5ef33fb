#include "tests/support/reply_cases.h"

namespace quillmere {
namespace {

using test::TReplyCase;

constexpr u32 kHeur = SH_3MOVESTOMATE;

class ThreeMovesToMate : public test::ReplyRule {};

TEST_P(ThreeMovesToMate, GivesUpAKingThatIsAndWasTooFree) {
    test::CheckReplyCase(GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Rows,
    ThreeMovesToMate,
    testing::Values(
        TReplyCase{"FreeInTheMiddle", kHeur, "8/8/4k3/8/8/8/8/R3K3", 6, "e6e5", true},
        TReplyCase{"FreeOneOffTheEdge", kHeur, "8/3k4/8/8/8/8/8/R3K3", 6, "d7e7", true},
        TReplyCase{"ASpareMoveOfAnotherMan", kHeur, "8/4k2p/8/8/8/8/8/R3K3", 6, "h7h6", true},
        TReplyCase{"MoreThanThreeMoves", kHeur, "8/8/4k3/8/8/8/8/R3K3", 8, "e6e5", false},
        TReplyCase{"LessThanThreeMoves", kHeur, "8/8/4k3/8/8/8/8/R3K3", 4, "e6e5", false},
        TReplyCase{"OnTheEdge", kHeur, "4k3/8/8/8/8/8/8/R3K3", 6, "e8d8", false},
        TReplyCase{"CameOffTheEdge", kHeur, "4k3/8/8/8/8/8/8/R3K3", 6, "e8e7", false},
        TReplyCase{"ShutOffByTheRook", kHeur, "8/4k3/R7/8/4K3/8/8/8", 6, "e7d7", true},
        TReplyCase{"ShutOffByRookAndKnight", kHeur, "8/4k3/R7/3N4/4K3/8/8/8", 6, "e7d7", false},
        TReplyCase{"WithAQueen", kHeur, "8/8/4k3/8/8/8/8/Q3K3", 6, "e6e7", false},
        TReplyCase{"WithTwoRooks", kHeur, "8/8/4k3/8/8/8/8/RR2K3", 6, "e6e7", false},
        TReplyCase{"WithAPawnTwoStepsAhead", kHeur, "8/8/4k3/8/8/7p/8/R3K3", 6, "e6e5", false},
        TReplyCase{"WithAPawnThreeStepsAhead", kHeur, "8/8/4k3/8/7p/8/8/R3K3", 6, "e6e5", true},
        TReplyCase{"WithThreeKnights", kHeur, "8/8/4k3/8/8/8/8/NNN1K3", 6, "e6e5", false}),
    test::NameOfCase);

}  // namespace
}  // namespace quillmere
