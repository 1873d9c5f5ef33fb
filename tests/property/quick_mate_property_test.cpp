// A quick search never says mate where the brute force knows none so short; with full lists it says
// what the brute force says. With it a solve finds what it finds without.
#include "core/thread_context.h"
#include "heuristics/heur_params.h"
#include "registers/aggregated_register.h"
#include "search/quick_mate.h"
#include "search/solve.h"
#include "tests/support/bridge.h"
#include "tests/support/random.h"
#include "tests/support/random_positions.h"
#include "tests/support/registers.h"
#include "tests/support/remembering_judge.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace quillmere {
namespace {

using reference::TPosition;
using test::CRandom;

constexpr std::uint64_t kJudgeMoves = 3'000'000;

// Does white, to move, mate within so many half-moves? Nothing if that takes too long.
std::optional<bool> IsMateWithin(const TPosition& position, int halfMoves) {
    try {
        bridge::CRememberingJudge judge(kJudgeMoves);
        return judge.WhiteMates(position, halfMoves);
    } catch (const reference::COutOfMoves&) {
        return std::nullopt;
    }
}

// A white node that has more half-moves than the quick search.
class CQuickNode {
public:
    CQuickNode(const TPosition& position, int depth, u32 heur) : m_thread(kHalfMoves) {
        bridge::FillBoard(m_root, position);
        m_root.m_searchContext = &m_context;
        m_root.m_threadContext = &m_thread;
        m_thread.rootNode = &m_root;
        m_thread.computeHeurParams = ComputeHeurParams;
        m_context.tempRegister = &m_store;
        m_context.registerRoot = 3;
        SetupAnalysisRoot(m_root, static_cast<u16>(depth + 2), true);
        m_root.m_pass = heur != 0 ? kPassHeuristics : kPassComplete;
        SetHeur(m_root, heur);
    }
    TChessboard& Node() { return m_root; }
    u32 IncoherentElements() const { return m_store.IncoherentElements(); }

private:
    static constexpr u16 kHalfMoves = 9;
    TAggregatedTemporaryChessboardRegister m_store{test::QuietSettings(u64{4} << 20)};
    TSearchContext m_context;
    TThreadContext m_thread;
    TChessboard m_root{};
};

struct TDepthRow {
    int depth;
    int cases;
    int least;  // mates among them
};

class QuickMateDepth : public ::testing::TestWithParam<TDepthRow> {};

TEST_P(QuickMateDepth, SaysWhatTheBruteForceSays) {
    const auto [depth, cases, least] = GetParam();
    CRandom random(71'000'000 + static_cast<std::uint64_t>(depth));
    int mates = 0;
    int others = 0;
    for (int i = 0; i < bridge::CasesOf(cases); ++i) {
        const TPosition position = reference::RandomPosition(
            random, reference::RandomMateRecipe(random, random.Between(4, 8), (depth + 1) / 2 + 1));
        const std::optional<bool> isMate = IsMateWithin(position, depth);
        if (!isMate)
            continue;
        (*isMate ? mates : others) += 1;
        const std::string name = reference::ToFen(position);
        CQuickNode plain(position, depth, 0);
        ASSERT_EQ(QuickMate(plain.Node(), depth), *isMate ? kMate : kNoMate) << name;
        ASSERT_EQ(QuickMate(plain.Node(), depth + 1), *isMate ? kMate : kNoMate) << name;
        ASSERT_EQ(plain.IncoherentElements(), 0u) << name;
        // Whatever is left out, a mate is one.
        for (const u32 heur : {u32{SH_FINDFORCEDMATE},
                               u32{SH_KEEPKINGONTHEEDGE},
                               u32{SH_FINDFORCEDMATE | SH_ASSERTBLACKKINGSURROUNDED}}) {
            CQuickNode under(position, depth, heur);
            const TVerdict verdict = QuickMate(under.Node(), depth);
            ASSERT_TRUE(verdict != kMate || *isMate) << name << ", word " << heur;
            ASSERT_TRUE(verdict != kNoMate || !*isMate) << name << ", word " << heur;
            ASSERT_EQ(under.Node().Heur, heur) << name;
            ASSERT_EQ(under.IncoherentElements(), 0u) << name;
        }
    }
    if (bridge::CasesOf(cases) == cases) {
        EXPECT_GT(mates, least);
        EXPECT_GT(others, least);
    }
}

INSTANTIATE_TEST_SUITE_P(QuickMate,
                         QuickMateDepth,
                         ::testing::Values(TDepthRow{1, 3000, 100},
                                           TDepthRow{3, 2500, 100},
                                           TDepthRow{5, 500, 20}),
                         [](const auto& row) { return "Depth" + std::to_string(row.param.depth); });

TEST(QuickMate, ASolveWithIt_FindsWhatItFindsWithout) {
    CRandom random(72'000'000);
    constexpr u32 kWords[] = {
        0, SH_KEEPKINGONTHEEDGE, SH_ASSERTBLACKKINGSURROUNDED, SH_DONTLOSEANYFIGURES};
    for (int i = 0; i < bridge::CasesOf(120); ++i) {
        const TPosition position = reference::RandomPosition(
            random, reference::RandomMateRecipe(random, random.Between(4, 7), 4));
        TChessboard board;
        bridge::FillBoard(board, position);
        TThreadContext thread(2);
        TSearchContext given;
        TChessboard word = board;
        word.m_threadContext = &thread;
        word.m_searchContext = &given;
        word.Heur = kWords[i % 4];
        TSolveRequest request;
        request.halfMoves = 7;
        request.wantAllKeys = true;
        request.wantMainLine = false;
        request.heuristics = word.Heur != 0 ? &word : nullptr;
        std::string keys;
        for (const i16 depth : {i16{-1}, i16{1}, i16{3}, i16{5}}) {
            TAggregatedTemporaryChessboardRegister store(test::QuietSettings(u64{4} << 20));
            TSearchContext context;
            context.tempRegister = &store;
            context.registerRoot = 5;
            request.quickMateDepth = depth;
            const TSolveResult result = Solve(board, request, context);
            const std::string found = reference::ToText(bridge::ToSortedPlain(result.keys));
            ASSERT_TRUE(result.isComplete);
            if (depth < 0)
                keys = found;
            ASSERT_EQ(found, keys) << reference::ToFen(position) << ", depth " << depth;
            ASSERT_EQ(store.IncoherentElements(), 0u);
            ASSERT_EQ(context.m_shLookForQuickerMateDepth, kQuickMateDepthUnset);
        }
    }
}

}  // namespace
}  // namespace quillmere
