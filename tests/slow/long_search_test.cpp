// The search against the judge where one case takes seconds: more men, longer mates, larger draws.
#include "search/solve.h"
#include "tests/support/bridge.h"
#include "tests/support/classics.h"
#include "tests/support/families.h"
#include "tests/support/judged_solve.h"
#include "tests/support/random_positions.h"
#include "tests/support/reference.h"

#include <cctype>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <vector>

namespace quillmere {
namespace {

using bridge::AgreesWith;
using bridge::Judge;
using bridge::TJudgement;
using reference::CRandom;
using reference::FromFen;
using reference::TClassic;
using reference::TPosition;

constexpr int kMostFailures = 5;

// A case of the longer draws: number of men, length in moves, number of cases.
struct TLongDraw {
    int fullMoves;
    int fewestMen;
    int mostMen;
    int cases;
};

class LongDraw : public ::testing::TestWithParam<TLongDraw> {};

TEST_P(LongDraw, AgreesWithTheJudge) {
    const TLongDraw& draw = GetParam();
    const int cases = bridge::CasesOf(draw.cases);
    int failures = 0;
    int mates = 0;
    int judged = 0;
    for (int number = 0; number < cases; ++number) {
        const auto seed = static_cast<std::uint64_t>(9000000 + 100000 * draw.fullMoves + number);
        CRandom random(seed);
        const int men = random.Between(draw.fewestMen, draw.mostMen);
        reference::TRecipe recipe = reference::RandomMateRecipe(random, men, draw.fullMoves);
        recipe.isMaterialOfGame = true;
        const TPosition position = reference::RandomPosition(random, recipe);
        const std::optional<TJudgement> judgement =
            Judge(position, 2 * draw.fullMoves - 1, 50'000'000);
        if (!judgement) {
            continue;
        }
        ++judged;
        mates += judgement->isMate;
        const auto agrees = AgreesWith(*judgement, position, 2 * draw.fullMoves - 1);
        EXPECT_TRUE(agrees) << "seed " << seed;
        ASSERT_LT(failures += !agrees, kMostFailures);
    }
    EXPECT_GE(2 * judged, cases);
    EXPECT_GE(5 * mates, judged);
}

INSTANTIATE_TEST_SUITE_P(Slow,
                         LongDraw,
                         ::testing::ValuesIn(std::vector<TLongDraw>{
                             {2, 8, 20, 3000},
                             {3, 8, 14, 150},
                             {4, 3, 7, 1000},
                             {5, 3, 4, 12},
                         }),
                         [](const auto& row) {
                             return "In" + std::to_string(row.param.fullMoves) + "With" +
                                    std::to_string(row.param.fewestMen) + "To" +
                                    std::to_string(row.param.mostMen) + "Men";
                         });

// Long lines of few men, full of repetitions: every bound gives the same answer.
TEST(LongRepetition, FewMen_AgreeUnderEveryBound) {
    const reference::TFamily& family = reference::FindFamily("FewMen");
    const int cases = bridge::CasesOf(40);
    for (int number = 0; number < cases; ++number) {
        const auto seed = static_cast<std::uint64_t>(9900000 + number);
        CRandom random(seed);
        const int fullMoves = 5;
        const TPosition position = DrawBeforeMate(random, family, fullMoves);
        const int halfMoves = 2 * fullMoves - 1;
        const TSolveResult without = bridge::SolveAll(position, halfMoves, 0);
        for (const u16 bound : {u16{3}, u16{6}, u16{7}, u16{65535}}) {
            const TSolveResult with = bridge::SolveAll(position, halfMoves, bound);
            EXPECT_EQ(bridge::NameOf(with.verdict), bridge::NameOf(without.verdict))
                << ToFen(position) << " bound " << bound << " seed " << seed;
            EXPECT_EQ(ToText(bridge::ToSortedPlain(with.keys)),
                      ToText(bridge::ToSortedPlain(without.keys)))
                << ToFen(position) << " bound " << bound << " seed " << seed;
        }
    }
}

// Classics that are too long for the daily run

std::vector<TClassic> ClassicsOf(int fewest, int most) {
    std::vector<TClassic> rows = reference::ReadClassics(QUILLMERE_TEST_DATA "/classics.csv");
    std::erase_if(
        rows, [&](const TClassic& row) { return row.fullMoves < fewest || row.fullMoves > most; });
    return rows;
}

std::string NameOfRow(const ::testing::TestParamInfo<TClassic>& row) {
    std::string name = row.param.author.substr(0, row.param.author.find(','));
    std::erase_if(name,
                  [](char letter) { return !std::isalnum(static_cast<unsigned char>(letter)); });
    return name + row.param.year + "In" + std::to_string(row.param.fullMoves) + "Number" +
           std::to_string(row.index);
}

class ClassicsOfFive : public ::testing::TestWithParam<TClassic> {};

TEST_P(ClassicsOfFive, AreConfirmedByTheJudge) {
    const TPosition position = FromFen(GetParam().fen);
    reference::CBruteForce judge;
    EXPECT_EQ(ToText(judge.Keys(position, 5)), ToText(FindMove(position, GetParam().key)));
    EXPECT_FALSE(judge.MateIn(position, 4));
}

INSTANTIATE_TEST_SUITE_P(Slow, ClassicsOfFive, ::testing::ValuesIn(ClassicsOf(5, 5)), NameOfRow);

class ClassicsOfSix : public ::testing::TestWithParam<TClassic> {};

TEST_P(ClassicsOfSix, HaveTheirKeyAndNoShorterMate) {
    const TPosition position = FromFen(GetParam().fen);
    const TSolveResult result = bridge::SolveAll(position, 11);
    EXPECT_EQ(ToText(bridge::ToSortedPlain(result.keys)),
              ToText(FindMove(position, GetParam().key)));
    EXPECT_EQ(result.mainLine.size(), 11u);
    EXPECT_EQ(bridge::NameOf(bridge::SolveAll(position, 9).verdict), "no mate");
}

INSTANTIATE_TEST_SUITE_P(Slow, ClassicsOfSix, ::testing::ValuesIn(ClassicsOf(6, 6)), NameOfRow);

}  // namespace
}  // namespace quillmere
