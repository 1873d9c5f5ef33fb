#include "session/regression_lines.h"
#include "session/regression_resume.h"

#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

const TLoggedTest* Find(const TLoggedTests& tests, i32 number, std::optional<int> pass) {
    const auto found = tests.find({number, pass});
    return found == tests.end() ? nullptr : &found->second;
}

std::string MovesText(const std::vector<TToldMove>& moves) {
    std::string text;
    for (const TToldMove& move : moves)
        text += move.text + ";";
    return text;
}

TEST(RegressionResume, ResultLines_AreReadBack) {
    const TTestName first{kSolveFirst, 1, 7, 0};
    const TTestName all{kSolveAll, 12, 8, 1};
    const struct {
        std::string line;
        i32 number;
        int pass;
        ETestVerdict verdict;
        ESolveMode mode;
        int threads;
        u64 milliseconds;
        std::string found;
        std::string expected;
        std::string remark;
    } kRows[] = {
        {OkLine(first, 5), 7, 0, ETestVerdict::kAsExpected, kSolveFirst, 1, 5, "", "", ""},
        {OkLine(all, 6), 8, 1, ETestVerdict::kAsExpected, kSolveAll, 12, 6, "", "", ""},
        {OrderOkLine(first, 9), 7, 0, ETestVerdict::kAsExpected, kSolveFirst, 1, 9, "", "", ""},
        {FailedOrderLine(first, "Qa1 (3 msec)."),
         7,
         0,
         ETestVerdict::kDifferent,
         kSolveFirst,
         1,
         0,
         "",
         "",
         "Qa1 (3 msec)."},
        {FailedListsLines(first, {"Qa1-a2", "0-0"}, {"e7-e8Q"}),
         7,
         0,
         ETestVerdict::kDifferent,
         kSolveFirst,
         1,
         0,
         "Qa1-a2;0-0;",
         "e7-e8Q;",
         ""},
        {FailedListsLines(first, {}, {}),
         7,
         0,
         ETestVerdict::kDifferent,
         kSolveFirst,
         1,
         0,
         "",
         "",
         ""},
        {ProblemLine(all, {"Qa1-a2", "0-0"}, 3),
         8,
         1,
         ETestVerdict::kNotStated,
         kSolveAll,
         12,
         3,
         "Qa1-a2;0-0;",
         "",
         ""},
        {ProblemLine(all, {}, 3), 8, 1, ETestVerdict::kNotStated, kSolveAll, 12, 3, "", "", ""},
    };
    for (const auto& row : kRows) {
        const TLoggedTests tests = ReadRegressionLog(row.line);
        ASSERT_EQ(tests.size(), 1U) << row.line;
        const TLoggedTest* test = Find(tests, row.number, row.pass);
        ASSERT_NE(test, nullptr) << row.line;
        EXPECT_TRUE(test->hasResultLine);
        EXPECT_TRUE(test->result.isFromLog);
        EXPECT_EQ(test->result.verdict, row.verdict) << row.line;
        EXPECT_EQ(test->result.mode, row.mode) << row.line;
        EXPECT_EQ(test->result.threads, row.threads) << row.line;
        EXPECT_EQ(test->result.milliseconds, row.milliseconds) << row.line;
        EXPECT_EQ(MovesText(test->result.found), row.found) << row.line;
        EXPECT_EQ(MovesText(test->result.expected), row.expected) << row.line;
        EXPECT_EQ(test->result.remark, row.remark) << row.line;
    }
}

TEST(RegressionResume, EndLines_AreReadBack) {
    const TLoggedTests tests = ReadRegressionLog(
        std::string(kRequiresLine) + EndLine(3, std::nullopt, ETestEnd::kSkipped, "no tables") +
        TimeLimitLine(64) + EndLine(4, 0, ETestEnd::kUndecided, "the limit") +
        EndLine(5, 1, ETestEnd::kFaulty, "no king"));
    ASSERT_EQ(tests.size(), 3U);
    EXPECT_EQ(Find(tests, 3, std::nullopt)->result.verdict, ETestVerdict::kSkipped);
    EXPECT_EQ(Find(tests, 3, std::nullopt)->result.remark, "no tables");
    EXPECT_EQ(Find(tests, 4, 0)->result.verdict, ETestVerdict::kUndecided);
    EXPECT_FALSE(Find(tests, 4, 0)->hasResultLine);
    EXPECT_EQ(Find(tests, 5, 1)->result.verdict, ETestVerdict::kFaulty);
}

TEST(RegressionResume, EndOfTheMainVariant_AddsToTheResult) {
    const TTestName name{kSolveFirst, 1, 7, 0};
    const struct {
        std::string before;
        ETestEnd end;
        ETestVerdict verdict;
    } kRows[] = {
        {OkLine(name, 5), ETestEnd::kLineOk, ETestVerdict::kAsExpected},
        {OkLine(name, 5), ETestEnd::kLineFailed, ETestVerdict::kDifferent},
        {OkLine(name, 5), ETestEnd::kLineUndecided, ETestVerdict::kUndecided},
        {FailedListsLines(name, {}, {}), ETestEnd::kLineOk, ETestVerdict::kDifferent},
        {FailedListsLines(name, {}, {}), ETestEnd::kLineUndecided, ETestVerdict::kDifferent},
        {EndLine(7, 0, ETestEnd::kUndecided, "x"), ETestEnd::kLineOk, ETestVerdict::kUndecided},
    };
    for (const auto& row : kRows) {
        const std::string log =
            row.before + BestDefenceLine("Ka8-b8", "-") + EndLine(7, 0, row.end, "note");
        const TLoggedTests before = ReadRegressionLog(row.before);
        EXPECT_FALSE(Find(before, 7, 0)->isLineWalked);
        const TLoggedTests tests = ReadRegressionLog(log);
        ASSERT_NE(Find(tests, 7, 0), nullptr) << log;
        EXPECT_TRUE(Find(tests, 7, 0)->isLineWalked) << log;
        EXPECT_EQ(Find(tests, 7, 0)->result.verdict, row.verdict) << log;
    }
}

TEST(RegressionResume, ATestToldTwice_CountsAsToldLast) {
    const TTestName name{kSolveFirst, 1, 7, 0};
    const TLoggedTests tests =
        ReadRegressionLog(FailedListsLines(name, {"a2-a3"}, {"a2-a4"}) + OkLine(name, 5));
    ASSERT_EQ(tests.size(), 1U);
    EXPECT_EQ(Find(tests, 7, 0)->result.verdict, ETestVerdict::kAsExpected);
    EXPECT_TRUE(Find(tests, 7, 0)->result.found.empty());
}

TEST(RegressionResume, LinesThatAreNoneOfTheLogs_ArePassedOver) {
    const char* const kLines[] = {
        "\n",
        "hello\n",
        "[SnglSolution, 1thrd(s)] Test #7 M0 ok (5 msec)\n",
        "[SnglSolution, 1thrd(s)] Test #7 M0 ok (5 msec). \n",
        "[SnglSolution, 1thrd(s)] Test #7 M0 ok (x msec).\n",
        "[SnglSolution, 1thrd(s)] Test #7 M2 ok (5 msec).\n",
        "[SnglSolution, 1thrd(s)] Test #7 ok (5 msec).\n",
        "[SnglSolution, thrd(s)] Test #7 M0 ok (5 msec).\n",
        "[OtherSolution, 1thrd(s)] Test #7 M0 ok (5 msec).\n",
        "[SnglSolution, 1thrd(s)] Test # M0 ok (5 msec).\n",
        "[SnglSolution, 1thrd(s)] Test #99999999999 M0 ok (5 msec).\n",
        "[SnglSolution, 1thrd(s)] Prob.#7 M0 Qa1-a2\n",
        "[SnglSolution, 1thrd(s)] Test #7 M0 failed:\n",
        "[SnglSolution, 1thrd(s)] Test #7 M0 failed:\n\tfound:\n\t\tQa1-a2\n",
        "[SnglSolution, 1thrd(s)] Test #7 M0 failed:\n\tshould be:\n",
        "[SnglSolution, 1thrd(s)] Test #7 M0 failed: text [cut]\n",
        "Test #7 M0 main variant ok: \n",
        "Test #7 M0 finished: \n",
    };
    for (const char* line : kLines)
        EXPECT_TRUE(ReadRegressionLog(line).empty()) << line;
}

TEST(RegressionResume, LogWithLineEndsOfAnotherSystem_IsRead) {
    EXPECT_EQ(ReadRegressionLog("[SnglSolution, 1thrd(s)] Test #7 M0 ok (5 msec).\r\n").size(), 1U);
}

TEST(RegressionResume, ACutBlockThatWasEnded_KeepsItsVerdictOnceTheSecondListBegan) {
    const std::string head = "[SnglSolution, 1thrd(s)] Test #7 M0 failed:\n\tfound:\n";
    EXPECT_TRUE(ReadRegressionLog(head + "\t\tQa1 [cut]\n").empty());
    const TLoggedTests tests = ReadRegressionLog(head + "\tshould be:\n\t\te7-e8 [cut]\n");
    ASSERT_EQ(tests.size(), 1U);
    EXPECT_TRUE(Find(tests, 7, 0)->result.expected.empty());
}

// Every prefix of a log reads as the tests that its whole lines finish, in a second reading too, when
// the cut line was ended.
TEST(RegressionResume, AnyPrefixOfALog_ReadsAsTheFinishedTestsOfItsWholeLines) {
    const TTestName first{kSolveFirst, 1, 1, 0};
    const TTestName mirrored{kSolveFirst, 1, 1, 1};
    const TTestName second{kSolveAll, 2, 2, 0};
    const struct {
        std::string lines;
        std::size_t finishedAt;  // length from which on the test counts
    } kBlocks[] = {
        {OkLine(first, 12), OkLine(first, 12).size()},
        {FailedListsLines(mirrored, {"Qa1-a2"}, {"e7-e8Q", "e7-e8R"}),
         FailedListsLines(mirrored, {"Qa1-a2"}, {}).size()},
        {std::string(kAllSolutionsRequiresLine) + ProblemLine(second, {"0-0"}, 3),
         kAllSolutionsRequiresLine.size() + ProblemLine(second, {"0-0"}, 3).size()},
        {EndLine(3, std::nullopt, ETestEnd::kSkipped, "selfmate"),
         EndLine(3, std::nullopt, ETestEnd::kSkipped, "selfmate").size()},
        {TimeLimitLine(64) + EndLine(4, 0, ETestEnd::kUndecided, "limit"),
         (TimeLimitLine(64) + EndLine(4, 0, ETestEnd::kUndecided, "limit")).size()},
        {FailedOrderLine({kSolveFirst, 1, 5, 0}, "order"),
         FailedOrderLine({kSolveFirst, 1, 5, 0}, "order").size()},
    };
    std::string log;
    for (const auto& block : kBlocks)
        log += block.lines;
    for (std::size_t length = 0; length <= log.size(); ++length) {
        std::size_t expected = 0;
        std::size_t begin = 0;
        for (const auto& block : kBlocks) {
            expected += length >= begin + block.finishedAt ? 1 : 0;
            begin += block.lines.size();
        }
        const std::string prefix = log.substr(0, length);
        EXPECT_EQ(ReadRegressionLog(prefix).size(), expected) << length;
        const bool isCut = !prefix.empty() && prefix.back() != '\n';
        if (isCut) {
            EXPECT_EQ(ReadRegressionLog(prefix + std::string(kCutMark) + "\n").size(), expected)
                << length;
        }
    }
}

}  // namespace
}  // namespace quillmere
