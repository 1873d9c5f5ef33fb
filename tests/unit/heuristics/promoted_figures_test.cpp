#include "tests/support/reply_cases.h"

namespace quillmere {
namespace {

using test::CSearchBoard;
using test::SettingsOf;
using test::TReplyCase;

constexpr u32 kQueenOnly = SH_DONTLETPROMOTEDQUEENMOVE;
constexpr u32 kAnyFigure = SH_DONTLETPROMOTEDFIGUREMOVE;

void Strict(CSearchBoard& board) {
    SettingsOf(board).LessExceptions = true;
}
void Sweeping(CSearchBoard& board) {
    SettingsOf(board).ActiveHeur = SH_SWEEPINGWHITEROOK;
}
void StrictSweeping(CSearchBoard& board) {
    Strict(board);
    Sweeping(board);
}
void Safety(CSearchBoard& board) {
    SettingsOf(board).PromotionSafety = true;
}

class PromotedFigures : public test::ReplyRule {};

TEST_P(PromotedFigures, StayWhereTheyAre) {
    test::CheckReplyCase(GetParam());
}

// The king on h8 and a rook on a7; the pawn a2 promotes, white waits with a rook.
constexpr const char* kFar = "7k/r7/8/8/8/6R1/p7/3K4";
constexpr const char* kToQueen = "a2a1Q d1e2 a1b2";
constexpr const char* kToRook = "a2a1R d1e2 a1b1";
// The black king is next to the promotion, white has three figures.
constexpr const char* kNear = "5BR1/8/8/8/8/1r5R/pk6/4K3";
// Nothing but the king and one or two figures beside the pawn.
constexpr const char* kLast = "7k/8/8/8/8/6R1/p7/3K4";

INSTANTIATE_TEST_SUITE_P(
    Rows,
    PromotedFigures,
    testing::Values(
        TReplyCase{"TheQueenMoves", kQueenOnly, kFar, 8, kToQueen, true},
        TReplyCase{"TheQueenMovesUnderTheOtherBit", kAnyFigure, kFar, 8, kToQueen, true},
        TReplyCase{"TheRookMoves", kAnyFigure, kFar, 8, kToRook, true},
        TReplyCase{"ARookIsNoQueen", kQueenOnly, kFar, 8, kToRook, false},
        TReplyCase{"ThePromotionItself", kQueenOnly | kAnyFigure, kFar, 8, "a2a1Q", false},
        TReplyCase{"AnotherFigureMoves", kAnyFigure, kFar, 8, "a2a1Q d1e2 a7a6", false},
        TReplyCase{"TheKingMoves", kAnyFigure, kFar, 8, "a2a1Q d1e2 h8h7", false},
        TReplyCase{"AQueenOfTheRoot", kQueenOnly, "7k/r7/8/8/8/6R1/q7/3K4", 8, "a2b2", false},
        TReplyCase{"NearItsKing", kQueenOnly, kNear, 8, "a2a1Q e1e2 a1b1", false},
        TReplyCase{"NearItsKingAgainstOneFigure",
                   kQueenOnly,
                   "8/8/8/8/8/1r5R/pk6/4K3",
                   8,
                   "a2a1Q e1e2 a1b1",
                   true},
        TReplyCase{"FarFromItsKing", kQueenOnly, kNear, 8, "a2a1Q e1e2 a1a8", true},
        TReplyCase{"AgainstASweepingRook", kQueenOnly, kFar, 8, kToQueen, false, Sweeping},
        TReplyCase{
            "AgainstASweepingRookStrictly", kQueenOnly, kFar, 8, kToQueen, true, StrictSweeping},
        TReplyCase{"TheOnlyFigureEver", kQueenOnly, kLast, 8, kToQueen, true},
        TReplyCase{"TheLastOfMany",
                   kQueenOnly,
                   kLast,
                   8,
                   kToQueen,
                   false,
                   [](CSearchBoard& board) { SettingsOf(board).InitialBlackCounts[1] = 2; }},
        TReplyCase{"TheLastOfManyStrictly",
                   kQueenOnly,
                   kLast,
                   8,
                   kToQueen,
                   true,
                   [](CSearchBoard& board) {
                       SettingsOf(board).InitialBlackCounts[1] = 2;
                       Strict(board);
                   }},
        TReplyCase{"ToASafeSquare", kQueenOnly, kFar, 8, kToQueen, true, Safety},
        TReplyCase{"ToAnAttackedSquare", kQueenOnly, kFar, 8, "a2a1Q d1e2 a1a3", false, Safety}),
    test::NameOfCase);

TEST(PromotedFigures, AnExceptionIsMarkedOnlyWithLessExceptions) {
    for (const bool isStrict : {false, true}) {
        test::CReplyLine line(kNear, 8, kQueenOnly, isStrict ? Strict : nullptr);
        line.Play("a2a1Q e1e2 a1b1");
        EXPECT_FALSE(line.IsLeftOut());
        EXPECT_EQ((line.Node().m_lastMove.flags & kMoveMarkEvent) != 0, isStrict);
    }
}

}  // namespace
}  // namespace quillmere
