#include "session/regression_lines.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

constexpr TTestName kFirst{kSolveFirst, 1, 7, 0};
constexpr TTestName kAllMirrored{kSolveAll, 12, 305, 1};

TEST(RegressionLines, ThreadText_HasModeAndNumberInTwoColumns) {
    EXPECT_EQ(ThreadText(kSolveFirst, 1), "SnglSolution, 1thrd(s)");
    EXPECT_EQ(ThreadText(kSolveAll, 12), "AllSolutions,12thrd(s)");
}

TEST(RegressionLines, ResultLines_AreToTheLetter) {
    EXPECT_EQ(OkLine(kFirst, 5), "[SnglSolution, 1thrd(s)] Test #7 M0 ok (5 msec).\n");
    EXPECT_EQ(OkLine(kAllMirrored, 123456789012),
              "[AllSolutions,12thrd(s)] Test #305 M1 ok (123456789012 msec).\n");
    EXPECT_EQ(OrderOkLine(kFirst, 5),
              "[SnglSolution, 1thrd(s)] Test #7 M0 ok (5 msec) - ExpectedSortWhiteMovesOnly.\n");
    EXPECT_EQ(FailedOrderLine(kFirst, "Qa1-a2 is at 3"),
              "[SnglSolution, 1thrd(s)] Test #7 M0 failed: Qa1-a2 is at 3\n");
    EXPECT_EQ(ProblemLine(kFirst, {"Qa1-a2", "0-0"}, 17),
              "[SnglSolution, 1thrd(s)] Prob.#7 M0 Qa1-a2, 0-0 (17 msec).\n");
    EXPECT_EQ(ProblemLine(kAllMirrored, {}, 17),
              "[AllSolutions,12thrd(s)] Prob.#305 M1 No solution (17 msec).\n");
}

TEST(RegressionLines, FailedLists_StandAMoveALine) {
    EXPECT_EQ(FailedListsLines(kFirst, {"Qa1-a2", "e7-e8Q"}, {"Qa1-a3"}),
              "[SnglSolution, 1thrd(s)] Test #7 M0 failed:\n"
              "\tfound:\n"
              "\t\tQa1-a2\n"
              "\t\te7-e8Q\n"
              "\tshould be:\n"
              "\t\tQa1-a3\n");
    EXPECT_EQ(FailedListsLines(kFirst, {}, {}),
              "[SnglSolution, 1thrd(s)] Test #7 M0 failed:\n\tfound:\n\tshould be:\n");
}

TEST(RegressionLines, OtherLines_AreToTheLetter) {
    EXPECT_EQ(kRequiresLine, "Requires clause not satisfied\n");
    EXPECT_EQ(kAllSolutionsRequiresLine, "AllSolutionsRequires clause not satisfied\n");
    EXPECT_EQ(kRequiresSyzygyLine, "RequiresSyzygy not satisfied\n");
    EXPECT_EQ(kAllSolutionsRequiresSyzygyLine, "AllSolutionsRequiresSyzygy not satisfied\n");
    EXPECT_EQ(TimeLimitLine(64), "Solving time limit hit: 64 seconds\n");
    EXPECT_EQ(BestDefenceLine("Ka8-b8", "Ka8-a7"),
              "Failed: Error in best defence:\n\nexpected Ka8-b8\nfound Ka8-a7\n");
    EXPECT_EQ(AuxMateLine("Qa1-a2", "-"),
              "Failed: Error in auxMate:\n\nexpected Qa1-a2\nfound -\n");
}

TEST(RegressionLines, EndLine_NamesTheTestAndStaysOneLine) {
    EXPECT_EQ(EndLine(7, 0, ETestEnd::kUndecided, "two\nlines"),
              "Test #7 M0 undecided: two lines\n");
    EXPECT_EQ(EndLine(7, std::nullopt, ETestEnd::kSkipped, "a selfmate"),
              "Test #7 skipped: a selfmate\n");
}

TEST(RegressionLines, TextWithPercentSign_IsPrintedAsItIs) {
    EXPECT_EQ(FailedOrderLine(kFirst, "100%s %d"),
              "[SnglSolution, 1thrd(s)] Test #7 M0 failed: 100%s %d\n");
}

}  // namespace
}  // namespace quillmere
