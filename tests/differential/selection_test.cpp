// Solves with the automatic choice of heuristics against solves without: verdict and keys are the same,
// and on short tasks they are those of the judge.
#include "registers/aggregated_register.h"
#include "search/solve.h"
#include "tests/support/bridge.h"
#include "tests/support/classics.h"
#include "tests/support/judged_solve.h"
#include "tests/support/random_positions.h"
#include "tests/support/reference.h"
#include "tests/support/registers.h"

#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using reference::CRandom;
using reference::FromFen;
using reference::TClassic;
using reference::TPosition;

constexpr int kLongTasks = 10;
constexpr u64 kRegisterBytes = 64 << 20;

TSolveResult SolveWith(const TPosition& position, int halfMoves, bool isAutomatic) {
    TChessboard board;
    bridge::FillBoard(board, position);
    TSearchContext context;
    TAggregatedTemporaryChessboardRegister solved(test::QuietSettings(kRegisterBytes));
    context.tempRegister = &solved;
    TSolveRequest request;
    request.halfMoves = static_cast<u16>(halfMoves);
    request.wantAllKeys = true;
    request.wantMainLine = halfMoves < 7;
    request.selectsHeuristics = isAutomatic;
    TSolveResult result = Solve(board, request, context);
    EXPECT_EQ(solved.IncoherentElements(), 0U);
    return result;
}

void ExpectSame(const TPosition& position, int halfMoves, const std::string& name) {
    const TSolveResult off = SolveWith(position, halfMoves, false);
    const TSolveResult automatic = SolveWith(position, halfMoves, true);
    EXPECT_EQ(bridge::NameOf(automatic.verdict), bridge::NameOf(off.verdict)) << name;
    EXPECT_TRUE(automatic.isComplete) << name;
    EXPECT_EQ(ToText(bridge::ToSortedPlain(automatic.keys)),
              ToText(bridge::ToSortedPlain(off.keys)))
        << name;
    EXPECT_FALSE(off.selection.wasMade) << name;
    EXPECT_EQ(automatic.selection.wasMade, halfMoves >= 4) << name;
    const TSolveResult again = SolveWith(position, halfMoves, true);
    EXPECT_EQ(again.madeMoves, automatic.madeMoves) << name;
    EXPECT_EQ(again.nodes, automatic.nodes) << name;
}

TEST(AutomaticSelection, ChangesNoAnswerOnTheClassics) {
    const int most = bridge::kIsSanitized ? 3 : 5;
    for (const TClassic& row : reference::ReadClassics(QUILLMERE_TEST_DATA "/classics.csv")) {
        if (row.fullMoves <= most)
            ExpectSame(FromFen(row.fen), 2 * row.fullMoves - 1, row.fen);
    }
}

TEST(AutomaticSelection, AgreesWithTheJudgeOnShortTasks) {
    const int wanted = bridge::CasesOf(300);
    for (int i = 0; i < wanted; ++i) {
        CRandom random(700'000 + static_cast<std::uint64_t>(i));
        const TPosition position =
            reference::RandomPosition(random, reference::RandomMateRecipe(random, 4 + i % 4, 3));
        const auto judgement = bridge::Judge(position, 5);
        if (!judgement)
            continue;
        const TSolveResult result = SolveWith(position, 5, true);
        EXPECT_TRUE(
            bridge::IsAnswerOf(*judgement, position, 5, result, reference::ToFen(position)));
    }
}

// Tasks long enough for trials, with few men so that a search without heuristics ends soon.
TEST(AutomaticSelection, ChangesNoAnswerWhereTrialsAreMade) {
    const int wanted = bridge::CasesOf(kLongTasks);
    int withTrials = 0;
    int mates = 0;
    for (int i = 0; i < wanted; ++i) {
        CRandom random(800'000 + static_cast<std::uint64_t>(i));
        const TPosition position =
            reference::RandomPosition(random, reference::RandomMateRecipe(random, 4 + i % 3, 5));
        const TSolveResult result = SolveWith(position, 11, true);
        ExpectSame(position, 11, reference::ToFen(position));
        withTrials += result.selection.trials.empty() ? 0 : 1;
        mates += result.verdict == ESolveVerdict::kProvedMate ? 1 : 0;
    }
    if (wanted == kLongTasks) {
        EXPECT_GE(withTrials, 3);
        EXPECT_GE(mates, 2);
    }
}

}  // namespace
}  // namespace quillmere
