// Well-known compositions: each has its author's key as its only key, and no shorter mate.
#include "core/search_context.h"
#include "core/thread_context.h"
#include "search/solve.h"
#include "tests/support/bridge.h"
#include "tests/support/classics.h"
#include "tests/support/judged_solve.h"
#include "tests/support/reference.h"

#include <cctype>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using reference::FromFen;
using reference::TClassic;
using reference::TPosition;

std::vector<TClassic> ClassicsOf(int fewest, int most) {
    std::vector<TClassic> rows = reference::ReadClassics(QUILLMERE_TEST_DATA "/classics.csv");
    std::erase_if(
        rows, [&](const TClassic& row) { return row.fullMoves < fewest || row.fullMoves > most; });
    return rows;
}

class Classics : public ::testing::TestWithParam<TClassic> {};

TEST_P(Classics, HaveTheirKeyAndNoShorterMate) {
    const TClassic& row = GetParam();
    if (bridge::kIsSanitized && row.fullMoves > 4) {
        GTEST_SKIP() << "too long for a run with a sanitizer";
    }
    const TPosition position = FromFen(row.fen);
    const int halfMoves = 2 * row.fullMoves - 1;
    const std::vector<reference::TPlainMove> key = {FindMove(position, row.key)};

    const TSolveResult result = bridge::SolveAll(position, halfMoves);
    EXPECT_EQ(bridge::NameOf(result.verdict), "mate");
    EXPECT_TRUE(result.isComplete);
    EXPECT_EQ(ToText(bridge::ToSortedPlain(result.keys)), ToText(key));
    std::vector<reference::TPlainMove> line;
    for (const TMove move : result.mainLine) {
        line.push_back(bridge::ToPlain(move));
    }
    EXPECT_EQ(FaultOfLine(position, line, halfMoves), std::nullopt);
    EXPECT_EQ(static_cast<int>(line.size()), halfMoves) << ToText(line);

    EXPECT_EQ(bridge::NameOf(bridge::SolveAll(position, halfMoves - 2).verdict), "no mate");
}

// The rows themselves are what the judge says.
TEST_P(Classics, AreConfirmedByTheJudge) {
    const TClassic& row = GetParam();
    // The judge needs half a minute for the longest five-mover; the slow tests ask it those.
    if (row.fullMoves > (bridge::kIsSanitized ? 3 : 4)) {
        GTEST_SKIP() << "left to the slow tests";
    }
    const TPosition position = FromFen(row.fen);
    reference::CBruteForce judge;
    const std::vector<reference::TPlainMove> key = {FindMove(position, row.key)};
    EXPECT_EQ(ToText(judge.Keys(position, row.fullMoves)), ToText(key));
    EXPECT_FALSE(judge.MateIn(position, row.fullMoves - 1));
}

// Under every mode: what is found first is the key, "no mate" is never said, and the last pass says
// what a search without heuristics says.
TEST_P(Classics, AreNotHurtByForcedMates) {
    const TClassic& row = GetParam();
    if (row.fullMoves > (bridge::kIsSanitized ? 3 : 4))
        GTEST_SKIP() << "too long for all modes";
    const TPosition position = FromFen(row.fen);
    const std::string key = ToText(FindMove(position, row.key));
    TChessboard board;
    bridge::FillBoard(board, position);
    for (u8 mode = 2; mode <= 9; ++mode) {
        for (const bool isShort : {false, true}) {
            for (const bool hasLastPass : {false, true}) {
                TThreadContext thread(1);
                TSearchContext given;
                TChessboard word = board;
                word.m_threadContext = &thread;
                word.m_searchContext = &given;
                word.Heur = SH_FINDFORCEDMATE;
                thread.heuristics.FfmStartMode = thread.heuristics.FfmMode = mode;
                thread.heuristics.FfmAddCaptures = mode % 2 == 0;
                thread.heuristics.RunPassWithoutHeuristics = hasLastPass;
                TSearchContext context;
                TSolveRequest request;
                request.halfMoves = static_cast<u16>(2 * row.fullMoves - (isShort ? 3 : 1));
                request.wantAllKeys = true;
                request.heuristics = &word;
                const TSolveResult result = Solve(board, request, context);
                const std::string keys = ToText(bridge::ToSortedPlain(result.keys));
                const bool hasNone = result.keys.empty();
                const std::string verdict = bridge::NameOf(result.verdict);
                if (hasLastPass) {
                    EXPECT_EQ(keys, isShort ? "none" : key) << "mode " << int{mode};
                    EXPECT_EQ(verdict, isShort ? "no mate" : "mate") << "mode " << int{mode};
                } else {
                    EXPECT_TRUE(hasNone || (!isShort && keys == key)) << keys;
                    EXPECT_EQ(verdict, hasNone ? "doubtful" : "mate") << "mode " << int{mode};
                }
            }
        }
    }
}

std::string NameOfRow(const ::testing::TestParamInfo<TClassic>& row) {
    std::string name = row.param.author.substr(0, row.param.author.find(','));
    std::erase_if(name,
                  [](char letter) { return !std::isalnum(static_cast<unsigned char>(letter)); });
    return name + row.param.year + "In" + std::to_string(row.param.fullMoves) + "Number" +
           std::to_string(row.index);
}

INSTANTIATE_TEST_SUITE_P(ToFiveMoves, Classics, ::testing::ValuesIn(ClassicsOf(2, 5)), NameOfRow);

TEST(ClassicsFile, HoldsTheRows) {
    EXPECT_EQ(ClassicsOf(2, 2).size(), 8u);
    EXPECT_EQ(ClassicsOf(3, 3).size(), 6u);
    EXPECT_EQ(ClassicsOf(4, 4).size(), 6u);
    EXPECT_EQ(ClassicsOf(5, 5).size(), 4u);
}

}  // namespace
}  // namespace quillmere
