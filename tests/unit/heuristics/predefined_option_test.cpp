#include "core/chess_exception.h"
#include "heuristics/catalogue.h"
#include "heuristics/heur_params.h"
#include "heuristics/predefined_option.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using test::CSearchBoard;

// Black: knight a8, bishop b8, king h8; pawns a7 and c7.
constexpr const char* kBoard = "nb5k/p1p5/8/8/8/8/8/RR5K";

class PredefinedOptionTest : public testing::Test {
protected:
    THeuristicSettings& Settings() { return m_board.Thread().heuristics; }
    TSearchContext& Context() { return m_board.Context(); }
    TChessboard& Node() { return m_board.Root(); }
    std::string Apply(u32 heur, const char* option) {
        SetHeur(Node(), heur);
        ParsePredefinedOption(Node(), option);
        const u32 digest = Node().HeurParams;
        ComputeHeurParams(Node());
        EXPECT_EQ(Node().HeurParams, digest) << option;
        return HeuristicsText(Node());
    }
    std::string FaultOf(const char* option) {
        try {
            ParsePredefinedOption(Node(), option);
        } catch (const ChessException& error) {
            return error.what();
        }
        return "no fault";
    }

    CSearchBoard m_board{kBoard, 3};
};

TEST_F(PredefinedOptionTest, Words_ChangeTheirBits) {
    constexpr u32 kEdge = SH_KEEPKINGONTHEEDGE;
    constexpr u32 kExt = SH_KEEPKINGWITHINEXTEDGE;
    constexpr u32 kSurrounded = SH_ASSERTBLACKKINGSURROUNDED;
    constexpr u32 kQueen = SH_DONTLETPROMOTEDQUEENMOVE;
    constexpr u32 kAll = kEdge | kExt | kSurrounded | kQueen;
    const struct {
        const char* option;
        u32 word;
    } rows[] = {
        {"AssertBKS", kSurrounded | kQueen},
        {"AssertBKS(strict)", kSurrounded | kQueen},
        {"ExtEdge", kExt | kQueen},
        {"DontLetKingMove", kEdge | kQueen},
        {"DontLetPromotedQueenMove", kAll},
        {"DontLetPromotedQueenMove NO", kAll & ~kQueen},
        {"DontLetPromotedQueenMove  NO", kAll},
        {"DontLetPromotedQueenMoveX", kAll},
        {"ExtEdge ", kAll},
        {"extedge", kAll},
        {"assertbks", kAll},
        {"DontLetKingMoves", kAll},
        {"dlfu(a7)", kAll},
        {"Anything", kAll},
        {"", kAll},
        {"SafeMode", kAll},
        {"LFQMDepth(#4)", kAll},
    };
    for (const auto& row : rows) {
        Apply(kAll, row.option);
        EXPECT_EQ(Node().Heur, row.word) << row.option;
    }
    Apply(0, "DontLetPromotedQueenMove");
    EXPECT_EQ(Node().Heur, kQueen);
}

TEST_F(PredefinedOptionTest, StrictForms_SetTheirFields) {
    Apply(0, "AssertBKS");
    EXPECT_FALSE(Settings().SurroundedStrict);
    Apply(0, "AssertBKS(strict)");
    EXPECT_TRUE(Settings().SurroundedStrict);
    EXPECT_EQ(Apply(SH_KEEPKINGWITHINEXTEDGE, "DontLetKingMove"), "SH_DONTLETKINGMOVE");
}

TEST_F(PredefinedOptionTest, SafeMode_IsReadInAnyCaseAndExactly) {
    for (const char* const other : {"SafeMode ", "Safe", "SafeModes"}) {
        Apply(0, other);
        EXPECT_FALSE(Context().isExact) << other;
    }
    for (const char* const option : {"SafeMode", "safemode", "SAFEMODE"}) {
        Context().isExact = false;
        Apply(0, option);
        EXPECT_TRUE(Context().isExact) << option;
    }
}

TEST_F(PredefinedOptionTest, QuickerDepth_IsInMovesOrHalfMoves) {
    const struct {
        const char* option;
        i16 halfMoves;
    } rows[] = {{"LFQMDepth(#4)", 7},
                {"LFQMDepth(#3)", 5},
                {"LFQMDepth(7)", 7},
                {"LFQMDepth( 8 )", 8},
                {"LFQMDepth(#1)", 1},
                {"LFQMDepth(0)", -1},
                {"LFQMDepth(#0)", -1},
                {"LFQMDepth()", -1},
                {"LFQMDepth(-5)", -1},
                {"LFQMDepth(99999999999)", 32767},
                {"LFQMDepth(#99999999999)", 32767}};
    for (const auto& row : rows) {
        Apply(0, row.option);
        EXPECT_EQ(Context().m_shLookForQuickerMateDepth, row.halfMoves) << row.option;
    }
}

TEST_F(PredefinedOptionTest, BlockedFigures_StandOnceWithBlackPawnsFirst) {
    EXPECT_EQ(Apply(0, "DLFU(a8, C7\t,b8 a7,a8)"), "SH_DONTLETFIGUREUNBLOCK(C7,A7,A8,B8)");
    EXPECT_EQ(Node().m_trackedFigures[0], 50);
    EXPECT_EQ(Apply(Node().Heur, "DLFU(b8h8)"), "SH_DONTLETFIGUREUNBLOCK(C7,A7,A8,B8,H8)");
}

TEST_F(PredefinedOptionTest, MoreThanEightBlockedFigures_AreLeftOut) {
    EXPECT_EQ(Apply(0, "DLFU(a1a2a3a4a5a6b1b2b3a7)"),
              "SH_DONTLETFIGUREUNBLOCK(A7,A1,A2,A3,A4,A5,A6,B1)");
}

TEST_F(PredefinedOptionTest, BadSquares_TellThePlaceAndChangeNothing) {
    const struct {
        const char* option;
        const char* fault;
    } rows[] = {{"DLFU(a8, a9)", "Invalid square description at index 10"},
                {"DLFU(a0)", "Invalid square description at index 6"},
                {"DLFU(ab)", "Invalid square description at index 6"},
                {"DLFU(a", "Invalid square description at index 6"},
                {"DLFU(", "Invalid square description at index 5"},
                {"DLFU(a8", "Invalid square description at index 7"},
                {"DLFU(i8)", "Invalid square"},
                {"DLFU(11)", "Invalid square"}};
    SetHeur(Node(), SH_KEYLINE);
    for (const auto& row : rows) {
        EXPECT_EQ(FaultOf(row.option), row.fault) << row.option;
        EXPECT_EQ(Node().Heur, u32{SH_KEYLINE});
        EXPECT_EQ(Settings(), THeuristicSettings());
    }
}

}  // namespace
}  // namespace quillmere
