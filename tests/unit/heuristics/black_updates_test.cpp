// What black's reply does to the word: the key figure, the sea snake, the single queen.
#include "tests/support/boards.h"
#include "tests/support/reply_cases.h"

namespace quillmere {
namespace {

using test::CReplyLine;
using test::CSearchBoard;
using test::SettingsOf;
using test::SquareOf;

// What is left of the word after the reply, and whether the reply is given up.
struct TUpdateCase {
    const char* name;
    u32 heur;
    const char* fen;
    u16 halfMoves;
    const char* moves;
    bool isBitKept;
    bool isLeftOut;
    test::TSetUp setUp = nullptr;
};

void PrintTo(const TUpdateCase& c, std::ostream* out) {
    *out << c.name;
}

class BlackUpdates : public testing::TestWithParam<TUpdateCase> {};

TEST_P(BlackUpdates, EndThePlanThatTheReplyLeaves) {
    const TUpdateCase& c = GetParam();
    // Another bit must stay whatever happens.
    CReplyLine line(c.fen, c.halfMoves, c.heur | SH_SKIPWORSTWHITEMOVES, c.setUp);
    line.Play(c.moves);
    EXPECT_EQ(line.Node().Heur, SH_SKIPWORSTWHITEMOVES | (c.isBitKept ? c.heur : 0));
    EXPECT_EQ(line.IsLeftOut(), c.isLeftOut);
    EXPECT_EQ(line.Board().Root().Heur, c.heur | SH_SKIPWORSTWHITEMOVES);
}

std::string NameOfUpdate(const testing::TestParamInfo<TUpdateCase>& info) {
    return info.param.name;
}

// The rook on e1 pins the man on e6 to the king on e8.
void KeyRook(CSearchBoard& board) {
    SettingsOf(board).KeyWhiteFigureSquare = static_cast<u8>(SquareOf("e1"));
    SettingsOf(board).KeyWhiteFigurePinned = static_cast<u8>(SquareOf("e6"));
}
constexpr const char* kPin = "4k3/7p/4r3/8/8/8/8/K3R3";

INSTANTIATE_TEST_SUITE_P(
    KeyFigure,
    BlackUpdates,
    testing::Values(
        TUpdateCase{"AnotherMan", SH_KEYWHITEFIGURE, kPin, 8, "h7h6", true, false, KeyRook},
        TUpdateCase{"AnotherManLate", SH_KEYWHITEFIGURE, kPin, 2, "h7h6", false, false, KeyRook},
        TUpdateCase{"AnotherManBefore", SH_KEYWHITEFIGURE, kPin, 4, "h7h6", true, false, KeyRook},
        TUpdateCase{"TheKingSteps", SH_KEYWHITEFIGURE, kPin, 8, "e8f7", false, false, KeyRook},
        TUpdateCase{"AlongTheLine", SH_KEYWHITEFIGURE, kPin, 8, "e6e4", true, false, KeyRook},
        TUpdateCase{"AlongTheLineLate", SH_KEYWHITEFIGURE, kPin, 2, "e6e4", true, false, KeyRook},
        TUpdateCase{"TheKeyFigureFalls", SH_KEYWHITEFIGURE, kPin, 8, "e6e1", true, true, KeyRook},
        TUpdateCase{"WithoutAKeyFigure", SH_KEYWHITEFIGURE, kPin, 8, "h7h6", false, false}),
    NameOfUpdate);

// The rook swings between a8 and a7.
void Pendulum(CSearchBoard& board) {
    SettingsOf(board).SeaSnakePendulum1 = static_cast<u8>(SquareOf("a8"));
    SettingsOf(board).SeaSnakePendulum2 = static_cast<u8>(SquareOf("a7"));
}
void PendulumByUser(CSearchBoard& board) {
    Pendulum(board);
    SettingsOf(board).SeaSnakeByUser = true;
}
void PendulumLater(CSearchBoard& board) {
    Pendulum(board);
    board.Context().SeaSnakeOnlyAfter = {test::MoveOf("a8b8")};
}
constexpr const char* kSnake = "r6k/8/8/8/8/8/8/R3K3";

INSTANTIATE_TEST_SUITE_P(
    SeaSnake,
    BlackUpdates,
    testing::Values(
        TUpdateCase{"Swings", SH_SEASNAKE, kSnake, 8, "a8a7", true, false, Pendulum},
        TUpdateCase{"SwingsBack", SH_SEASNAKE, kSnake, 8, "a8a7 e1e2 a7a8", true, false, Pendulum},
        TUpdateCase{"Leaves", SH_SEASNAKE, kSnake, 8, "a8b8", false, false, Pendulum},
        TUpdateCase{"AnotherMan", SH_SEASNAKE, kSnake, 8, "h8g8", false, false, Pendulum},
        TUpdateCase{
            "AnotherManOfTheUsers", SH_SEASNAKE, kSnake, 8, "h8g8", true, false, PendulumByUser},
        TUpdateCase{
            "APawn", SH_SEASNAKE, "r6k/7p/8/8/8/8/8/R3K3", 8, "h7h6", true, false, Pendulum},
        TUpdateCase{"LeavesTheUsers", SH_SEASNAKE, kSnake, 8, "a8b8", true, true, PendulumByUser},
        TUpdateCase{"SwingsByTheUser", SH_SEASNAKE, kSnake, 8, "a8a7", true, false, PendulumByUser},
        TUpdateCase{"BeforeThePlan", SH_SEASNAKE, kSnake, 8, "a8b8", true, false, PendulumLater}),
    NameOfUpdate);

constexpr const char* kQueen = "k7/7p/8/8/8/2Q5/8/4K3";

INSTANTIATE_TEST_SUITE_P(
    SingleQueen,
    BlackUpdates,
    testing::Values(
        TUpdateCase{"TheKingMoves", SH_SINGLEQUEENMATE, kQueen, 8, "a8b8", true, false},
        TUpdateCase{"AnotherMan", SH_SINGLEQUEENMATE, kQueen, 8, "h7h6", false, false},
        TUpdateCase{
            "TheKingTakes", SH_SINGLEQUEENMATE, "k7/P7/8/8/8/2Q5/8/4K3", 8, "a8a7", false, false}),
    NameOfUpdate);

TEST(BlackUpdates, LeavingTheFrameIsMarked) {
    CReplyLine in(kQueen, 8, SH_SINGLEQUEENMATE);
    in.Play("a8b8");
    EXPECT_EQ(in.Node().m_searchFlags & kSearchEdgeReleased, 0);
    CReplyLine out(kQueen, 8, SH_SINGLEQUEENMATE);
    out.Play("h7h6");
    EXPECT_NE(out.Node().m_searchFlags & kSearchEdgeReleased, 0);
}

TEST(BlackUpdates, WithoutABitNothingIsTouched) {
    CReplyLine line(kPin, 8, 0, KeyRook);
    line.Play("e8f7");
    EXPECT_EQ(line.Node().Heur, 0u);
    EXPECT_FALSE(line.IsLeftOut());
}

}  // namespace
}  // namespace quillmere
