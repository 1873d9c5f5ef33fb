#include "heuristics/heur_params.h"
#include "tests/support/search_board.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace quillmere {
namespace {

using test::CSearchBoard;

// Black figures: a8, b8, h8 the king; pawns a7, b7.
constexpr const char* kBoard = "rn5k/pp6/8/8/8/8/8/RR5K";

class HeurParamsTest : public testing::Test {
protected:
    u32 Digest(u32 heur) {
        SetHeur(m_board.Root(), heur);
        return m_board.Root().HeurParams;
    }
    void Block(std::initializer_list<int> squares) {
        THeuristicSettings& settings = Settings();
        settings.BlockedFigureCount = 0;
        for (const int square : squares) {
            const int i = settings.BlockedFigureCount++;
            settings.BlockedFigureSquares[i] = static_cast<u8>(square);
            settings.BlockedFigureInitialSquares[i] = static_cast<u8>(square);
            m_board.Root().m_trackedFigures[i] = static_cast<i8>(square);
        }
    }
    THeuristicSettings& Settings() { return m_board.Thread().heuristics; }

    CSearchBoard m_board{kBoard, 3};
};

TEST_F(HeurParamsTest, NoHeuristics_HaveTheDigestZero) {
    Settings().ApplyBlockDynamically = true;
    EXPECT_EQ(Digest(0), 0u);
    m_board.Root().HeurParams = 5;
    EXPECT_EQ(Digest(0), 0u);
}

TEST_F(HeurParamsTest, BoardWithoutThread_TakesTheDefaults) {
    TChessboard node = m_board.Root();
    node.m_threadContext = nullptr;
    SetHeur(node, SH_ZUGZWANG | SH_KEEPKINGONTHEEDGE);
    EXPECT_EQ(node.HeurParams, Digest(SH_ZUGZWANG | SH_KEEPKINGONTHEEDGE));
}

TEST_F(HeurParamsTest, SmallSettings_StandBehindEachOther) {
    EXPECT_EQ(Digest(SH_KEYLINE), 1u);
    EXPECT_EQ(Digest(SH_ASSERTBLACKKINGSURROUNDED), 2u);
    Settings().SurroundedStrict = true;
    EXPECT_EQ(Digest(SH_ASSERTBLACKKINGSURROUNDED), 3u);
    EXPECT_EQ(Digest(SH_SKIPWORSTWHITEMOVES), 3u);
    Settings().LoseFiguresMode = 2;
    EXPECT_EQ(Digest(SH_DONTLOSEANYFIGURES | SH_ASSERTBLACKKINGSURROUNDED), 0b1101u);
    Settings().KeyWhiteFigureSquare = 5;
    EXPECT_EQ(Digest(SH_KEYWHITEFIGURE), 64u + 5);
    Settings().QueenMateStage = 3;
    EXPECT_EQ(Digest(SH_SINGLEQUEENMATE), 7u);
}

TEST_F(HeurParamsTest, NearCornerDistances_AreAllDifferentInThreeBits) {
    u32 next = 8;
    for (const int distance : {-2, -1, 1, 2, 3, 4, 5}) {
        Settings().NearCornerDistance = static_cast<i8>(distance);
        EXPECT_EQ(Digest(SH_KEEPKINGNEARCORNER), next++) << distance;
    }
}

TEST_F(HeurParamsTest, ForcedMate_CountsModeOthersAndPreliminary) {
    Settings().FfmMode = 2;
    Settings().FfmWithOther = -1;
    EXPECT_EQ(Digest(SH_FINDFORCEDMATE), ((2u + 1 * 8) * 8 - 1) * 2 - 28);
    Settings().FfmPreliminary = true;
    EXPECT_EQ(Digest(SH_FINDFORCEDMATE), ((2u + 1 * 8) * 8 - 1) * 2 - 28 + 1);
    Settings().FfmCustom = true;
    EXPECT_EQ(Digest(SH_FINDFORCEDMATE), ((2u + 1 * 8) * 8) * 2 - 18 + 1);
}

TEST_F(HeurParamsTest, ReleasedEdge_TakesTheStrictnessOff) {
    Settings().StrictKingMove = true;
    const u32 strict = Digest(SH_KEEPKINGONTHEEDGE);
    m_board.Root().m_searchFlags |= kSearchEdgeReleased;
    const u32 released = Digest(SH_KEEPKINGONTHEEDGE);
    EXPECT_NE(released, strict);
    Settings().StrictKingMove = false;
    EXPECT_EQ(Digest(SH_KEEPKINGONTHEEDGE), released);
}

TEST_F(HeurParamsTest, BlockedFigures_AreToldApartFromTheBoardOfTheRoot) {
    for (const u32 heur : {u32{SH_ZUGZWANG}, u32{SH_DONTLETFIGUREUNBLOCK}}) {
        for (const bool doPawnsCount : {false, true}) {
            Settings().BlockCountsKingPawns = doPawnsCount;
            std::vector<u32> digests;
            for (const auto& list : {std::initializer_list<int>{},
                                     {48},
                                     {49},
                                     {56},
                                     {57},
                                     {48, 56},
                                     {48, 57},
                                     {56, 57}}) {
                Block(list);
                digests.push_back(Digest(heur));
            }
            std::ranges::sort(digests);
            EXPECT_EQ(std::ranges::adjacent_find(digests), digests.end());
            Block({56, 48});
            const u32 turned = Digest(heur);
            Block({48, 56});
            EXPECT_EQ(Digest(heur), turned) << "the order of the list does not matter";
        }
    }
}

TEST_F(HeurParamsTest, CapturedOrMovedBlockedFigure_ChangesTheDigest) {
    Block({48, 56});
    const u32 all = Digest(SH_ZUGZWANG);
    m_board.Root().m_trackedFigures[0] = 40;
    EXPECT_NE(Digest(SH_ZUGZWANG), all);
    Settings().BlockHashByFigure = true;
    EXPECT_EQ(Digest(SH_ZUGZWANG), all) << "by figure alone, squares do not count";
    m_board.Root().m_trackedFigures[0] = -1;
    EXPECT_NE(Digest(SH_ZUGZWANG), all);
}

}  // namespace
}  // namespace quillmere
