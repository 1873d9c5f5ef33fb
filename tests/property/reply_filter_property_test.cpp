// The filter of white's moves by one reply must never drop a move that mates in two.
#include "tests/support/filter_judge.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(ReplyFilter, CrowdedPositions_EveryRefutedMoveIsRefuted) {
    const int cases = bridge::CasesOf(6000);
    const test::TFilterTally tally = test::JudgeCrowdedFilters(31'000'000, cases);
    EXPECT_GE(tally.pairs, cases * 100L);
    EXPECT_GE(2 * tally.refuted, tally.pairs) << "the filter has lost its force";
    if (!bridge::kIsSanitized) {
        EXPECT_GE(10 * tally.inCheck, cases);
        EXPECT_GE(tally.enPassant, 100);
    }
}

}  // namespace
}  // namespace quillmere
