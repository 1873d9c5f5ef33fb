// SH_SAVEQUEEN/ROOK and SH_DONTLOSEANYFIGURES.
#include "tests/support/reply_cases.h"

namespace quillmere {
namespace {

using test::CSearchBoard;
using test::SettingsOf;
using test::TReplyCase;

constexpr u32 kSave = SH_SAVEQUEENROOK;
constexpr u32 kLose = SH_DONTLOSEANYFIGURES;

void WithPawns(CSearchBoard& board) {
    SettingsOf(board).LoseFiguresMode = 1;
}
void WithPromotablePawns(CSearchBoard& board) {
    SettingsOf(board).LoseFiguresMode = 2;
}
void MoreAtTheRoot(CSearchBoard& board) {
    SettingsOf(board).InitialWhiteCounts[3] += 1;
}
void MoreAtTheRootAndAllowed(CSearchBoard& board) {
    MoreAtTheRoot(board);
    SettingsOf(board).LoseFiguresAllowance = 1;
}

class SaveQueenRook : public test::ReplyRule {};

TEST_P(SaveQueenRook, GivesUpTheLossOfTheLastHeavyFigure) {
    test::CheckReplyCase(GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Rows,
    SaveQueenRook,
    testing::Values(
        TReplyCase{"TheLastRook", kSave, "r5k1/8/8/8/8/8/8/R3K1NB", 4, "a8a1", true},
        TReplyCase{"TheLastQueen", kSave, "r5k1/8/8/8/8/8/8/Q3K1NB", 4, "a8a1", true},
        TReplyCase{"ARookIsLeft", kSave, "r5k1/8/8/8/8/8/8/R3K1NR", 4, "a8a1", false},
        TReplyCase{"AQueenIsLeft", kSave, "r5k1/8/8/8/8/8/8/R3K1NQ", 4, "a8a1", false},
        TReplyCase{"AKnightOnly", kSave, "r5k1/8/8/8/8/8/8/N3K1NB", 4, "a8a1", false},
        TReplyCase{"NoCapture", kSave, "r5k1/8/8/8/8/8/8/N3K1NB", 4, "a8a2", false},
        // The rook is gone; the knight would mate the smothered king.
        TReplyCase{"InCheckBeforeTheMate", kSave, "r5rk/6pp/8/6N1/8/8/8/R3K3", 4, "a8a1", true},
        TReplyCase{"WithTheKnightsMate", kSave, "1r4rk/6pp/8/4N3/8/8/1R6/2K5", 4, "b8b2", false}),
    test::NameOfCase);

class LostFigures : public test::ReplyRule {};

TEST_P(LostFigures, GivesUpALossByItsMode) {
    test::CheckReplyCase(GetParam());
}

// Black takes a rook, a pawn on the second or on the seventh rank.
constexpr const char* kRooks = "r5k1/8/8/8/8/8/8/R3K2R";
constexpr const char* kPawn = "r5k1/8/8/8/8/8/P7/4K2R";
constexpr const char* kFarPawn = "r5k1/P7/8/8/8/8/8/4K2R";

INSTANTIATE_TEST_SUITE_P(
    Rows,
    LostFigures,
    testing::Values(
        TReplyCase{"TheFirstFigureIsFree", kLose, kRooks, 4, "a8a1", false},
        TReplyCase{"TheSecondIsNot", kLose, kRooks, 4, "a8a1", true, MoreAtTheRoot},
        TReplyCase{"AnAllowance", kLose, kRooks, 4, "a8a1", false, MoreAtTheRootAndAllowed},
        TReplyCase{"AnyFigureWithPawns", kLose, kRooks, 4, "a8a1", true, WithPawns},
        TReplyCase{
            "AnyFigureWithPromotablePawns", kLose, kRooks, 4, "a8a1", true, WithPromotablePawns},
        TReplyCase{"APawn", kLose, kPawn, 4, "a8a2", false},
        TReplyCase{"APawnWithPawns", kLose, kPawn, 4, "a8a2", true, WithPawns},
        TReplyCase{"AFarPawnOfModeTwo", kLose, kFarPawn, 4, "a8a7", true, WithPromotablePawns},
        TReplyCase{"ANearPawnOfModeTwo", kLose, kPawn, 4, "a8a2", false, WithPromotablePawns},
        TReplyCase{
            "APawnInPassing", kLose, "6k1/8/8/8/1p6/8/P7/4K2R", 7, "a2a4 b4a3", true, WithPawns},
        TReplyCase{"APawnInPassingOfModeTwo",
                   kLose,
                   "6k1/8/8/8/1p6/8/P7/4K2R",
                   7,
                   "a2a4 b4a3",
                   false,
                   WithPromotablePawns},
        TReplyCase{"NoCapture", kLose, kRooks, 4, "a8a5", false, WithPawns},
        TReplyCase{
            "AnExchange", kLose, "r5k1/8/8/8/1n6/8/8/1R2K2R", 7, "b1b4 a8a1", false, WithPawns},
        TReplyCase{"AnExchangeOnTheSquare",
                   kLose,
                   "1r4k1/8/8/8/1n6/8/8/1R2K2R",
                   7,
                   "b1b4 b8b4",
                   false,
                   WithPawns},
        TReplyCase{"AfterAPawnWasTaken",
                   kLose,
                   "1r4k1/8/8/8/1p6/8/8/1R2K2R",
                   7,
                   "b1b4 b8b4",
                   true,
                   WithPawns},
        TReplyCase{
            "WithAMateAtOnce", kLose, "1r4rk/6pp/8/4N3/8/8/1R6/2K5", 4, "b8b2", false, WithPawns}),
    test::NameOfCase);

}  // namespace
}  // namespace quillmere
