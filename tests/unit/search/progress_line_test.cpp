#include "search/progress_line.h"
#include "tests/support/search_board.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using test::CSearchBoard;

constexpr char kFen[] = "8/8/8/8/8/Q7/4p3/5k1K";
constexpr char kEnd[] = "             \r";

TEST(ProgressLine, TellsPassLineShareAndNodes) {
    CSearchBoard board(kFen, 9);
    board.Play("a3f8");
    board.Play("f1e1");
    board.Play("f8d6");
    EXPECT_EQ(ProgressLine(board.Node(), {3, 8, 12345, 0, 0}),
              std::string("Pass 2, 1. Qa3-f8, Kf1-e1, 2. Qf8-d6, 37.5% 12345") + kEnd);
}

TEST(ProgressLine, AtTheRootThereIsNoLine) {
    CSearchBoard board(kFen, 9);
    EXPECT_EQ(ProgressLine(board.Root(), {0, 0, 7, 0, 0}), std::string("Pass 2, 0.0% 7") + kEnd);
}

TEST(ProgressLine, WordRegisterAndRelaxationStandInFrontAndBehindThePass) {
    CSearchBoard board(kFen, 9);
    board.Root().Heur = 0x80004;
    board.Root().m_pass = kPassHeuristics;
    EXPECT_EQ(ProgressLine(board.Root(), {1, 4, 7, 100, -20}),
              std::string("SH:80004h,TR:100(-20) Pass 1, 25.0% 7") + kEnd);
    board.Thread().heuristics.RelaxationCount = 2;
    EXPECT_EQ(ProgressLine(board.Root(), {1, 4, 7, 0, 0}),
              std::string("SH:80004h Pass 1c, 25.0% 7") + kEnd);
}

TEST(ProgressLine, BlackBegins_TheFirstNumberIsItsOwn) {
    CSearchBoard board(kFen, 8);
    board.Play("f1e1");
    board.Play("a3d6");
    EXPECT_EQ(ProgressLine(board.Node(), {0, 1, 1, 0, 0}),
              std::string("Pass 2, 1. Kf1-e1, 2. Qa3-d6, 0.0% 1") + kEnd);
}

// The line is cut by the length of the task.
TEST(ProgressLine, LongLineIsCut) {
    struct TRow {
        u16 halfMoves;
        int shown;
    };
    for (const TRow row : {TRow{39, 24}, TRow{41, 48}, TRow{79, 48}, TRow{81, 144}}) {
        CSearchBoard board(kFen, row.halfMoves);
        const char* const kCycle[] = {"a3f8", "f1e1", "f8a3", "e1f1"};
        for (int i = 0; i + 1 < row.halfMoves; ++i)
            board.Play(kCycle[i % 4]);
        const std::string line = ProgressLine(board.Node(), {0, 1, 1, 0, 0});
        const auto moves = std::count(line.begin(), line.end(), ',') - 1;
        EXPECT_EQ(moves, std::min(row.shown, row.halfMoves - 1)) << row.halfMoves;
    }
}

}  // namespace
}  // namespace quillmere
