#include "heuristics/catalogue.h"
#include "heuristics/heur_params.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>
#include <set>

namespace quillmere {
namespace {

using test::CSearchBoard;

constexpr const char* kBoard = "7k/pp6/8/8/8/8/8/RR5K";

TEST(Catalogue, Bits_AreThoseOfTheEnumWithTheirNames) {
    const struct {
        u32 bit;
        const char* name;
    } rows[] = {
        {0x1, "SH_AREKINGSNEAR"},
        {0x2, "SH_SWEEPINGWHITEROOK"},
        {0x4, "SH_KEEPKINGONTHEEDGE"},
        {0x8, "SH_ONECOLORPLAYPOSSIBLE"},
        {0x10, "SH_ZUGZWANGTRIANGLES"},
        {0x20, "SH_DONTLEAVEMAINDIAGONAL"},
        {0x40, "SH_KEEPKINGWITHINEXTEDGE"},
        {0x80, "SH_DONTLETFIGUREUNBLOCK"},
        {0x200, "SH_FINDFORCEDMATE"},
        {0x400, "SH_DONTRECEDEBLACKKING"},
        {0x800, "SH_DONTLETPROMOTEDQUEENMOVE"},
        {0x1000, "SH_KEYLINE"},
        {0x2000, "SH_KEYDIAGONAL"},
        {0x4000, "SH_SAVEQUEEN/ROOK"},
        {0x8000, "SH_DONTLOSEANYFIGURES"},
        {0x10000, "SH_DONTLETBLACKQUEENCHECKTWICE"},
        {0x20000, "SH_USEBLOCKBLACKPAWNSLEVEL"},
        {0x40000, "SH_KEYSQUARE"},
        {0x80000, "SH_ASSERTBLACKKINGSURROUNDED"},
        {0x100000, "SH_SINGLEQUEENMATE"},
        {0x200000, "SH_3MOVESTOMATE"},
        {0x400000, "SH_KEYWHITEFIGURE"},
        {0x800000, "SH_CAPTUREKNIGHT"},
        {0x1000000, "SH_SKIPWORSTWHITEMOVES"},
        {0x2000000, "SH_DONTLETPROMOTEDFIGUREMOVE"},
        {0x4000000, "SH_KEEPKINGNEARCORNER"},
        {0x8000000, "SH_SEASNAKE"},
        {0x40000000, "SH_REDUCTIONTOGLOBREGPOS"},
        {0x80000000, "SH_ZUGZWANG"},
    };
    ASSERT_EQ(std::size(rows), kHeuristicRows.size());
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(kHeuristicRows[i].bit, rows[i].bit);
        EXPECT_EQ(HeuristicName(rows[i].bit), rows[i].name);
    }
}

TEST(Catalogue, AnythingElse_PrintsDots) {
    for (const u32 word : {0u, 0x100u, 0x10000000u, 0x20000000u, 0x3u, 0xffffffffu})
        EXPECT_EQ(HeuristicName(word), "...") << word;
    CSearchBoard board(kBoard, 3);
    EXPECT_EQ(HeuristicParameterText(0x100, board.Root()), "");
}

TEST(Catalogue, EveryEntry_HasAHelpOfItsOwn) {
    std::set<EMessage> seen;
    for (const THeuristicRow& row : kHeuristicRows)
        EXPECT_TRUE(seen.insert(row.help).second) << row.name;
}

TEST(HeuristicNames, Word_IsListedFromItsLowestBit) {
    EXPECT_EQ(HeuristicNames(0), "");
    EXPECT_EQ(HeuristicNames(SH_KEYLINE), "SH_KEYLINE");
    EXPECT_EQ(HeuristicNames(SH_ZUGZWANG | 0x100 | SH_SAVEQUEENROOK | SH_AREKINGSNEAR),
              "SH_AREKINGSNEAR, ..., SH_SAVEQUEEN/ROOK, SH_ZUGZWANG");
}

class HeuristicsTextTest : public testing::Test {
protected:
    THeuristicSettings& Settings() { return m_board.Thread().heuristics; }
    TSearchContext& Context() { return m_board.Context(); }
    TChessboard& Node() { return m_board.Root(); }
    std::string Parameters(u32 bit) { return HeuristicParameterText(bit, Node()); }
    std::string Text(u32 heur) {
        SetHeur(Node(), heur);
        return HeuristicsText(Node());
    }

    CSearchBoard m_board{kBoard, 3};
};

TEST_F(HeuristicsTextTest, DefaultParameters_PrintNothingButTheForcedMode) {
    for (const THeuristicRow& row : kHeuristicRows)
        EXPECT_EQ(Parameters(row.bit), row.bit == SH_FINDFORCEDMATE ? "CheckOnly" : "") << row.name;
}

TEST_F(HeuristicsTextTest, EdgeRules_PrintTheirParametersInOrder) {
    Settings().EdgeSquaresInclCorner = true;
    Settings().RelaxAfterCaptures = 2;
    Settings().RelaxOnAdvancedPawn = true;
    Settings().DeferCheckMoves = 3;
    Settings().DeferCheckLimit = 5;
    Settings().ExtEdgeStrict = true;
    Settings().StrictKingMove = true;
    EXPECT_EQ(Parameters(SH_KEEPKINGONTHEEDGE), "STRICT,incl.corner,C2f,A,D3,M5");
    EXPECT_EQ(Parameters(SH_KEEPKINGWITHINEXTEDGE), "C2f,A,D3,M5,incl.corner,strict");
    Settings().RelaxCapturesCountPawns = true;
    Settings().RelaxOnlyExtEdge = true;
    Settings().KingMoveExceptions = true;
    EXPECT_EQ(Parameters(SH_KEEPKINGONTHEEDGE), "ALMOST_STRICT,incl.corner");
    EXPECT_EQ(Parameters(SH_KEEPKINGWITHINEXTEDGE), "C2,A,D3,M5,incl.corner,strict");
    Settings().StrictKingMove = false;
    EXPECT_EQ(Parameters(SH_KEEPKINGONTHEEDGE), "incl.corner");
}

TEST_F(HeuristicsTextTest, ForcedMate_PrintsModeAndSuffixes) {
    const char* const modes[] = {
        "", "", "CheckOnly", "#1", "#1+", "#2", "#2+", "#3", "#4", "#5", ""};
    for (u8 mode = 0; mode < std::size(modes); ++mode) {
        Settings().FfmMode = mode;
        EXPECT_EQ(Parameters(SH_FINDFORCEDMATE), modes[mode]) << int{mode};
    }
    Settings().FfmMode = 5;
    Settings().FfmCustom = true;
    EXPECT_EQ(Parameters(SH_FINDFORCEDMATE), "#2-Custom");
    Settings().FfmPreliminary = true;
    EXPECT_EQ(Parameters(SH_FINDFORCEDMATE), "#2-Preliminary-Custom");
}

TEST_F(HeuristicsTextTest, OtherParameters_PrintAsTheirKindSays) {
    Settings().BlackFigureOnDiagonal = 0;
    EXPECT_EQ(Parameters(SH_DONTLEAVEMAINDIAGONAL), "A1");
    Settings().BlackFigureOnDiagonal = 64;
    EXPECT_EQ(Parameters(SH_DONTLEAVEMAINDIAGONAL), "");
    Settings().BlockedFigureCount = 2;
    Settings().BlockedFigureSquares[0] = 48;
    Settings().BlockedFigureSquares[1] = 63;
    EXPECT_EQ(Parameters(SH_DONTLETFIGUREUNBLOCK), "A7,H8");
    Settings().BlockedFiguresEffective = true;
    EXPECT_EQ(Parameters(SH_DONTLETFIGUREUNBLOCK), "EFF,A7,H8");
    Settings().LessExceptions = true;
    EXPECT_EQ(Parameters(SH_DONTLETPROMOTEDQUEENMOVE), "strict");
    EXPECT_EQ(Parameters(SH_DONTLETPROMOTEDFIGUREMOVE), "strict");
    Context().KeyLineFile = 7;
    EXPECT_EQ(Parameters(SH_KEYLINE), "H");
    Context().KeyDiagonalSquares[0] = 0;
    Context().KeyDiagonalSquares[1] = 63;
    EXPECT_EQ(Parameters(SH_KEYDIAGONAL), "A1-H8");
    Settings().LoseFiguresMode = 1;
    EXPECT_EQ(Parameters(SH_DONTLOSEANYFIGURES), "incl.pawns");
    Settings().LoseFiguresMode = 2;
    EXPECT_EQ(Parameters(SH_DONTLOSEANYFIGURES), "incl.pawnsBeforePromo");
    Settings().KeySquare = 18;
    EXPECT_EQ(Parameters(SH_KEYSQUARE), "C3");
    Settings().SurroundedStrict = true;
    EXPECT_EQ(Parameters(SH_ASSERTBLACKKINGSURROUNDED), "strict");
    Settings().KeyWhiteFigureSquare = 1;
    EXPECT_EQ(Parameters(SH_KEYWHITEFIGURE), "B1");
    Settings().NearCornerDistance = 5;
    EXPECT_EQ(Parameters(SH_KEEPKINGNEARCORNER), "5S");
    Settings().NearCornerDistance = -2;
    EXPECT_EQ(Parameters(SH_KEEPKINGNEARCORNER), "2M");
}

TEST_F(HeuristicsTextTest, OneColor_PrintsTheModeOfTheNode) {
    const char* const words[] = {
        "", "WhiteSquaresOnly", "BlackSquaresOnly", "SeparatedBlackBishop"};
    for (u8 mode = 0; mode < 4; ++mode) {
        Node().m_captureState = static_cast<u8>(0xfc | mode);
        EXPECT_EQ(Parameters(SH_ONECOLORPLAYPOSSIBLE), words[mode]);
    }
}

TEST_F(HeuristicsTextTest, SeaSnake_PrintsSquaresAndTheCountAboveZero) {
    Settings().SeaSnakeApproach = 18;
    Settings().SeaSnakeTurnBack = 27;
    EXPECT_EQ(Parameters(SH_SEASNAKE), "C3,D4");
    Context().SeaSnakeOnlyAfter.resize(4);
    EXPECT_EQ(Parameters(SH_SEASNAKE), "C3,D4,4");
}

TEST_F(HeuristicsTextTest, NoHeuristics_AreTheEmptyText) {
    for (const u8 pass : {kPassScan, kPassHeuristics, kPassComplete}) {
        Node().m_pass = pass;
        Settings().ApplyBlockDynamically = pass != kPassHeuristics;
        EXPECT_EQ(Text(0), "");
        EXPECT_EQ(Node().HeurParams, 0u);
    }
}

TEST_F(HeuristicsTextTest, StrictKing_HasANameOfItsOwnWithoutOtherParameters) {
    Settings().StrictKingMove = true;
    EXPECT_EQ(Text(SH_KEEPKINGONTHEEDGE | SH_KEYLINE), "SH_DONTLETKINGMOVE, SH_KEYLINE");
    Settings().KingMoveExceptions = true;
    EXPECT_EQ(Text(SH_KEEPKINGONTHEEDGE), "SH_DONTLETKINGMOVE(excptns)");
    Settings().EdgeSquaresInclCorner = true;
    EXPECT_EQ(Text(SH_KEEPKINGONTHEEDGE), "SH_KEEPKINGONTHEEDGE(ALMOST_STRICT,incl.corner)");
    Settings().KingMoveExceptions = false;
    EXPECT_EQ(Text(SH_KEEPKINGONTHEEDGE), "SH_KEEPKINGONTHEEDGE(STRICT,incl.corner)");
}

TEST_F(HeuristicsTextTest, QuickMode_IsToldInPassesWithHeuristicsThatAreNotExact) {
    const struct {
        u8 pass;
        bool isExact;
        const char* text;
    } rows[] = {
        {kPassScan, false, "SH_KEYLINE,  QuickMode"},
        {kPassHeuristics, false, "SH_KEYLINE,  QuickMode"},
        {kPassComplete, false, "SH_KEYLINE"},
        {kPassScan, true, "SH_KEYLINE"},
        {kPassHeuristics, true, "SH_KEYLINE"},
        {kPassComplete, true, "SH_KEYLINE"},
    };
    for (const auto& row : rows) {
        Node().m_pass = row.pass;
        Context().isExact = row.isExact;
        Settings().ApplyBlockDynamically = true;
        EXPECT_EQ(Text(SH_KEYLINE), row.text);
        Settings().ApplyBlockDynamically = false;
        EXPECT_EQ(Text(SH_KEYLINE), std::string(row.text) + " (CannotApplyDLFUDynamically)");
    }
}

}  // namespace
}  // namespace quillmere
