#include "heuristics/catalogue.h"
#include "heuristics/forced_mate_ladder.h"
#include "heuristics/heur_params.h"
#include "heuristics/planned_passes.h"
#include "tests/support/search_board.h"

#include <cstring>
#include <gtest/gtest.h>

namespace quillmere {
namespace {

using test::CSearchBoard;

constexpr const char* kOpen = "8/8/8/3k4/8/8/8/KR5R w - - 0 1";
constexpr u16 kHalfMoves = 9;

TEST(PlannedPasses, NoHeuristics_AreNoRelaxations) {
    CSearchBoard board(kOpen, kHalfMoves);
    EXPECT_EQ(PlannedPasses(board.Root()).relaxations, 0);
    EXPECT_TRUE(PlannedPath(board.Root()).empty());
}

TEST(PlannedPasses, ThreeBits_AreTwoRelaxations) {
    CSearchBoard board(kOpen, kHalfMoves);
    SetHeur(board.Root(), SH_SWEEPINGWHITEROOK | SH_SAVEQUEENROOK | SH_AREKINGSNEAR);
    const TPlannedPasses planned = PlannedPasses(board.Root());
    EXPECT_EQ(planned.relaxations, 2);
    EXPECT_EQ(planned.optional, 0);
}

TEST(PlannedPasses, UntilEdgeRulesEnd_CountsTheStepThatEndsThem) {
    CSearchBoard board(kOpen, kHalfMoves);
    board.Thread().heuristics.StrictKingMove = true;
    SetHeur(board.Root(),
            SH_SWEEPINGWHITEROOK | SH_KEEPKINGONTHEEDGE | SH_SAVEQUEENROOK | SH_AREKINGSNEAR);
    // Rook, strictness, edge, queen or rook.
    EXPECT_EQ(PlannedPasses(board.Root()).relaxations, 4);
    EXPECT_EQ(PlannedPasses(board.Root(), true).relaxations, 3);
}

TEST(PlannedPasses, RelaxationOff_IsNone) {
    CSearchBoard board(kOpen, kHalfMoves);
    board.Thread().heuristics.LetRelaxHeuristics = false;
    SetHeur(board.Root(), SH_SAVEQUEENROOK | SH_AREKINGSNEAR);
    EXPECT_EQ(PlannedPasses(board.Root()).relaxations, 0);
    EXPECT_EQ(PlannedPath(board.Root()).size(), 1U);
}

TEST(PlannedPasses, Preliminary_IsAPassOfItsOwn) {
    CSearchBoard board(kOpen, kHalfMoves);
    SetHeur(board.Root(), SH_FINDFORCEDMATE | SH_KEEPKINGONTHEEDGE);
    EXPECT_EQ(PlannedPasses(board.Root()).relaxations, 1);
    board.Thread().heuristics.FfmPreliminary = true;
    EXPECT_EQ(PlannedPasses(board.Root()).relaxations, 2);
}

TEST(PlannedPasses, Walk_LeavesEveryByteAsItWas) {
    CSearchBoard board("r7/7p/8/3k4/8/8/8/1K5R w - - 0 1", kHalfMoves);
    TChessboard& root = board.Root();
    THeuristicSettings& settings = board.Thread().heuristics;
    settings.BlockedFigureCount = 1;
    settings.BlockedFigureSquares[0] = 55;
    root.m_trackedFigures[0] = 55;
    settings.StrictKingMove = settings.ExtEdgeStrict = settings.SurroundedStrict = true;
    settings.RelaxationCount = 7;
    settings.FfmPreliminary = true;
    board.Context().relaxationTimes.Start(100);
    board.Context().relaxationTimes.Elapsed(7, 150);
    ASSERT_EQ(board.Play("h1h2"), kMoveMade);
    root.m_captureState |= kOneColourParity1;
    SetHeur(root, ~u32{0});
    SetHeur(board.Node(), ~u32{0});

    const TChessboard keptRoot = root;
    const TChessboard keptNode = board.Node();
    const THeuristicSettings keptSettings = settings;
    const CRelaxationTimes::TSlots keptTimes = board.Context().relaxationTimes.Save();
    for (TChessboard* node : {&root, &board.Node()}) {
        EXPECT_GT(PlannedPasses(*node).relaxations, 10);
        EXPECT_GT(PlannedPath(*node).size(), 10U);
        EXPECT_EQ(std::memcmp(&root, &keptRoot, sizeof keptRoot), 0);
        EXPECT_EQ(std::memcmp(&board.Node(), &keptNode, sizeof keptNode), 0);
        EXPECT_TRUE(settings == keptSettings);
        EXPECT_FALSE(board.Context().isExact);
        EXPECT_EQ(board.Context().relaxationTimes.Save(), keptTimes);
    }
}

TEST(PlannedPath, Passes_AreToldByTheirWords) {
    CSearchBoard board(kOpen, kHalfMoves);
    SetHeur(board.Root(), SH_SAVEQUEENROOK | SH_AREKINGSNEAR);
    const std::string first = HeuristicsText(board.Root());
    TChessboard second = board.Root();
    SetHeur(second, SH_AREKINGSNEAR);
    const auto path = PlannedPath(board.Root());
    ASSERT_EQ(path.size(), 2U);
    EXPECT_EQ(path[0].heuristics, first);
    EXPECT_EQ(path[1].heuristics, HeuristicsText(second));
    EXPECT_FALSE(path[0].isOptional || path[1].isOptional);
}

}  // namespace
}  // namespace quillmere
