// What holds under any word of heuristics: a mate is a mate, no pass with heuristics says "no mate",
// the last pass says what a search without heuristics says, and the register keeps only what is true.
#include "core/fen.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/thread_context.h"
#include "heuristics/catalogue.h"
#include "registers/aggregated_register.h"
#include "search/mate_search.h"
#include "search/register_access.h"
#include "search/solve.h"
#include "tests/support/bridge.h"
#include "tests/support/given_word.h"
#include "tests/support/random.h"
#include "tests/support/random_positions.h"
#include "tests/support/registers.h"

#include <algorithm>
#include <deque>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

namespace quillmere {
namespace {

using reference::TPosition;
using test::CGivenWord;
using test::CRandom;
using test::kUnusedBits;
using test::UsedBits;

TSolveRequest RequestFor(int halfMoves) {
    TSolveRequest request;
    request.halfMoves = static_cast<u16>(halfMoves);
    request.wantAllKeys = true;
    return request;
}

std::string Texts(const std::vector<TMove>& moves) {
    return reference::ToText(bridge::ToSortedPlain(moves));
}

std::vector<reference::TPlainMove> PlainLine(const std::vector<TMove>& moves) {
    std::vector<reference::TPlainMove> line;
    std::transform(moves.begin(), moves.end(), std::back_inserter(line), bridge::ToPlain);
    return line;
}

bool HoldsAll(const std::vector<TMove>& all, const std::vector<TMove>& some) {
    return std::all_of(some.begin(), some.end(), [&all](TMove move) {
        return std::any_of(
            all.begin(), all.end(), [move](TMove other) { return MovesEqual(move, other); });
    });
}

// Random lines from the root; every exact entry that they meet is proved again without a register.
void ExpectRegisterTrue(const TChessboard& board,
                        int halfMoves,
                        TAggregatedTemporaryChessboardRegister& store,
                        CRandom& random,
                        int* proved) {
    TSearchContext context;
    context.tempRegister = &store;
    context.registerRoot = 3;
    for (int walk = 0; walk < 12; ++walk) {
        TThreadContext thread(static_cast<u16>(halfMoves));
        std::deque<TChessboard> line(1);
        InitBoard(line.front());
        std::copy(board.m_board, board.m_board + kSquareCount, line.front().m_board);
        line.front().m_searchContext = &context;
        line.front().m_threadContext = &thread;
        line.front().m_pass = kPassComplete;
        thread.rootNode = &line.front();
        SetupAnalysisRoot(line.front(), static_cast<u16>(halfMoves), true);
        while (line.back().m_nMoves > 2) {
            TChessboard& node = line.back();
            TMoveList list;
            list.count = GetLegalMoves(node, list.moves);
            if (list.count == 0)
                break;
            const TMove move = list[random.Below(list.count)];
            TChessboard& child = line.emplace_back(node);
            child.m_parent = &node;
            if (node.IsWhiteToMove() ? MakeWhiteMoveLegal(child, move) != kMoveMade
                                     : MakeBlackMoveLegal(child, move) != kMoveMade)
                break;
            if (!child.IsWhiteToMove() || !MayUseRegister(child))
                continue;
            const TVerdict known = FindInRegister(child);
            if (known != kMate && known != kNoMate)
                continue;
            TSearchContext plain;
            plain.repetitionBound = 0;
            TChessboard alone = child;
            alone.m_searchContext = &plain;
            ASSERT_EQ(FindMate(alone, false), known)
                << GetFENCode(child) << ", " << child.m_nMoves << " half-moves";
            ++*proved;
        }
    }
}

struct TTally {
    int mates = 0;
    int matesUnderAWord = 0;
    int doubtfulPasses = 0;
    int reproved = 0;
};

// All laws for one position and one word.
void CheckLaws(const TPosition& position, int halfMoves, u32 heur, CRandom& random, TTally& tally) {
    TChessboard board;
    bridge::FillBoard(board, position);
    TSearchContext plainContext;
    const TSolveResult plain = Solve(board, RequestFor(halfMoves), plainContext);
    CGivenWord word(heur, board, random);
    const std::string name = reference::ToFen(position) + ", " + std::to_string(halfMoves) +
                             " half-moves, " + HeuristicsText(word.Node());

    TAggregatedTemporaryChessboardRegister store(test::QuietSettings(u64{8} << 20));
    TSearchContext context;
    context.tempRegister = &store;
    context.registerRoot = 5;
    TSolveRequest request = RequestFor(halfMoves);
    request.heuristics = &word.Node();
    const TSolveResult solved = Solve(board, request, context);
    ASSERT_EQ(solved.verdict, plain.verdict) << name;
    ASSERT_EQ(Texts(solved.keys), Texts(plain.keys)) << name;
    ASSERT_EQ(Texts(solved.defences), Texts(plain.defences)) << name;
    ASSERT_TRUE(solved.isComplete) << name;
    ASSERT_EQ(store.IncoherentElements(), 0u) << name;
    for (const TPassRecord& pass : solved.passes) {
        ASSERT_TRUE(pass.Heur == 0 || pass.verdict == ESolveVerdict::kProvedMate ||
                    pass.verdict == ESolveVerdict::kDoubt)
            << name;
        tally.doubtfulPasses += pass.verdict == ESolveVerdict::kDoubt ? 1 : 0;
    }
    if (plain.verdict == ESolveVerdict::kProvedMate) {
        ++tally.mates;
        const auto fault = reference::FaultOfLine(position, PlainLine(solved.mainLine), halfMoves);
        ASSERT_FALSE(fault.has_value()) << name << ": " << *fault;
    }
    ASSERT_NO_FATAL_FAILURE(ExpectRegisterTrue(board, halfMoves, store, random, &tally.reproved));

    // Without the last pass only a mate can be told.
    word.Settings().RunPassWithoutHeuristics = false;
    word.Settings().LetRelaxHeuristics = random.Chance(50);
    TSearchContext other;
    const TSolveResult open = Solve(board, request, other);
    ASSERT_NE(open.verdict, ESolveVerdict::kProvedNoMate) << name;
    ASSERT_TRUE(HoldsAll(plain.keys, open.keys)) << name;
    tally.matesUnderAWord += open.keys.empty() ? 0 : 1;
}

TPosition DrawPosition(CRandom& random, int fullMoves) {
    const int men = random.Between(4, 8);
    return reference::RandomPosition(random, reference::RandomMateRecipe(random, men, fullMoves));
}

// Modes, relaxations and rounds at random, alone and beside other rules.
TEST(HeuristicsLaws, ForcedMates_KeepThemInAllModes) {
    CRandom random(52'000'000);
    TTally tally;
    const int cases = bridge::CasesOf(1500);
    for (int i = 0; i < cases; ++i) {
        const u32 others = i % 2 == 0 ? 0 : static_cast<u32>(random.Next()) & ~kUnusedBits;
        const int fullMoves = random.Between(2, i % 10 == 0 ? 4 : 3);
        const TPosition position = DrawPosition(random, fullMoves);
        ASSERT_NO_FATAL_FAILURE(
            CheckLaws(position, 2 * fullMoves - 1, SH_FINDFORCEDMATE | others, random, tally));
    }
    if (cases >= 250) {
        EXPECT_GT(tally.mates, cases / 8);
        EXPECT_GT(tally.matesUnderAWord, cases / 20);
        EXPECT_GT(tally.doubtfulPasses, cases / 8);
        EXPECT_GT(tally.reproved, 10);
    }
}

class EveryBit : public ::testing::TestWithParam<int> {};

TEST_P(EveryBit, KeepsTheLaws) {
    const u32 heur = u32{1} << GetParam();
    CRandom random(51'000'000 + static_cast<std::uint64_t>(GetParam()));
    TTally tally;
    const int cases = bridge::CasesOf(250);
    for (int i = 0; i < cases; ++i) {
        const int fullMoves = random.Between(2, i % 10 == 0 ? 4 : 3);
        const TPosition position = DrawPosition(random, fullMoves);
        ASSERT_NO_FATAL_FAILURE(CheckLaws(position, 2 * fullMoves - 1, heur, random, tally));
    }
    if (cases >= 250) {
        EXPECT_GT(tally.mates, cases / 8);
        EXPECT_GT(tally.matesUnderAWord, 0) << HeuristicName(heur) << " hides every mate";
        EXPECT_GT(tally.doubtfulPasses, cases / 8);
        EXPECT_GT(tally.reproved, 10);
    }
}

INSTANTIATE_TEST_SUITE_P(HeuristicsLaws,
                         EveryBit,
                         ::testing::ValuesIn(UsedBits()),
                         [](const auto& row) {
                             std::string name = HeuristicName(u32{1} << row.param);
                             std::replace(name.begin(), name.end(), '/', '_');
                             return name;
                         });

TEST(HeuristicsLaws, PairsOfBits_KeepTheLaws) {
    CRandom random(52'000'000);
    TTally tally;
    const std::vector<int> bits = UsedBits();
    for (int i = 0; i < bridge::CasesOf(2500); ++i) {
        u32 heur = 0;
        for (int k = 0; k < 2; ++k)
            heur |= u32{1}
                    << bits[static_cast<std::size_t>(random.Below(static_cast<int>(bits.size())))];
        const int fullMoves = random.Between(2, 3);
        const TPosition position = DrawPosition(random, fullMoves);
        ASSERT_NO_FATAL_FAILURE(CheckLaws(position, 2 * fullMoves - 1, heur, random, tally));
    }
}

TEST(HeuristicsLaws, WordsOfAnyBits_KeepTheLaws) {
    CRandom random(53'000'000);
    TTally tally;
    for (int i = 0; i < bridge::CasesOf(1000); ++i) {
        const u32 heur =
            static_cast<u32>(random.Next()) & static_cast<u32>(random.Next()) & ~kUnusedBits;
        const int fullMoves = random.Between(2, 3);
        const TPosition position = DrawPosition(random, fullMoves);
        ASSERT_NO_FATAL_FAILURE(CheckLaws(position, 2 * fullMoves - 1, heur, random, tally));
    }
}

TEST(HeuristicsLaws, MateDefenceTasks_KeepTheLaws) {
    CRandom random(54'000'000);
    TTally tally;
    const std::vector<int> bits = UsedBits();
    for (int i = 0; i < bridge::CasesOf(1000); ++i) {
        reference::TRecipe recipe = reference::RandomMateRecipe(random, random.Between(4, 7), 2);
        recipe.isWhiteToMove = false;
        const u32 heur =
            u32{1} << bits[static_cast<std::size_t>(random.Below(static_cast<int>(bits.size())))];
        const TPosition position = reference::RandomPosition(random, recipe);
        ASSERT_NO_FATAL_FAILURE(CheckLaws(position, 2 * random.Between(1, 2), heur, random, tally));
    }
}

}  // namespace
}  // namespace quillmere
