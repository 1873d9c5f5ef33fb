#include "core/chess_exception.h"
#include "heuristics/catalogue.h"
#include "heuristics/heur_params.h"
#include "heuristics/heuristics_parser.h"
#include "tests/support/search_board.h"

#include <functional>
#include <gtest/gtest.h>

namespace quillmere {
namespace {

using test::CSearchBoard;

// The rook on b1 pins the knight on b6.
constexpr const char* kBoard = "1k6/8/pn6/8/8/8/8/RR5K";

class HeuristicsParserTest : public testing::Test {
protected:
    THeuristicSettings& Settings() { return m_board.Thread().heuristics; }
    TSearchContext& Context() { return m_board.Context(); }
    TChessboard& Node() { return m_board.Root(); }
    std::string Read(const std::string& text) {
        ParseHeuristics(Node(), text);
        return HeuristicsText(Node());
    }
    std::string Override(u32 bit, const std::vector<std::string>& parameters) {
        ApplyHeuristicOverride(Node(), bit, parameters);
        return HeuristicsText(Node());
    }
    // The text of the fault, after a check that it changed nothing.
    std::string FaultOf(const std::function<void()>& read) {
        const TChessboard before = Node();
        const THeuristicSettings settings = Settings();
        const u8 file = Context().KeyLineFile;
        std::string fault = "no fault";
        try {
            read();
        } catch (const ChessException& error) {
            fault = error.what();
        }
        EXPECT_EQ(Node().Heur, before.Heur);
        EXPECT_EQ(Node().HeurParams, before.HeurParams);
        EXPECT_EQ(Node().m_captureState, before.m_captureState);
        EXPECT_TRUE(std::ranges::equal(Node().m_trackedFigures, before.m_trackedFigures));
        EXPECT_EQ(Settings(), settings);
        EXPECT_EQ(Context().KeyLineFile, file);
        return fault;
    }

    CSearchBoard m_board{kBoard, 3};
};

TEST_F(HeuristicsParserTest, Texts_AreReadInAnyCaseWithBlanksAnywhere) {
    const struct {
        const char* text;
        const char* printed;
    } rows[] = {
        {"", ""},
        {"  ", ""},
        {"sh_keyline", "SH_KEYLINE"},
        {" SH_SaveQueen/Rook\t,sh_keyline ( h ) ", "SH_KEYLINE(H), SH_SAVEQUEEN/ROOK"},
        {"SH_KEYLINE()", "SH_KEYLINE"},
        {"SH_KEEPKINGONTHEEDGE(STRICT, C2f, A, D3,M5), SH_FINDFORCEDMATE(#2-Preliminary)",
         "SH_KEEPKINGONTHEEDGE(STRICT,C2f,A,D3,M5), SH_FINDFORCEDMATE(#2-Preliminary)"},
        {"SH_DONTLETKINGMOVE", "SH_DONTLETKINGMOVE"},
        {"SH_KEEPKINGONTHEEDGE(strict)", "SH_DONTLETKINGMOVE"},
        {"SH_DONTLETKINGMOVE(excptns)", "SH_DONTLETKINGMOVE(excptns)"},
        {"SH_KEEPKINGONTHEEDGE(almost_strict)", "SH_DONTLETKINGMOVE(excptns)"},
        {"SH_DONTLETKINGMOVE(C1)", "SH_KEEPKINGONTHEEDGE(STRICT,C1)"},
        {"SH_KEEPKINGONTHEEDGE, SH_KEEPKINGWITHINEXTEDGE(C2)",
         "SH_KEEPKINGONTHEEDGE, SH_KEEPKINGWITHINEXTEDGE(C2)"},
        {"SH_KEEPKINGWITHINEXTEDGE(C2), SH_KEEPKINGONTHEEDGE",
         "SH_KEEPKINGONTHEEDGE, SH_KEEPKINGWITHINEXTEDGE(C2)"},
        {"SH_KEEPKINGONTHEEDGE(C2), SH_KEEPKINGWITHINEXTEDGE(C2)",
         "SH_KEEPKINGONTHEEDGE(C2), SH_KEEPKINGWITHINEXTEDGE(C2)"},
        {"SH_ONECOLORPLAYPOSSIBLE(separatedblackbishop)",
         "SH_ONECOLORPLAYPOSSIBLE(SeparatedBlackBishop)"},
        {"SH_DONTLETFIGUREUNBLOCK(eff, a6,B6)", "SH_DONTLETFIGUREUNBLOCK(EFF,A6,B6)"},
        {"SH_FINDFORCEDMATE", "SH_FINDFORCEDMATE(CheckOnly)"},
        {"SH_FINDFORCEDMATE(#1+-custom)", "SH_FINDFORCEDMATE(#1+-Custom)"},
        {"SH_FINDFORCEDMATE(Preliminary, #5)", "SH_FINDFORCEDMATE(#5-Preliminary)"},
        {"SH_KEYDIAGONAL(a1 - h8)", "SH_KEYDIAGONAL(A1-H8)"},
        {"SH_KEYDIAGONAL(a1,h8)", "SH_KEYDIAGONAL(A1-H8)"},
        {"SH_KEEPKINGNEARCORNER(5s)", "SH_KEEPKINGNEARCORNER(5S)"},
        {"SH_KEEPKINGNEARCORNER(2M)", "SH_KEEPKINGNEARCORNER(2M)"},
        {"SH_SEASNAKE(c3,d4)", "SH_SEASNAKE(C3,D4)"},
        {"SH_SEASNAKE(,d4)", "SH_SEASNAKE(,D4)"},
        {"SH_KEYLINE,  QuickMode", "SH_KEYLINE"},
        {"SH_KEYLINE(A) (CannotApplyDLFUDynamically)",
         "SH_KEYLINE(A) (CannotApplyDLFUDynamically)"},
        {"SH_KEYLINE,  QuickMode (CannotApplyDLFUDynamically)",
         "SH_KEYLINE (CannotApplyDLFUDynamically)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Read(row.text), row.printed) << row.text;
}

TEST_F(HeuristicsParserTest, Text_ReplacesWordAndParameters) {
    Read("SH_KEEPKINGONTHEEDGE(STRICT,C2,D3,M4), SH_DONTLETFIGUREUNBLOCK(A6) "
         "(CannotApplyDLFUDynamically)");
    Read("SH_KEEPKINGONTHEEDGE, SH_DONTLETFIGUREUNBLOCK");
    EXPECT_EQ(Settings(), THeuristicSettings());
    EXPECT_EQ(Node().Heur, u32{SH_KEEPKINGONTHEEDGE | SH_DONTLETFIGUREUNBLOCK});
}

TEST_F(HeuristicsParserTest, BlockedFigures_AreTrackedInTheNode) {
    Read("SH_DONTLETFIGUREUNBLOCK(B6,A6)");
    EXPECT_EQ(Settings().BlockedFigureCount, 2);
    EXPECT_EQ(Settings().BlockedFigureInitialSquares[0], 41);
    EXPECT_EQ(Node().m_trackedFigures[0], 41);
    EXPECT_EQ(Node().m_trackedFigures[1], 40);
    EXPECT_EQ(Node().m_trackedFigures[2], -1);
    const u32 digest = Node().HeurParams;
    ComputeHeurParams(Node());
    EXPECT_EQ(Node().HeurParams, digest);
}

TEST_F(HeuristicsParserTest, KeyWhiteFigure_FindsThePinnedOne) {
    Read("SH_KEYWHITEFIGURE(B1)");
    EXPECT_EQ(Settings().KeyWhiteFigurePinned, 41);
    Read("SH_KEYWHITEFIGURE(A1)");
    EXPECT_EQ(Settings().KeyWhiteFigurePinned, kNoSquare);
}

TEST_F(HeuristicsParserTest, SeaSnakeCount_MustBeThatOfTheMoves) {
    Context().SeaSnakeOnlyAfter.resize(2);
    EXPECT_EQ(Read("SH_SEASNAKE(C3,D4,2)"), "SH_SEASNAKE(C3,D4,2)");
    EXPECT_EQ(Context().SeaSnakeOnlyAfter.size(), 2u);
    EXPECT_TRUE(Settings().SeaSnakeByUser);
}

TEST_F(HeuristicsParserTest, Faults_NameThePlaceAndTheReason) {
    const struct {
        const char* text;
        const char* fault;
    } rows[] = {
        {"SH_KEYLINE, SH_NOTHING(A1)",
         "Character 12 of the heuristics: there is no heuristic 'SH_NOTHING'."},
        {"...", "Character 0 of the heuristics: there is no heuristic '...'."},
        {"SH_KEYLINE, sh_keyline(A)",
         "Character 12 of the heuristics: 'sh_keyline' stands there a second time."},
        {"SH_KEEPKINGONTHEEDGE,SH_DONTLETKINGMOVE",
         "Character 21 of the heuristics: 'SH_DONTLETKINGMOVE' stands there a second time."},
        {"SH_KEYLINE,", "Character 11 of the heuristics: the name of a heuristic is expected."},
        {",", "Character 0 of the heuristics: the name of a heuristic is expected."},
        {"(A)", "Character 0 of the heuristics: the name of a heuristic is expected."},
        {"SH_KEYLINE SH_ZUGZWANG", "Character 11 of the heuristics: a comma is expected."},
        {"SH_KEYLINE)", "Character 10 of the heuristics: a comma is expected."},
        {"SH_KEYLINE(A)(B)", "Character 15 of the heuristics: a comma is expected."},
        {"SH_KEYLINE(A", "Character 10 of the heuristics: this bracket is not closed."},
        {"SH_AREKINGSNEAR(A)", "'A' is no parameter of SH_AREKINGSNEAR."},
        {"SH_KEEPKINGONTHEEDGE(tight)", "'tight' is no parameter of SH_KEEPKINGONTHEEDGE."},
        {"SH_KEEPKINGONTHEEDGE(Cf)", "'Cf' is no parameter of SH_KEEPKINGONTHEEDGE."},
        {"SH_KEEPKINGONTHEEDGE(C-1)", "'C-1' is no parameter of SH_KEEPKINGONTHEEDGE."},
        {"SH_KEEPKINGONTHEEDGE(AB)", "'AB' is no parameter of SH_KEEPKINGONTHEEDGE."},
        {"SH_KEEPKINGONTHEEDGE(C0)",
         "The number in 'C0' of SH_KEEPKINGONTHEEDGE must be 1 to 255."},
        {"SH_KEEPKINGONTHEEDGE(C256f)",
         "The number in 'C256f' of SH_KEEPKINGONTHEEDGE must be 1 to 255."},
        {"SH_KEEPKINGWITHINEXTEDGE(D0)",
         "The number in 'D0' of SH_KEEPKINGWITHINEXTEDGE must be 1 to 65535."},
        {"SH_KEEPKINGWITHINEXTEDGE(D65536)",
         "The number in 'D65536' of SH_KEEPKINGWITHINEXTEDGE must be 1 to 65535."},
        {"SH_KEEPKINGWITHINEXTEDGE(D1,M99999999999999999999)",
         "The number in 'M99999999999999999999' of SH_KEEPKINGWITHINEXTEDGE must be 0 to 65535."},
        {"SH_KEEPKINGWITHINEXTEDGE(M5)",
         "'M5' of SH_KEEPKINGWITHINEXTEDGE has a meaning only beside the moves to defer (D)."},
        {"SH_KEEPKINGWITHINEXTEDGE(C2,C3)",
         "'C3' says for a second time what SH_KEEPKINGWITHINEXTEDGE can be told once only."},
        {"SH_ONECOLORPLAYPOSSIBLE(Red)", "'Red' is no parameter of SH_ONECOLORPLAYPOSSIBLE."},
        {"SH_DONTLEAVEMAINDIAGONAL(I1)",
         "'I1' is no square from A1 to H8, as SH_DONTLEAVEMAINDIAGONAL needs it."},
        {"SH_KEYSQUARE(A9)", "'A9' is no square from A1 to H8, as SH_KEYSQUARE needs it."},
        {"SH_KEYSQUARE(A0)", "'A0' is no square from A1 to H8, as SH_KEYSQUARE needs it."},
        {"SH_KEYSQUARE(A1,A2)", "'A2' is too much for SH_KEYSQUARE: at most 1 are allowed."},
        {"SH_KEYWHITEFIGURE(K)", "'K' is no square from A1 to H8, as SH_KEYWHITEFIGURE needs it."},
        {"SH_DONTLETFIGUREUNBLOCK(A1,a1)",
         "'a1' says for a second time what SH_DONTLETFIGUREUNBLOCK can be told once only."},
        {"SH_DONTLETFIGUREUNBLOCK(A1,A2,A3,A4,A5,A6,A7,A8,B1)",
         "'B1' is too much for SH_DONTLETFIGUREUNBLOCK: at most 8 are allowed."},
        {"SH_FINDFORCEDMATE(#6)", "'#6' is no parameter of SH_FINDFORCEDMATE."},
        {"SH_FINDFORCEDMATE(#1-Extra)", "'#1-Extra' is no parameter of SH_FINDFORCEDMATE."},
        {"SH_FINDFORCEDMATE(#1,#2)",
         "'#2' says for a second time what SH_FINDFORCEDMATE can be told once only."},
        {"SH_DONTLETPROMOTEDQUEENMOVE(C1)", "'C1' is no parameter of SH_DONTLETPROMOTEDQUEENMOVE."},
        {"SH_KEYLINE(I)", "'I' is no file from A to H, as SH_KEYLINE needs it."},
        {"SH_KEYDIAGONAL(A1-H9)",
         "'A1-H9' is no square from A1 to H8, as SH_KEYDIAGONAL needs it."},
        {"SH_DONTLOSEANYFIGURES(all)", "'all' is no parameter of SH_DONTLOSEANYFIGURES."},
        {"SH_ASSERTBLACKKINGSURROUNDED(2)", "'2' is no parameter of SH_ASSERTBLACKKINGSURROUNDED."},
        {"SH_KEEPKINGNEARCORNER(6S)",
         "The number in '6S' of SH_KEEPKINGNEARCORNER must be 1 to 5."},
        {"SH_KEEPKINGNEARCORNER(0M)",
         "The number in '0M' of SH_KEEPKINGNEARCORNER must be 1 to 2."},
        {"SH_KEEPKINGNEARCORNER(3M)",
         "The number in '3M' of SH_KEEPKINGNEARCORNER must be 1 to 2."},
        {"SH_KEEPKINGNEARCORNER(3)", "'3' is no parameter of SH_KEEPKINGNEARCORNER."},
        {"SH_SEASNAKE(C3,D4,2)",
         "'2' of SH_SEASNAKE cannot be set by a text: 0 moves are to be played before."},
    };
    Read("SH_KEYLINE(C), SH_DONTLETFIGUREUNBLOCK(A6), SH_ONECOLORPLAYPOSSIBLE(WhiteSquaresOnly)");
    for (const auto& row : rows)
        EXPECT_EQ(FaultOf([&] { ParseHeuristics(Node(), row.text); }), row.fault) << row.text;
}

TEST_F(HeuristicsParserTest, FindHeuristic_KnowsNamesInAnyCase) {
    EXPECT_EQ(FindHeuristic("sh_SaveQueen/rook").bit, u32{SH_SAVEQUEENROOK});
    EXPECT_EQ(FindHeuristic("SH_DONTLETKINGMOVE").bit, u32{SH_KEEPKINGONTHEEDGE});
    EXPECT_EQ(FindHeuristic("SH_DONTLETKINGMOVE").impliedParameter, "STRICT");
    EXPECT_EQ(FindHeuristic("SH_KEY").bit, 0u);
}

TEST_F(HeuristicsParserTest, Override_SwitchesOneEntryAndLeavesTheOthers) {
    Read("SH_KEEPKINGONTHEEDGE(STRICT,incl.corner), SH_DONTLETFIGUREUNBLOCK(A6), SH_KEYLINE(C)");
    EXPECT_EQ(Override(SH_KEEPKINGONTHEEDGE, {"C2f"}),
              "SH_KEEPKINGONTHEEDGE(C2f), SH_DONTLETFIGUREUNBLOCK(A6), SH_KEYLINE(C)");
    EXPECT_EQ(Override(SH_DONTLETFIGUREUNBLOCK, {"off"}),
              "SH_KEEPKINGONTHEEDGE(C2f), SH_KEYLINE(C)");
    EXPECT_EQ(Node().m_trackedFigures[0], -1);
    EXPECT_EQ(Override(SH_KEYLINE, {"OFF"}), "SH_KEEPKINGONTHEEDGE(C2f)");
    EXPECT_EQ(Override(SH_ZUGZWANG, {}), "SH_KEEPKINGONTHEEDGE(C2f), SH_ZUGZWANG");
    EXPECT_EQ(Override(SH_ZUGZWANG, {"OFF"}), "SH_KEEPKINGONTHEEDGE(C2f)");
    EXPECT_EQ(Override(SH_KEEPKINGONTHEEDGE, {"OFF"}), "");
    EXPECT_EQ(Node().HeurParams, 0u);
}

TEST_F(HeuristicsParserTest, Override_KeepsTheApplicationOfTheBlock) {
    Read("SH_KEYLINE (CannotApplyDLFUDynamically)");
    EXPECT_EQ(Override(SH_KEYLINE, {"A"}), "SH_KEYLINE(A) (CannotApplyDLFUDynamically)");
}

TEST_F(HeuristicsParserTest, BadOverrides_ChangeNothing) {
    Read("SH_KEYLINE(C)");
    const struct {
        u32 bit;
        std::vector<std::string> parameters;
        const char* fault;
    } rows[] = {
        {0x100, {}, "There is no heuristic with the bit 0x100."},
        {SH_KEYLINE, {"A", "OFF"}, "SH_KEYLINE cannot be switched off and have parameters."},
        {SH_KEYLINE, {"Z"}, "'Z' is no file from A to H, as SH_KEYLINE needs it."},
    };
    for (const auto& row : rows)
        EXPECT_EQ(FaultOf([&] { ApplyHeuristicOverride(Node(), row.bit, row.parameters); }),
                  row.fault);
}

}  // namespace
}  // namespace quillmere
