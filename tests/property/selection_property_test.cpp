// The automatic choice of heuristics on thousands of random positions: it leaves no forbidden pair, tells
// a reason for each bit, touches nothing but the word and its parameters, and is the same twice.
#include "heuristics/conflicts.h"
#include "heuristics/heur_params.h"
#include "heuristics/selection.h"
#include "tests/support/bridge.h"
#include "tests/support/random_positions.h"
#include "tests/support/selected_root.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using reference::CRandom;
using reference::TPosition;
using test::CSelectedRoot;

constexpr int kPositions = 3000;

// Nothing that is wrong with the word; else what is.
std::string FaultOf(CSelectedRoot& root) {
    const u32 heur = root.Root().Heur;
    const auto has = [heur](u32 bits) { return (heur & bits) == bits; };
    if (has(SH_KEEPKINGONTHEEDGE | SH_ASSERTBLACKKINGSURROUNDED))
        return "edge and surrounded";
    if (has(SH_KEEPKINGWITHINEXTEDGE | SH_ASSERTBLACKKINGSURROUNDED))
        return "extended edge and surrounded";
    if (has(SH_FINDFORCEDMATE | SH_SEASNAKE))
        return "forced mates and sea snake";
    if (heur != 0 &&
        FindHeuristicConflict(heur, root.Settings(), root.Context(), root.Root()).has_value())
        return "a conflict";
    u32 told = 0;
    for (const TChosenHeuristic& heuristic : root.Record().heuristics) {
        if (heuristic.reason == EMessage::kCount || heuristic.text.empty())
            return "no reason";
        told |= heuristic.bit;
    }
    if (told != heur)
        return "told another word";
    if ((heur == 0) != (root.Record().whyNothing != EMessage::kCount))
        return "no reason for no word";
    TChessboard copy = root.Root();
    ComputeHeurParams(copy);
    return copy.HeurParams == root.Root().HeurParams ? "" : "a stale digest";
}

TEST(SelectionProperties, HoldOnRandomPositions) {
    const int wanted = bridge::CasesOf(kPositions);
    int withTrials = 0;
    int withMates = 0;
    for (int i = 0; i < wanted; ++i) {
        CRandom random(static_cast<std::uint64_t>(i) + 1);
        const int men = 3 + random.Below(10);
        const TPosition position =
            reference::RandomPosition(random, reference::RandomMateRecipe(random, men, 4));
        const std::string fen = reference::ToFen(position);
        // Trials are made in the longer tasks only, and cost the most.
        const u16 halfMoves = static_cast<u16>(i % 20 == 0 ? 13 : 5 + 2 * random.Below(4));
        CSelectedRoot root(fen, halfMoves);
        u8 before[kSquareCount];
        std::memcpy(before, root.Root().m_board, sizeof before);
        root.Select();
        ASSERT_EQ(FaultOf(root), "") << fen << " " << halfMoves;
        ASSERT_EQ(std::memcmp(before, root.Root().m_board, sizeof before), 0) << fen;
        withTrials += root.Record().trials.empty() ? 0 : 1;
        for (const TTrialRecord& trial : root.Record().trials)
            withMates += trial.outcome == ETrialOutcome::kMateSeen ? 1 : 0;
        if (i % 50 != 0)
            continue;
        CSelectedRoot again(fen, halfMoves);
        again.Select();
        EXPECT_EQ(again.Root().Heur, root.Root().Heur) << fen;
        EXPECT_EQ(again.Settings(), root.Settings()) << fen;
        EXPECT_EQ(again.Record().madeMoves, root.Record().madeMoves) << fen;
    }
    // So that the draw cannot grow harmless unnoticed.
    EXPECT_GT(withTrials, wanted / 50);
    EXPECT_GT(withMates, wanted / 200);
}

}  // namespace
}  // namespace quillmere
