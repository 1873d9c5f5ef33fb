#include "registers/aggregated_register.h"
#include "search/mate_search.h"
#include "search/register_access.h"
#include "search/scan_pass.h"
#include "tests/support/boards.h"
#include "tests/support/registers.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using test::CSearchBoard;
using test::MoveOf;

TVerdict Scan(CSearchBoard& board, const std::string& move) {
    return ScanFirstMove(board.Root(), MoveOf(move));
}

TEST(ScanFirstMove, AtTheLastMoveEverythingIsKnown) {
    CSearchBoard board("7k/8/6K1/8/8/8/8/R7", 1);
    EXPECT_EQ(Scan(board, "a1a8"), kMate);
    EXPECT_EQ(Scan(board, "a1a7"), kNoMate);
}

TEST(ScanFirstMove, WithTwoMovesEveryReplyIsKnown) {
    CSearchBoard board("7k/8/5K2/8/8/8/8/R7", 3);
    EXPECT_EQ(Scan(board, "f6f7"), kMate);    // Kh7 Rh1
    EXPECT_EQ(Scan(board, "f6g6"), kMate);    // Kg8 Ra8
    EXPECT_EQ(Scan(board, "a1a2"), kNoMate);  // Kg8, and there is no mate in one
}

TEST(ScanFirstMove, WithThreeMovesAReplyWithoutMateInOneIsOpen) {
    CSearchBoard board("7k/8/5K2/8/8/8/8/R7", 5);
    EXPECT_EQ(Scan(board, "f6f7"), kMate);
    EXPECT_EQ(Scan(board, "a1a2"), kDoubtful);
}

TEST(ScanFirstMove, StalemateIsNoMate) {
    CSearchBoard board("k7/8/1K6/8/8/8/8/2Q5", 5);
    EXPECT_EQ(Scan(board, "c1c7"), kNoMate);
}

TEST(ScanFirstMove, RegisterIsAskedForWhatIsExact) {
    CSearchBoard board("8/8/8/8/8/Q7/4p3/5k1K", 9);
    TAggregatedTemporaryChessboardRegister store(test::QuietSettings(1 << 20));
    store.Resize(256, true);
    board.Context().registerRoot = 3;
    EXPECT_EQ(Scan(board, "a3f8"), kDoubtful);
    board.Context().tempRegister = &store;
    EXPECT_EQ(Scan(board, "a3f8"), kDoubtful);
    board.Play("a3f8");
    EXPECT_EQ(CheckDefences(board.Node()), kMate);
    EXPECT_EQ(Scan(board, "a3f8"), kMate) << "all replies are stored now";
    board.Root().Heur = SH_AREKINGSNEAR;
    EXPECT_EQ(Scan(board, "a3f8"), kMate) << "whatever the word";
}

TEST(ScanFirstMove, DoubtfulEntriesAreNoKnowledge) {
    CSearchBoard board("8/8/8/8/8/Q7/4p3/5k1K", 9);
    TAggregatedTemporaryChessboardRegister store(test::QuietSettings(1 << 20));
    store.Resize(256, true);
    board.Context().registerRoot = 3;
    board.Context().tempRegister = &store;
    board.Play("a3f8");
    board.Play("f1e1");
    store.InsertDoubtful(7, board.Node(), 0, 0);
    EXPECT_EQ(Scan(board, "a3f8"), kDoubtful);
}

TEST(ScanFirstMove, BlacksDefenceIsLookedAtAlike) {
    CSearchBoard board("7k/8/6K1/8/8/8/8/R7", 2);
    EXPECT_EQ(Scan(board, "h8g8"), kMate);
    CSearchBoard free("7k/8/5K2/8/8/8/8/R7", 2);
    EXPECT_EQ(Scan(free, "h8h7"), kNoMate);
}

}  // namespace
}  // namespace quillmere
