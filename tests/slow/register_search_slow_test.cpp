// The search with its register, and the filter of white's moves, in draws that take minutes.
#include "tests/support/families.h"
#include "tests/support/filter_judge.h"
#include "tests/support/random_positions.h"
#include "tests/support/register_bench.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using reference::CRandom;
using test::CRegisterBenches;
using test::RegisterLimits;

constexpr std::uint64_t kMoveLimit = 10'000'000;

TEST(ReplyFilterSlow, CrowdedPositions_EveryRefutedMoveIsRefuted) {
    const int cases = bridge::CasesOf(100'000);
    const test::TFilterTally tally = test::JudgeCrowdedFilters(32'000'000, cases);
    EXPECT_GE(tally.pairs, cases * 100L);
}

class RegisterFamiliesSlow : public ::testing::TestWithParam<reference::TFamily> {};

TEST_P(RegisterFamiliesSlow, AgreeWithTheJudge) {
    const reference::TFamily& family = GetParam();
    const int cases = bridge::CasesOf(250);
    CRegisterBenches benches(kMoveLimit);
    for (int number = 0; number < cases; ++number) {
        const auto seed = static_cast<std::uint64_t>(45'000'000 + number);
        CRandom random(seed);
        const int fullMoves = random.Between(2, family.fullMoves);
        const reference::TPosition position =
            number % 2 == 0 ? family.draw(random, true) : DrawBeforeMate(random, family, fullMoves);
        ASSERT_TRUE(benches.Check(position, 2 * fullMoves - 1, seed));
    }
    benches.ExpectUse(0);
}

INSTANTIATE_TEST_SUITE_P(Slow,
                         RegisterFamiliesSlow,
                         ::testing::ValuesIn(reference::Families()),
                         [](const auto& row) { return std::string(row.param.name); });

// Mates in six and seven with three to five men, with the register as it is used.
class RegisterLongTasksSlow : public ::testing::TestWithParam<int> {};

TEST_P(RegisterLongTasksSlow, FewMen_AgreeWithTheJudge) {
    const int fullMoves = GetParam();
    const int cases = bridge::CasesOf(fullMoves == 6 ? 60 : 8);
    CRegisterBenches benches(kMoveLimit, kRegisterRoot, {RegisterLimits()[0], RegisterLimits()[3]});
    const char* names[] = {"FewMen", "TwoKnights", "PawnsOnly", "MinorAndPawn", "Stalemate"};
    for (int number = 0; benches.Cases() < cases && number < 6 * cases; ++number) {
        const auto seed = static_cast<std::uint64_t>(46'000'000 + number);
        CRandom random(seed);
        const reference::TFamily& family = reference::FindFamily(names[number % 5]);
        const reference::TPosition position = DrawBeforeMate(random, family, fullMoves);
        if (reference::CountMen(position) <= 5) {
            ASSERT_TRUE(benches.Check(position, 2 * fullMoves - 1, seed));
        }
    }
    benches.ExpectUse(cases / 4);
}

INSTANTIATE_TEST_SUITE_P(Slow, RegisterLongTasksSlow, ::testing::Values(6, 7), [](const auto& row) {
    return "In" + std::to_string(row.param);
});

}  // namespace
}  // namespace quillmere
