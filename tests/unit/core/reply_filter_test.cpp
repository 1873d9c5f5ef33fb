#include "core/reply_filter.h"
#include "core/rights.h"
#include "tests/support/boards.h"
#include "tests/support/search_board.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using reference::After;
using reference::FromFen;
using reference::TPlainMove;
using reference::TPosition;
using test::MoveOf;

// White's first move, black's reply, and what the filter says. Where it says that a mate may follow,
// the slow rules show why it must: the reply is not legal then, or white mates at once.
struct TFilterCase {
    std::string name;
    std::string fen;
    std::string reply;
    std::string move;
    bool mayMate;
};

bool IsNeeded(const TPosition& position, TMove move, TMove reply) {
    const TPosition after = After(position, bridge::ToPlain(move));
    const std::vector<TPlainMove> replies = LegalMoves(after);
    if (std::find(replies.begin(), replies.end(), bridge::ToPlain(reply)) == replies.end())
        return true;
    return reference::CBruteForce().MateIn(After(after, bridge::ToPlain(reply)), 1);
}

class ReplyFilterCase : public ::testing::TestWithParam<TFilterCase> {};

TEST_P(ReplyFilterCase, IsJudged) {
    const TFilterCase& row = GetParam();
    const TChessboard board = test::ValidBoard(row.fen);
    CReplyFilter filter;
    ASSERT_TRUE(filter.Build(board, MoveOf(row.reply)));
    EXPECT_TRUE(MovesEqual(filter.Reply(), MoveOf(row.reply)));
    EXPECT_EQ(filter.MayMate(MoveOf(row.move)), row.mayMate);
    EXPECT_EQ(filter.MayMate(MoveOf(row.move)), row.mayMate) << "asked again";
    EXPECT_EQ(IsNeeded(FromFen(row.fen + " w"), MoveOf(row.move), MoveOf(row.reply)), row.mayMate);
}

INSTANTIATE_TEST_SUITE_P(
    Clauses,
    ReplyFilterCase,
    ::testing::ValuesIn(std::vector<TFilterCase>{
        // A man that leaves a line.
        {"Opener", "k7/pp5p/8/3N4/8/8/8/3R2K1", "h7h6", "d5f6", true},
        {"NoOpener", "k7/pp5p/8/3N4/8/8/8/3R2K1", "h7h6", "g1f1", false},
        // The first move stands behind a man in front of the king, or takes black's there.
        {"BatteryArmedBehind", "k2B4/pp4p1/8/8/8/8/8/6KR", "g7g6", "h1h8", true},
        {"BatteryArmedByACapture", "k1b4R/pp4p1/3N4/8/8/8/8/6K1", "g7g6", "d6c8", true},
        // The same man goes on.
        {"SecondStepOfARook", "k7/pp5p/8/8/8/8/8/R5K1", "h7h6", "a1d1", true},
        {"NoSecondStepOfARook", "k7/pp5p/8/8/8/8/8/R5K1", "h7h6", "a1a6", false},
        {"SecondStepOpensTheSquareOfACapture", "k7/p6p/8/1p6/3N4/8/8/1R4K1", "h7h6", "d4b5", true},
        {"SecondStepWithoutTheCapture", "k7/p6p/8/1p6/3N4/8/8/1R4K1", "h7h6", "d4e6", false},
        {"SecondStepOfAPawn", "8/7p/pp6/k7/2K5/8/1P6/3B4", "h7h6", "b2b3", true},
        {"KingDoesNotStepTwice", "8/7p/pp6/k7/8/2K5/1P6/3B4", "h7h6", "c3c2", false},
        // The first move touches the reply.
        {"TakesTheManThatReplies", "k7/pp6/8/r7/8/1N6/8/3R2K1", "a5h5", "b3a5", true},
        {"StandsInTheWay", "k7/pp6/8/r7/8/5N2/8/6K1", "a5h5", "f3e5", true},
        {"TakesTheGoal", "k7/pp6/8/r6p/8/6N1/8/6K1", "a5g5", "g3f5", true},
        {"MovesTheManThatIsTaken", "k7/p7/1p6/2N5/8/8/8/6K1", "b6c5", "c5e4", true},
        {"LetsItsOnlyFigureBeTaken", "k7/pp6/8/8/8/8/1q6/1R4K1", "b2b1", "g1f2", false},
        // A check takes the reply away, and a king beside the reply's goal.
        {"ChecksTheKingWhereItGoes", "8/8/8/8/8/3k4/8/K6R", "d3c3", "h1h3", true},
        {"KingNextToTheGoal", "8/8/8/8/8/3k4/8/K6R", "d3c3", "a1b2", true},
        {"KingFarFromTheGoal", "8/8/8/8/8/3k4/8/K6R", "d3c4", "a1b1", false},
        // Defenders.
        {"PinsTheDefender", "k7/pb5p/8/8/8/8/8/3R1BK1", "h7h6", "f1g2", true},
        {"PinsNobody", "k7/pb5p/8/8/8/8/8/3R1BK1", "h7h6", "f1e2", false},
        {"StandsInTheWayOfTheDefender", "k7/pp5p/8/6N1/6b1/8/8/3R2K1", "h7h6", "g5e6", true},
        {"TakesTheDefender", "k7/pp5p/8/8/6b1/8/5N2/3R3K", "h7h6", "f2g4", true},
        {"LeavesTheDefender", "k7/pp5p/8/8/6b1/8/5N2/3R3K", "h7h6", "f2e4", false},
        // Promotions.
        {"PromotesNext", "k7/pp5p/4P3/8/8/8/8/6K1", "h7h6", "e6e7", true},
        {"AnotherManPromotes", "k7/pp2P2p/8/8/8/8/8/6K1", "h7h6", "g1f1", true},
        {"QueenOfBlackDefends", "k7/pp6/8/8/8/8/3p1R1K/8", "d2d1q", "h2g2", false},
        {"KnightOfBlackDoesNot", "k7/pp6/8/8/8/8/3p1R1K/8", "d2d1n", "h2g2", true},
    }),
    [](const auto& row) { return row.param.name; });

TEST(ReplyFilter, PromotionsNowAndNext_AreNotJudged) {
    const TChessboard board = test::ValidBoard("k7/pp2P2p/5P2/8/8/8/8/6K1");
    CReplyFilter filter;
    ASSERT_TRUE(filter.Build(board, MoveOf("h7h6")));
    for (const char* move : {"e7e8q", "e7e8n", "f6f7"})
        EXPECT_TRUE(filter.MayMate(MoveOf(move))) << move;
}

struct TRefusedReply {
    std::string name;
    std::string fen;
    std::string reply;
};

class RefusedReply : public ::testing::TestWithParam<TRefusedReply> {};

TEST_P(RefusedReply, IsNotBuilt) {
    CReplyFilter filter;
    EXPECT_FALSE(filter.Build(test::ValidBoard(GetParam().fen), MoveOf(GetParam().reply)));
}

INSTANTIATE_TEST_SUITE_P(Replies,
                         RefusedReply,
                         ::testing::ValuesIn(std::vector<TRefusedReply>{
                             {"WhiteMayCastle", "k7/pp5p/8/8/8/8/8/4K2R", "h7h6"},
                             {"WhiteMayCastleLong", "k7/pp5p/8/8/8/8/8/R3K3", "h7h6"},
                             {"CastlesItself", "4k2r/8/8/8/8/8/8/1K6", "e8g8"},
                             {"DoubleStep", "k7/7p/8/8/8/8/8/1K6", "h7h5"},
                             {"PinnedMan", "k1r4R/8/8/8/8/8/8/6K1", "c8c7"},
                             {"KingIntoCheck", "k7/8/8/8/8/8/8/1R4K1", "a8b8"},
                             {"KingStaysOnTheLine", "8/8/8/1k6/8/8/8/K7", "b5b5"},
                             {"NoMan", "k7/8/8/8/8/8/8/1R4K1", "d5d4"},
                             {"ManOfWhite", "k7/8/8/8/8/8/8/1R4K1", "b1c1"},
                             {"OntoAnOwnMan", "k7/p7/8/8/8/8/8/6K1", "a8a7"},
                             {"TakesTheKing", "k7/8/8/8/8/8/6q1/K7", "g2a1"},
                             {"BlockedLine", "k7/8/8/r2p4/8/8/8/6K1", "a5h5"},
                             {"NoStepOfTheFigure", "k7/8/8/r7/8/8/8/6K1", "a5b6"},
                             {"PawnWithoutItsPromotion", "k7/8/8/8/8/8/3p4/6K1", "d2d1"},
                             {"PromotionTooEarly", "k7/8/8/8/8/3p4/8/6K1", "d3d2q"},
                             {"FigurePromotes", "k7/8/8/8/8/8/3r4/6K1", "d2d1q"},
                             {"PawnTakesNothing", "k7/8/8/8/8/3p4/8/6K1", "d3e2"},
                             {"PawnTakesOverTheEdge", "k7/8/8/8/p7/8/7N/6K1", "a4h2"},
                             {"PawnTakesAhead", "k7/8/8/8/3p4/3N4/8/6K1", "d4d3"},
                             {"PawnGoesBack", "k7/8/8/3p4/8/8/8/6K1", "d5d6"},
                         }),
                         [](const auto& row) { return row.param.name; });

TEST(ReplyFilter, EnPassant_IsNotJudged) {
    // The capture in passing takes a man from a square that it does not go to.
    test::CSearchBoard board("7k/3p4/8/4P3/8/8/8/K7", 4);
    ASSERT_EQ(board.Play("d7d5"), kMoveMade);
    ASSERT_EQ(DoubleStepSquare(board.Node()), test::SquareOf("d5"));
    CReplyFilter filter;
    ASSERT_TRUE(filter.Build(board.Node(), MoveOf("h8g8")));
    EXPECT_TRUE(filter.MayMate(MoveOf("e5d6")));
    EXPECT_FALSE(filter.MayMate(MoveOf("e5e6")));
}

TEST(ReplyFilter, BlackCastlingRight_IsNoMatter) {
    CReplyFilter filter;
    EXPECT_TRUE(filter.Build(test::ValidBoard("4k2r/8/8/8/8/8/8/1K6"), MoveOf("e8e7")));
    EXPECT_TRUE(filter.Build(test::ValidBoard("4k2r/8/8/8/8/8/8/1K6"), MoveOf("h8h1")));
}

TEST(ReplyFilter, MoreMenThanAGame_AreJudged) {
    const TChessboard board = test::ValidBoard("6k1/R4ppp/8/8/NNNNNNNN/NNNNNNNN/NNNNNNNN/4K3");
    CReplyFilter filter;
    ASSERT_TRUE(filter.Build(board, MoveOf("h7h6")));
    EXPECT_TRUE(filter.MayMate(MoveOf("e1e2")));
}

}  // namespace
}  // namespace quillmere
