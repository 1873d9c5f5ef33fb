// The ladder ends from wherever it is entered, never walks on the spot, and adds nothing that no
// step adds; the dry run leaves no trace. Words, settings and positions are drawn at random, sound
// ones and senseless ones.
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/heur_params.h"
#include "heuristics/planned_passes.h"
#include "heuristics/relaxation.h"
#include "tests/support/bridge.h"
#include "tests/support/random_positions.h"

#include <cstring>
#include <gtest/gtest.h>

namespace quillmere {
namespace {

constexpr u16 kHalfMoves = 9;
constexpr int kMaxCalls = 60;
constexpr int kCases = 4000;

// Bits that some step puts in.
constexpr u32 kAdded = SH_KEEPKINGWITHINEXTEDGE | SH_ASSERTBLACKKINGSURROUNDED |
                       SH_DONTLETFIGUREUNBLOCK | SH_KEYWHITEFIGURE;

class CRandomLadder {
public:
    explicit CRandomLadder(u64 seed) : m_random(seed) {
        reference::TPosition position = reference::RandomMelee(m_random, m_random.Between(3, 20));
        while (!position.isWhiteToMove)
            position = reference::RandomMelee(m_random, m_random.Between(3, 20));
        bridge::FillBoard(m_root, position);
        m_root.m_searchContext = &m_context;
        m_root.m_threadContext = &m_thread;
        m_thread.rootNode = &m_root;
        SetupAnalysisRoot(m_root, kHalfMoves, true);
        DrawFlags();
        DrawSettings(m_thread.heuristics);
        DrawBlockedFigures(m_thread.heuristics);
        SetHeur(m_root, static_cast<u32>(m_random.Next() & m_random.Next()));
        if (m_random.Chance(50))
            m_root.Heur |= SH_KEEPKINGONTHEEDGE;
        ComputeHeurParams(m_root);
    }

    TChessboard& Root() { return m_root; }
    THeuristicSettings& Settings() { return m_thread.heuristics; }
    TSearchContext& Context() { return m_context; }

private:
    bool Flip() { return m_random.Chance(50); }
    u8 AnySquare() {
        return static_cast<u8>(Flip() ? m_random.Below(kSquareCount) : int{kNoSquare});
    }

    void DrawFlags() {
        constexpr u16 kFlags = kSearchEdgeReleased | kSearchEdgeDeferred | kSearchPromotionAhead |
                               kSearchPromotionPassed;
        m_root.m_searchFlags |= static_cast<u16>(m_random.Next() & kFlags);
        m_root.m_captureState |= static_cast<u8>(m_random.Below(4));
    }

    void DrawSettings(THeuristicSettings& s) {
        for (bool* flag : {&s.BlockedFiguresEffective,
                           &s.ApplyBlockDynamically,
                           &s.CanApplyBlockDynamically2,
                           &s.RetriedBlockDynamically,
                           &s.AllowRelaxPromotedQueen,
                           &s.AllowRelaxQueenCheckTwice,
                           &s.IsReapplyBlockPending,
                           &s.IsSwapBlockAndKeyFigurePending,
                           &s.StrictKingMove,
                           &s.KingMoveExceptions,
                           &s.ExtEdgeStrict,
                           &s.SurroundedStrict,
                           &s.EdgeSquaresInclCorner,
                           &s.SeaSnakeByUser,
                           &s.FfmPreliminary})
            *flag = Flip();
        s.AllowSwitchToSurrounded = static_cast<u8>(m_random.Below(3));
        s.FfmSavedHeur = static_cast<u32>(m_random.Next());
        s.FfmCustom = Flip();
        s.FfmStartMode = s.FfmMode = static_cast<u8>(m_random.Between(2, 9));
        s.FfmRelaxations = static_cast<u8>(m_random.Below(10 - s.FfmMode));
        s.FfmCustomRelaxations = static_cast<u8>(m_random.Below(10 - s.FfmMode));
        s.RelaxationCount = static_cast<u8>(m_random.Next());
        s.KeyWhiteFigureSquare = AnySquare();
        s.KeyWhiteFigurePinned = AnySquare();
        for (u8& count : s.InitialBlackCounts)
            count = static_cast<u8>(m_random.Below(3));
    }

    void DrawBlockedFigures(THeuristicSettings& s) {
        s.BlockedFigureCount = static_cast<u8>(m_random.Below(kMaxBlockedFigures + 1));
        for (int entry = 0; entry < s.BlockedFigureCount; ++entry) {
            const int square = m_random.Below(kSquareCount);
            s.BlockedFigureSquares[entry] = static_cast<u8>(square);
            s.BlockedFigureInitialSquares[entry] = static_cast<u8>(square);
            m_root.m_trackedFigures[entry] = static_cast<i8>(square);
        }
        s.PendingBlockRemovalCount = static_cast<u8>(m_random.Below(kMaxBlockedFigures + 1));
        for (u8& square : s.PendingBlockRemovals)
            square = s.BlockedFigureCount > 0
                         ? s.BlockedFigureSquares[m_random.Below(s.BlockedFigureCount)]
                         : AnySquare();
    }

    test::CRandom m_random;
    TSearchContext m_context;
    TThreadContext m_thread{kHalfMoves};
    TChessboard m_root;
};

// What a step may change besides the count.
THeuristicSettings WithoutCount(THeuristicSettings settings) {
    settings.RelaxationCount = 0;
    return settings;
}

TEST(Ladder, FromAnyWord_EndsAtNothing) {
    for (u64 seed = 1; seed <= kCases; ++seed) {
        SCOPED_TRACE(seed);
        CRandomLadder ladder(seed);
        TChessboard& root = ladder.Root();
        u32 allowed = root.Heur | kAdded;
        int calls = 0;
        for (bool isOver = root.Heur == 0; !isOver; ++calls) {
            ASSERT_LT(calls, kMaxCalls);
            const u32 word = root.Heur;
            const THeuristicSettings before = ladder.Settings();
            const int answer = TryRelaxSpecialHeuristics(root);
            // The pass that goes before all others kept the word that comes back.
            if (before.FfmPreliminary && !ladder.Settings().FfmPreliminary)
                allowed |= before.FfmSavedHeur;
            ASSERT_EQ(root.Heur & ~allowed, 0U);
            ASSERT_EQ(static_cast<u8>(before.RelaxationCount + 1),
                      ladder.Settings().RelaxationCount);
            ASSERT_EQ(answer == 0, root.Heur == 0);
            ASSERT_TRUE(root.Heur != word ||
                        !(WithoutCount(before) == WithoutCount(ladder.Settings())));
            const u32 params = root.HeurParams;
            ComputeHeurParams(root);
            ASSERT_EQ(root.HeurParams, params);
            isOver = answer == 0;
        }
    }
}

TEST(Ladder, BlockedFigures_StayInStepWithTheNode) {
    for (u64 seed = 1; seed <= kCases; ++seed) {
        SCOPED_TRACE(seed);
        CRandomLadder ladder(seed);
        while (ladder.Root().Heur != 0) {
            TryRelaxSpecialHeuristics(ladder.Root());
            for (int entry = 0; entry < kMaxBlockedFigures; ++entry) {
                const bool isOn = entry < ladder.Settings().BlockedFigureCount;
                const int square = ladder.Settings().BlockedFigureSquares[entry];
                ASSERT_EQ(ladder.Root().m_trackedFigures[entry], isOn ? square : -1);
                ASSERT_EQ(square == kNoSquare, !isOn);
            }
        }
    }
}

TEST(Ladder, DryRun_LeavesNoTrace) {
    for (u64 seed = 1; seed <= kCases; ++seed) {
        SCOPED_TRACE(seed);
        CRandomLadder ladder(seed);
        const TChessboard node = ladder.Root();
        const THeuristicSettings settings = ladder.Settings();
        const CRelaxationTimes::TSlots times = ladder.Context().relaxationTimes.Save();
        const TPlannedPasses planned = PlannedPasses(ladder.Root(), seed % 2 == 0);
        ASSERT_EQ(std::memcmp(&node, &ladder.Root(), sizeof node), 0);
        ASSERT_TRUE(settings == ladder.Settings());
        ASSERT_FALSE(ladder.Context().isExact);
        ASSERT_EQ(times, ladder.Context().relaxationTimes.Save());
        ASSERT_LE(planned.optional, planned.relaxations);
        ASSERT_LT(planned.relaxations, kMaxCalls);
    }
}

}  // namespace
}  // namespace quillmere
