// A trial leaves everything as it was, sees no mate that is none, and says the same twice.
#include "core/thread_context.h"
#include "heuristics/choice.h"
#include "heuristics/heur_params.h"
#include "heuristics/trial_search.h"
#include "registers/aggregated_register.h"
#include "search/solve.h"
#include "tests/support/bridge.h"
#include "tests/support/judged_solve.h"
#include "tests/support/random.h"
#include "tests/support/random_positions.h"
#include "tests/support/registers.h"
#include "tests/support/remembering_judge.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using reference::TPosition;
using test::CRandom;

constexpr std::uint64_t kJudgeMoves = 3'000'000;
constexpr u32 kUnusedBits = 0x100 | 0x10000000 | 0x20000000;

class CTrialRoot {
public:
    CTrialRoot(const TPosition& position, int halfMoves, const THeuristicSettings& settings)
        : m_thread(static_cast<u16>(halfMoves)) {
        bridge::FillBoard(m_root, position);
        m_root.m_searchContext = &m_context;
        m_root.m_threadContext = &m_thread;
        m_root.m_pass = kPassComplete;
        m_thread.rootNode = &m_root;
        m_thread.computeHeurParams = ComputeHeurParams;
        m_thread.moveMemory = &m_memory;
        m_thread.heuristics = settings;
        m_context.tempRegister = &m_store;
        m_context.registerRoot = 3;
        SetupAnalysisRoot(m_root, static_cast<u16>(halfMoves), true);
    }
    TChessboard& Root() { return m_root; }
    TThreadContext& Thread() { return m_thread; }
    TSearchContext& Context() { return m_context; }
    TAggregatedTemporaryChessboardRegister& Store() { return m_store; }

    // The trial, with the check that everything is as before.
    TTrialResult Try(const TTrialRequest& request) {
        const TChessboard root = m_root;
        const THeuristicSettings settings = m_thread.heuristics;
        const TMoveMemory memory = m_memory;
        const bool isExact = m_context.isExact;
        const TTrialResult result = RunTrial(m_root, request);
        EXPECT_EQ(std::memcmp(&root, &m_root, sizeof root), 0) << "the node";
        EXPECT_TRUE(settings == m_thread.heuristics) << "the settings";
        EXPECT_EQ(std::memcmp(&memory, &m_memory, sizeof memory), 0) << "what moves it remembers";
        EXPECT_EQ(m_thread.rootNode, &m_root);
        EXPECT_EQ(m_thread.moveMemory, &m_memory);
        EXPECT_EQ(m_thread.workLimit, kNoWorkLimit);
        EXPECT_FALSE(m_thread.isSafe);
        EXPECT_EQ(m_thread.replay.flag, 0);
        EXPECT_EQ(m_thread.singleQueenSquare, kNoSquare);
        EXPECT_EQ(m_context.isExact, isExact);
        EXPECT_EQ(m_context.nodeLimit, 0u);
        if (result.verdict != ETrialVerdict::kStopped) {
            EXPECT_EQ(m_thread.stopLevel, kThreadRuns);
        }
        EXPECT_EQ(m_context.stopKind, kStopNone);
        EXPECT_EQ(m_store.IncoherentElements(), 0u);
        return result;
    }

private:
    TAggregatedTemporaryChessboardRegister m_store{test::QuietSettings(u64{4} << 20)};
    TSearchContext m_context;
    TMoveMemory m_memory;
    TThreadContext m_thread;
    TChessboard m_root{};
};

THeuristicSettings DrawSettings(CRandom& random) {
    THeuristicSettings settings;
    settings.StrictKingMove = random.Chance(50);
    settings.KingMoveExceptions = settings.StrictKingMove && random.Chance(50);
    settings.ExtEdgeStrict = random.Chance(50);
    settings.SurroundedStrict = random.Chance(50);
    settings.NearCornerDistance = static_cast<i8>(random.Between(1, 5));
    settings.KeySquare = static_cast<u8>(random.Below(kSquareCount));
    settings.RelaxAfterCaptures = static_cast<u8>(random.Below(3));
    return settings;
}

TEST(TrialSearch, LeavesEverythingAsItWas_SeesOnlyMates_AndCountsTheSameTwice) {
    CRandom random(73'000'000);
    int verdicts[5] = {};
    const int cases = bridge::CasesOf(1500);
    for (int i = 0; i < cases; ++i) {
        const int halfMoves = 2 * random.Between(2, 3) - 1;
        const TPosition position = reference::RandomPosition(
            random, reference::RandomMateRecipe(random, random.Between(4, 7), (halfMoves + 1) / 2));
        const THeuristicSettings settings = DrawSettings(random);
        TTrialRequest request;
        if (!random.Chance(15))
            request.heur = static_cast<u32>(random.Next()) & static_cast<u32>(random.Next()) &
                           static_cast<u32>(random.Next()) & ~kUnusedBits;
        request.halfMoves = halfMoves;
        if (random.Chance(40))
            request.workLimit = static_cast<u64>(random.Between(1, 300));
        const std::string name =
            reference::ToFen(position) + ", word " + std::to_string(request.heur);

        CTrialRoot first(position, 5, settings);
        CTrialRoot second(position, 5, settings);
        const TTrialResult result = first.Try(request);
        const TTrialResult again = second.Try(request);
        ASSERT_FALSE(::testing::Test::HasFailure()) << name;
        ASSERT_EQ(result.verdict, again.verdict) << name;
        ASSERT_EQ(result.madeMoves, again.madeMoves) << name;
        ASSERT_EQ(result.nodes, again.nodes) << name;
        ++verdicts[static_cast<int>(result.verdict)];
        ASSERT_TRUE(request.workLimit != kNoTrialLimit || result.verdict != ETrialVerdict::kLimit);

        // The judge, and then a whole solve that starts with what the trial left in the register.
        const auto judged = bridge::JudgeFar(position, halfMoves, kJudgeMoves);
        if (!judged)
            continue;
        const auto isKey = [&](TMove move) {
            return std::ranges::find(judged->keys, bridge::ToPlain(move)) != judged->keys.end();
        };
        if (result.verdict == ETrialVerdict::kMate) {
            ASSERT_TRUE(isKey(result.mate)) << name;
        }
        if (result.verdict == ETrialVerdict::kNoMate) {
            ASSERT_FALSE(judged->isMate) << name;
        }
        TSolveRequest solve;
        solve.halfMoves = static_cast<u16>(halfMoves);
        solve.wantAllKeys = true;
        solve.wantMainLine = false;
        solve.clearRegister = false;
        TChessboard board;
        bridge::FillBoard(board, position);
        const TSolveResult solved = Solve(board, solve, first.Context());
        ASSERT_EQ(bridge::ToSortedPlain(solved.keys), judged->keys) << name;
    }
    if (cases >= 1500) {
        for (const ETrialVerdict verdict : {ETrialVerdict::kMate,
                                            ETrialVerdict::kDoubtful,
                                            ETrialVerdict::kNoMate,
                                            ETrialVerdict::kLimit})
            EXPECT_GT(verdicts[static_cast<int>(verdict)], 30) << static_cast<int>(verdict);
    }
}

TEST(TrialSearch, WithoutAWord_SaysWhatTheSolveSays) {
    CRandom random(74'000'000);
    for (int i = 0; i < bridge::CasesOf(500); ++i) {
        const TPosition position = reference::RandomPosition(
            random, reference::RandomMateRecipe(random, random.Between(4, 7), 3));
        CTrialRoot root(position, 5, THeuristicSettings());
        TTrialRequest request;
        request.halfMoves = 5;
        const TTrialResult result = root.Try(request);
        ASSERT_EQ(result.verdict,
                  bridge::SolveAll(position, 5).keys.empty() ? ETrialVerdict::kNoMate
                                                             : ETrialVerdict::kMate)
            << reference::ToFen(position);
    }
}

}  // namespace
}  // namespace quillmere
