// SH_KEEPKINGNEARCORNER, SH_KEEPKINGONTHEEDGE and SH_KEEPKINGWITHINEXTEDGE.
#include "tests/support/reply_cases.h"

namespace quillmere {
namespace {

using test::CSearchBoard;
using test::SettingsOf;
using test::TReplyCase;

constexpr u32 kCorner = SH_KEEPKINGNEARCORNER;
constexpr u32 kEdge = SH_KEEPKINGONTHEEDGE;
constexpr u32 kExtEdge = SH_KEEPKINGWITHINEXTEDGE;

template <int kDistance>
void Near(CSearchBoard& board) {
    SettingsOf(board).NearCornerDistance = kDistance;
}
void InclCorner(CSearchBoard& board) {
    SettingsOf(board).EdgeSquaresInclCorner = true;
}
void Strict(CSearchBoard& board) {
    SettingsOf(board).StrictKingMove = true;
}
void StrictWithExceptions(CSearchBoard& board) {
    Strict(board);
    SettingsOf(board).KingMoveExceptions = true;
}
void StrictReleased(CSearchBoard& board) {
    Strict(board);
    board.Root().m_searchFlags |= kSearchEdgeReleased;
}
void ExtStrict(CSearchBoard& board) {
    SettingsOf(board).ExtEdgeStrict = true;
}

class KingZones : public test::ReplyRule {};

TEST_P(KingZones, AreNotLeft) {
    test::CheckReplyCase(GetParam());
}

constexpr const char* kB2 = "8/8/8/8/8/8/1k6/6KR";
constexpr const char* kC2 = "8/8/8/8/8/8/2k5/6KR";

INSTANTIATE_TEST_SUITE_P(
    Corner,
    KingZones,
    testing::Values(
        TReplyCase{"C2IsThreeSquares", kCorner, kB2, 4, "b2c2", false, Near<3>},
        TReplyCase{"C2IsMoreThanTwoSquares", kCorner, kB2, 4, "b2c2", true, Near<2>},
        TReplyCase{"C2IsTwoMoves", kCorner, kB2, 4, "b2c2", false, Near<-2>},
        TReplyCase{"C2IsMoreThanOneMove", kCorner, kB2, 4, "b2c2", true, Near<-1>},
        TReplyCase{"D2IsThreeMoves", kCorner, kC2, 4, "c2d2", true, Near<-2>},
        TReplyCase{"BackToB2", kCorner, kC2, 4, "c2b2", false, Near<2>},
        TReplyCase{"Unset", kCorner, kC2, 4, "c2d2", false},
        // The king steps to d8 and is mated on the last rank at once.
        TReplyCase{"WithAMateAtOnce", kCorner, "2k5/8/3K4/8/8/8/8/7R", 4, "c8d8", false, Near<2>},
        TReplyCase{"WithoutTheMate", kCorner, "2k5/8/3K4/8/8/8/8/7R", 4, "c8b7", false, Near<2>},
        TReplyCase{
            "OutsideWithoutTheMate", kCorner, "3k4/8/3K4/8/8/8/8/6R1", 4, "d8e8", true, Near<2>}),
    test::NameOfCase);

INSTANTIATE_TEST_SUITE_P(
    Edge,
    KingZones,
    testing::Values(
        TReplyCase{"OffTheEdge", kEdge, "4k3/7p/8/8/8/8/8/R3K3", 4, "e8e7", true},
        TReplyCase{"AlongTheEdge", kEdge, "4k3/8/8/8/8/8/8/R3K3", 4, "e8d8", false},
        TReplyCase{"AnotherMan", kEdge, "8/4k2p/8/8/8/8/8/R3K3", 4, "h7h6", false},
        TReplyCase{"ToG7", kEdge, "6k1/8/8/8/8/8/8/R3K3", 4, "g8g7", true},
        TReplyCase{"ToG7WithIt", kEdge, "6k1/8/8/8/8/8/8/R3K3", 4, "g8g7", false, InclCorner},
        TReplyCase{"ToF7WithIt", kEdge, "6k1/8/8/8/8/8/8/R3K3", 4, "g8f7", true, InclCorner},
        TReplyCase{"BeforeTheLastMove", kEdge, "4k3/8/8/8/8/8/8/R3K3", 2, "e8e7", false},
        TReplyCase{"OfTheLastPass",
                   kEdge,
                   "4k3/8/8/8/8/8/8/R3K3",
                   4,
                   "e8e7",
                   false,
                   [](CSearchBoard& board) { board.Root().m_pass = kPassComplete; }}),
    test::NameOfCase);

INSTANTIATE_TEST_SUITE_P(
    StrictEdge,
    KingZones,
    testing::Values(
        TReplyCase{"AnyMove", kEdge, "4k3/8/8/8/8/8/8/R3K3", 4, "e8d8", true, Strict},
        TReplyCase{"AnotherMan", kEdge, "4k3/7p/8/8/8/8/8/R3K3", 4, "h7h6", false, Strict},
        TReplyCase{"WithAMateAtOnce", kEdge, "2k5/8/3K4/8/8/8/8/7R", 4, "c8d8", false, Strict},
        TReplyCase{"WhenReleased", kEdge, "4k3/8/8/8/8/8/8/R3K3", 4, "e8d8", false, StrictReleased},
        TReplyCase{"OutOfACheck", kEdge, "R3k3/8/8/8/8/8/8/4K3", 4, "e8e7", true, Strict},
        TReplyCase{
            "ADrivenStep", kEdge, "8/R3k3/8/8/8/8/8/4K3", 4, "e7e8", false, StrictWithExceptions},
        TReplyCase{"ADrivenStepInward",
                   kEdge,
                   "R3k3/8/8/8/8/8/8/4K3",
                   4,
                   "e8e7",
                   true,
                   StrictWithExceptions},
        TReplyCase{
            "AFreeStep", kEdge, "4k3/8/8/8/8/8/8/R3K3", 4, "e8d8", true, StrictWithExceptions}),
    test::NameOfCase);

INSTANTIATE_TEST_SUITE_P(
    ExtEdge,
    KingZones,
    testing::Values(
        TReplyCase{"ToTheSecondRing", kExtEdge, "4k3/8/8/8/8/8/8/R3K3", 4, "e8e7", false},
        TReplyCase{"ToTheThirdRing", kExtEdge, "8/4k3/8/8/8/8/8/R3K3", 4, "e7e6", true},
        TReplyCase{"ToTheCentre", kExtEdge, "8/8/4k3/8/8/8/8/R3K3", 4, "e6e5", true},
        TReplyCase{"BackToTheEdge", kExtEdge, "8/4k3/8/8/8/8/8/R3K3", 4, "e7e8", false, ExtStrict},
        TReplyCase{
            "AlongTheSecondRing", kExtEdge, "8/4k3/8/8/8/8/8/R3K3", 4, "e7d7", true, ExtStrict},
        TReplyCase{"AnotherMan", kExtEdge, "8/4k2p/8/8/8/8/8/R3K3", 4, "h7h6", false, ExtStrict}),
    test::NameOfCase);

}  // namespace
}  // namespace quillmere
