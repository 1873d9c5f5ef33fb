// The search with the register of solved positions, against the judge. The register takes part from
// the shortest tasks on, roomy, short of memory, and with none; solved once more with what is known;
// and shared by a chain of different tasks. Whatever it holds, every answer is the judge's.
#include "tests/support/families.h"
#include "tests/support/random_positions.h"
#include "tests/support/register_bench.h"

#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <vector>

namespace quillmere {
namespace {

using reference::CRandom;
using reference::TPosition;
using test::CRegisterBenches;
using test::RegisterLimits;

constexpr std::uint64_t kMoveLimit = 1'500'000;

class RegisterRandomMates : public ::testing::TestWithParam<std::tuple<int, int>> {};

TEST_P(RegisterRandomMates, AgreeWithTheJudge) {
    const auto [fullMoves, men] = GetParam();
    const int cases = bridge::CasesOf(fullMoves == 3 ? 60 : 25);
    CRegisterBenches benches(kMoveLimit);
    for (int number = 0; number < cases; ++number) {
        const auto seed =
            static_cast<std::uint64_t>(41'000'000 + 100'000 * fullMoves + 10'000 * men + number);
        CRandom random(seed);
        const TPosition position =
            reference::RandomPosition(random, reference::RandomMateRecipe(random, men, fullMoves));
        ASSERT_TRUE(benches.Check(position, 2 * fullMoves - 1, seed));
    }
    benches.ExpectUse(cases / 8);
}

INSTANTIATE_TEST_SUITE_P(Search,
                         RegisterRandomMates,
                         ::testing::Combine(::testing::Range(3, 5), ::testing::Values(4, 6, 8)),
                         [](const auto& row) {
                             return "In" + std::to_string(std::get<0>(row.param)) + "With" +
                                    std::to_string(std::get<1>(row.param)) + "Men";
                         });

// Odd and even lengths of every family in one chain.
class RegisterFamilies : public ::testing::TestWithParam<reference::TFamily> {};

TEST_P(RegisterFamilies, AgreeWithTheJudge) {
    const reference::TFamily& family = GetParam();
    const int cases = bridge::CasesOf(45);
    CRegisterBenches benches(kMoveLimit);
    for (int number = 0; number < cases; ++number) {
        const auto seed = static_cast<std::uint64_t>(42'000'000 + number);
        CRandom random(seed);
        const int fullMoves = random.Between(2, std::min(family.fullMoves, 4));
        const bool isDefence = number % 4 == 3;
        const TPosition position = isDefence         ? family.draw(random, false)
                                   : number % 4 == 0 ? family.draw(random, true)
                                                     : DrawBeforeMate(random, family, fullMoves);
        ASSERT_TRUE(benches.Check(position, 2 * fullMoves - (isDefence ? 2 : 1), seed));
    }
    benches.ExpectUse(0);
}

INSTANTIATE_TEST_SUITE_P(Search,
                         RegisterFamilies,
                         ::testing::ValuesIn(reference::Families()),
                         [](const auto& row) { return std::string(row.param.name); });

// Few men and many moves: lines run back into themselves, and what was stored inside one of them is
// asked for in another. Neighbouring lengths of one position meet in the chain.
TEST(RegisterRepetition, FewMen_AgreeWithTheJudge) {
    const reference::TFamily& family = reference::FindFamily("FewMen");
    const int cases = bridge::CasesOf(24);
    CRegisterBenches benches(kMoveLimit);
    for (int number = 0; number < cases; ++number) {
        const auto seed = static_cast<std::uint64_t>(43'000'000 + number);
        CRandom random(seed);
        const int fullMoves = random.Between(4, 5);
        const TPosition position =
            number % 2 == 0 ? family.draw(random, true) : DrawBeforeMate(random, family, fullMoves);
        ASSERT_TRUE(benches.Check(position, 2 * fullMoves - 1, seed));
        ASSERT_TRUE(benches.Check(position, 2 * fullMoves - 3, seed));
    }
    benches.ExpectUse(cases / 5);
}

// The tasks for which the register was made.
TEST(RegisterLongTasks, FewMen_AgreeWithTheJudge) {
    const int cases = bridge::CasesOf(8);
    // Without a register such tasks take long.
    CRegisterBenches benches(kMoveLimit, kRegisterRoot, {RegisterLimits()[0], RegisterLimits()[3]});
    int number = 0;
    for (; benches.Cases() < cases && number < 4 * cases; ++number) {
        const auto seed = static_cast<std::uint64_t>(44'000'000 + number);
        CRandom random(seed);
        const reference::TFamily& family = reference::FindFamily(std::vector<std::string>{
            "FewMen", "TwoKnights", "PawnsOnly", "MinorAndPawn"}[number % 4]);
        const TPosition position = DrawBeforeMate(random, family, 6);
        ASSERT_TRUE(benches.Check(position, 11, seed));
    }
    benches.ExpectUse(1);
}

}  // namespace
}  // namespace quillmere
