#include "heuristics/reply_rules.h"
#include "tests/support/reply_cases.h"

namespace quillmere {
namespace {

using test::CReplyLine;
using test::CSearchBoard;
using test::SettingsOf;
using test::TReplyCase;

constexpr u32 kEdge = SH_KEEPKINGONTHEEDGE;
constexpr u32 kExtEdge = SH_KEEPKINGWITHINEXTEDGE;

void Captures(CSearchBoard& board) {
    SettingsOf(board).RelaxAfterCaptures = 1;
}
void CapturesWithPawns(CSearchBoard& board) {
    Captures(board);
    SettingsOf(board).RelaxCapturesCountPawns = true;
}
void CapturesForExtEdge(CSearchBoard& board) {
    Captures(board);
    SettingsOf(board).RelaxOnlyExtEdge = true;
}
void TwoCaptures(CSearchBoard& board) {
    SettingsOf(board).RelaxAfterCaptures = 2;
}
void Pawn(CSearchBoard& board) {
    SettingsOf(board).RelaxOnAdvancedPawn = true;
    SettingsOf(board).DeferCheckMoves = 1;
    SettingsOf(board).SkipDeferIfBalanceFixed = true;
}
void Defer(CSearchBoard& board) {
    Captures(board);
    SettingsOf(board).DeferCheckMoves = 2;
}
void DeferUnlessFixed(CSearchBoard& board) {
    Defer(board);
    SettingsOf(board).SkipDeferIfBalanceFixed = true;
}
void DeferWithoutTrigger(CSearchBoard& board) {
    SettingsOf(board).DeferCheckMoves = 2;
}

class DynamicRelaxation : public test::ReplyRule {};

TEST_P(DynamicRelaxation, LetsTheKingGoWhereTheGameHasChanged) {
    test::CheckReplyCase(GetParam());
}

// White takes the man on a8, and the king leaves the edge.
constexpr const char* kKnightFalls = "n3k3/8/8/8/8/8/8/R3K2R";
constexpr const char* kPawnFalls = "4k3/p7/8/8/8/8/8/R3K2R";
// The king itself takes a white knight off the edge, or a rook does so.
constexpr const char* kQuiet = "4k3/8/8/8/8/8/8/R3K3";

INSTANTIATE_TEST_SUITE_P(
    Balance,
    DynamicRelaxation,
    testing::Values(
        TReplyCase{"AFigureFell", kEdge, kKnightFalls, 7, "a1a8 e8e7", false, Captures},
        TReplyCase{"NoFigureFell", kEdge, kKnightFalls, 7, "a1a7 e8f8", false, Captures},
        TReplyCase{"NoFigureFellAndOut", kEdge, kKnightFalls, 7, "a1a2 e8e7", true, Captures},
        TReplyCase{"TwoAreWanted", kEdge, kKnightFalls, 7, "a1a8 e8e7", true, TwoCaptures},
        TReplyCase{"APawnIsNoFigure", kEdge, kPawnFalls, 7, "a1a7 e8f8", false, Captures},
        TReplyCase{"APawnIsNoFigureOutside",
                   kEdge,
                   "4k3/8/p7/8/8/8/8/R3K2R",
                   7,
                   "a1a6 e8e7",
                   true,
                   Captures},
        TReplyCase{"APawnIsCounted",
                   kEdge,
                   "4k3/8/p7/8/8/8/8/R3K2R",
                   7,
                   "a1a6 e8e7",
                   false,
                   CapturesWithPawns},
        TReplyCase{"NotForTheEdge", kEdge, kKnightFalls, 7, "a1a8 e8e7", true, CapturesForExtEdge},
        TReplyCase{"ForTheOuterRings",
                   kExtEdge,
                   "n7/4k3/8/8/8/8/8/R3K2R",
                   7,
                   "a1a8 e7e6",
                   false,
                   CapturesForExtEdge}),
    test::NameOfCase);

INSTANTIATE_TEST_SUITE_P(
    AdvancedPawn,
    DynamicRelaxation,
    testing::Values(
        TReplyCase{"OnTheSeventhRank", kEdge, "4k3/P7/8/8/8/8/8/4K3", 4, "e8e7", false, Pawn},
        TReplyCase{"OnTheFourthRank", kEdge, "4k3/8/8/8/P7/8/8/4K3", 4, "e8e7", true, Pawn}),
    test::NameOfCase);

INSTANTIATE_TEST_SUITE_P(
    Deferral,
    DynamicRelaxation,
    testing::Values(
        TReplyCase{"PutOff", kEdge, kQuiet, 12, "e8e7", false, Defer},
        TReplyCase{"NotWithoutATrigger", kEdge, kQuiet, 12, "e8e7", true, DeferWithoutTrigger},
        TReplyCase{"NotIfNothingCanFall", kEdge, kQuiet, 12, "e8e7", true, DeferUnlessFixed},
        TReplyCase{"IfAFigureCanFall", kEdge, kKnightFalls, 12, "e8e7", false, DeferUnlessFixed},
        TReplyCase{"NotYetDue", kEdge, kQuiet, 12, "e8e7 a1a2 e7e6 a2a1 e6e5", false, Defer},
        TReplyCase{"Due", kEdge, kQuiet, 12, "e8e7 a1a2 e7e6 a2a1 e6e5 a1a2 e5e6", true, Defer},
        TReplyCase{
            "DueAndBack", kEdge, kQuiet, 12, "e8e7 a1a2 e7e8 a2a1 e8d8 a1a2 d8e8", false, Defer},
        TReplyCase{"DueWithAnotherMan",
                   kEdge,
                   "4k3/7p/8/8/8/8/8/R3K3",
                   12,
                   "e8e7 a1a2 e7e6 a2a1 e6e5 a1a2 h7h6",
                   true,
                   Defer},
        TReplyCase{"DueWithTheBalanceReached",
                   kEdge,
                   kKnightFalls,
                   12,
                   "e8e7 a1a2 e7e6 a2a1 e6e5 a1a8 e5e6",
                   false,
                   Defer}),
    test::NameOfCase);

TEST(DynamicRelaxation, ACapturerThatCanBeTakenBackCountsAsGone) {
    // The black rook takes the knight beside the white rook; the king is off the edge already.
    constexpr const char* kFen = "8/1k6/8/8/8/8/r7/N2RK3";
    const auto setUp = [](CSearchBoard& board) {
        Captures(board);
        // At the root white had a knight less.
        SettingsOf(board).InitialWhiteCounts[3] = 0;
        board.Root().m_searchFlags |= kSearchEdgeDeferred;
    };
    CReplyLine taken(kFen, 4, kEdge, setUp);
    taken.Play("a2a1");
    EXPECT_FALSE(taken.IsLeftOut());
    CReplyLine safe("8/1k6/8/8/8/8/r7/N3K3", 4, kEdge, setUp);
    safe.Play("a2a1");
    EXPECT_TRUE(safe.IsLeftOut());
}

TEST(DynamicRelaxation, TheTimeOfADeferredTestBelongsToItsLine) {
    CReplyLine early(kQuiet, 12, kEdge, Defer);
    early.Play("e8e7");
    ASSERT_TRUE(IsEdgeTestDeferred(early.Node()));
    EXPECT_EQ(DeferredUntil(early.Node()), 7);
    EXPECT_EQ(SettingsOf(early.Board()).DeferCheckLimit, 7);
    early.Play("a1a2 e7e6");
    EXPECT_EQ(DeferredUntil(early.Node()), 7);
    // Another line of the same thread: what it wrote last is no concern of the first one.
    SettingsOf(early.Board()).DeferCheckLimit = 1;
    early.Play("a2a1 e6e5 a1a2");
    EXPECT_FALSE(early.IsLeftOut());
    early.Play("e5e6");
    EXPECT_TRUE(early.IsLeftOut());
    CReplyLine late(kQuiet, 12, kEdge, Defer);
    late.Play("e8d8 a1a2 d8e8 a2a1 e8e7");
    EXPECT_EQ(DeferredUntil(late.Node()), 3);
}

TEST(DynamicRelaxation, TheLimitIsNeverBelowOne) {
    CReplyLine line(kQuiet, 4, kEdge, Defer);
    line.Play("e8e7");
    EXPECT_FALSE(line.IsLeftOut());
    EXPECT_EQ(DeferredUntil(line.Node()), 1);
}

TEST(DynamicRelaxation, TheOuterRingsAreMarkedOnlyWhenTheKingHasLeftThem) {
    const auto setUp = [](CSearchBoard& board) {
        Defer(board);
        SettingsOf(board).ExtEdgeStrict = true;
    };
    CReplyLine step("8/4k3/8/8/8/8/8/R3K3", 12, kExtEdge, setUp);
    step.Play("e7d7");
    EXPECT_FALSE(step.IsLeftOut());
    EXPECT_FALSE(IsEdgeTestDeferred(step.Node()));
    CReplyLine out("8/4k3/8/8/8/8/8/R3K3", 12, kExtEdge, setUp);
    out.Play("e7e6");
    EXPECT_FALSE(out.IsLeftOut());
    EXPECT_TRUE(IsEdgeTestDeferred(out.Node()));
}

TEST(DynamicRelaxation, AKingThatWasLetGoStaysFree) {
    const auto setUp = [](CSearchBoard& board) {
        Captures(board);
        SettingsOf(board).StrictKingMove = true;
    };
    CReplyLine line(kKnightFalls, 9, kEdge, setUp);
    line.Play("a1a8 e8e7");
    EXPECT_FALSE(line.IsLeftOut());
    EXPECT_NE(line.Node().m_searchFlags & kSearchEdgeReleased, 0);
    CReplyLine held(kKnightFalls, 9, kEdge, setUp);
    held.Play("a1a2 e8e7");
    EXPECT_TRUE(held.IsLeftOut());
    EXPECT_EQ(held.Node().m_searchFlags & kSearchEdgeReleased, 0);
}

}  // namespace
}  // namespace quillmere
