#include "core/chess_exception.h"
#include "problems/problem_writer.h"
#include "session/regression_log.h"
#include "session/regression_test.h"
#include "session/silent_services.h"
#include "tests/support/problems.h"
#include "tests/support/temporary_folder.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace quillmere {
namespace {

namespace fs = std::filesystem;

class CQuestions final : public IQuestionService {
public:
    EReply Ask(EMessage question, const std::string& /*text*/) override {
        asked.push_back(question);
        return answer;
    }
    void Tell(EMessage /*title*/, const std::string& text) override { told.push_back(text); }

    EReply answer = EReply::kNo;
    std::vector<EMessage> asked;
    std::vector<std::string> told;
};

class CObserver final : public IRegressionObserver {
public:
    void OnProblem(TChessProblem& problem) override {
        begun.push_back(problem.number);
        if (onProblem)
            onProblem(problem);
    }
    void OnLines(std::string_view text) override { lines += text; }
    void OnResult(const TTestResult& result) override { results.push_back(result); }

    std::vector<i32> begun;
    std::string lines;
    std::vector<TTestResult> results;
    std::function<void(TChessProblem&)> onProblem;
};

// A log without the times.
std::string Timeless(const std::string& log) {
    return std::regex_replace(log, std::regex(R"(\(\d+ msec\))"), "(T)");
}

std::string SortedLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    std::ranges::sort(lines);
    std::string sorted;
    for (const std::string& line : lines)
        sorted += line + "\n";
    return sorted;
}

class RegressionTestTest : public ::testing::Test {
protected:
    RegressionTestTest() {
        m_request.threads = 1;
        m_request.logFile = LogFile();
        m_settings.programFolder = m_folder.Path();
    }
    fs::path LogFile() const { return m_folder.Path() / "RegressionTest.log"; }
    std::string Log() const { return Timeless(test::ReadFile(LogFile())); }

    TChessProblem& Add(std::unique_ptr<TChessProblem> problem) {
        TChessProblem& added = *problem;
        m_collection.Insert(std::move(problem));
        return added;
    }
    TRegressionSummary Run() {
        CRegressionTest test(Wiring());
        return test.Run(m_request);
    }
    TRegressionWiring Wiring() {
        return {m_collection,
                m_settings,
                {&m_status, &m_repaint, &m_questions, &m_tick},
                m_tables,
                m_tablebase,
                &m_observer};
    }

    test::CTemporaryFolder m_folder;
    TProblemCollection m_collection;
    TSessionSettings m_settings;
    CSilentStatus m_status;
    CSilentRepaint m_repaint;
    CSilentTick m_tick;
    CQuestions m_questions;
    CNoTables m_tables;
    CNoTablebase m_tablebase;
    CObserver m_observer;
    TRegressionRequest m_request;
};

TEST_F(RegressionTestTest, EachKindOfStatement_GetsItsLine) {
    Add(test::DirectMate(1, test::kMateInOne, 1, {"h1h8"}));
    Add(test::DirectMate(2, test::kMateInOne, 1, {"b6c6"}));
    Add(test::DirectMate(3, test::kMateInOne, 1));
    Add(test::DirectMate(4, test::kMateInTwo, 1));
    TChessProblem& all = Add(test::DirectMate(5, test::kMateInTwo, 2, {"c6c7", "c6b6"}));
    all.flags |= kProblemAllSolutions;
    TChessProblem& variant = Add(test::DirectMate(6, test::kMateInOne, 1));
    test::AddMainVariant(variant, {"h1h8"});
    TChessProblem& none = Add(test::DirectMate(7, test::kMateInTwo, 1));
    none.flags |= kProblemHasAnswer;
    const TRegressionSummary summary = Run();
    EXPECT_EQ(Log(),
              "[SnglSolution, 1thrd(s)] Test #1 M0 ok (T).\n"
              "[SnglSolution, 1thrd(s)] Test #2 M0 failed:\n"
              "\tfound:\n\t\tRh1-h8\n\tshould be:\n\t\tKb6-c6\n"
              "[SnglSolution, 1thrd(s)] Prob.#3 M0 Rh1-h8 (T).\n"
              "[SnglSolution, 1thrd(s)] Prob.#4 M0 No solution (T).\n"
              "[AllSolutions, 1thrd(s)] Test #5 M0 ok (T).\n"
              "[SnglSolution, 1thrd(s)] Test #6 M0 ok (T).\n"
              "[SnglSolution, 1thrd(s)] Test #7 M0 ok (T).\n");
    EXPECT_EQ(summary.Count(ETestVerdict::kAsExpected), 4);
    EXPECT_EQ(summary.Count(ETestVerdict::kDifferent), 1);
    EXPECT_EQ(summary.Count(ETestVerdict::kNotStated), 2);
    EXPECT_EQ(summary.Total(), 7);
    EXPECT_FALSE(summary.isInterrupted);
    EXPECT_EQ(Timeless(m_observer.lines), Log());
    ASSERT_EQ(m_observer.results.size(), 7U);
    const TTestResult& first = m_observer.results[0];
    EXPECT_EQ(first.found, (std::vector<TToldMove>{{"Rh1-h8", "h1h8"}}));
    EXPECT_EQ(first.expected, first.found);
    EXPECT_EQ(first.solved, ESolveVerdict::kProvedMate);
    EXPECT_EQ(first.halfMoves, 1);
    EXPECT_EQ(first.threads, 1);
    EXPECT_EQ(first.fen.substr(0, 19), "k7/8/1K6/8/8/8/8/7R");
}

TEST_F(RegressionTestTest, MirrorPass_ComparesInMirroredSquares) {
    Add(test::DirectMate(1, test::kMateInOne, 1, {"h1h8"}));
    Add(test::DirectMate(2, test::kMateInOne, 1, {"b6c6"}));
    m_request.withMirror = true;
    Run();
    EXPECT_EQ(Log(),
              "[SnglSolution, 1thrd(s)] Test #1 M0 ok (T).\n"
              "[SnglSolution, 1thrd(s)] Test #1 M1 ok (T).\n"
              "[SnglSolution, 1thrd(s)] Test #2 M0 failed:\n"
              "\tfound:\n\t\tRh1-h8\n\tshould be:\n\t\tKb6-c6\n"
              "[SnglSolution, 1thrd(s)] Test #2 M1 failed:\n"
              "\tfound:\n\t\tRa1-a8\n\tshould be:\n\t\tKg6-f6\n");
    EXPECT_EQ(m_observer.results[1].fen.substr(0, 19), "7k/8/6K1/8/8/8/8/R7");
    EXPECT_EQ(m_observer.results[1].description, "Mirror: ");
}

TEST_F(RegressionTestTest, Passes_FollowTheFlagsAndTheRights) {
    const auto add = [&](i32 number, std::string_view fen, u32 flags) {
        Add(test::DirectMate(number, fen, 1, {"h1h8"})).flags |= flags;
    };
    add(1, test::kMateInOne, kProblemNoMirror);
    add(2, test::kMateInOne, kProblemMirrorOnly);
    add(3, test::kMateInOne, kProblemMirrorOnly | kProblemNoMirror);
    add(4, "8/8/8/8/8/5k2/8/4K2R", 0);
    m_request.withMirror = true;
    const auto passes = [&] {
        std::string text;
        for (const auto& [problem, list] : PlannedTests(m_collection, m_request)) {
            text += std::to_string(problem->number) + ":";
            for (const int pass : list)
                text += std::to_string(pass);
            text += " ";
        }
        return text;
    };
    EXPECT_EQ(passes(), "1:0 2:1 3: 4:0 ");
    m_request.withMirror = false;
    EXPECT_EQ(passes(), "1:0 2: 3: 4:0 ");
    m_request.first = m_request.last = 2;
    EXPECT_EQ(passes(), "2: ");
    EXPECT_EQ(Run().Count(ETestVerdict::kSkipped), 1);
    EXPECT_EQ(Log(), "Test #2 skipped: no pass is due: only the mirror image would be solved\n");
}

TEST_F(RegressionTestTest, WhatCannotBeSolved_IsToldAndCounted) {
    Add(test::DirectMate(1, test::kMateInOne, 1, {"h1h8"})).SetStipulation(kSelfmate, 5);
    Add(test::DirectMate(2, "8/8/1K6/8/8/8/8/7R", 1, {"h1h8"}));
    Add(test::DirectMate(3, "k6R/8/1K6/8/8/8/8/8", 1, {"h8h7"}));
    Add(test::DirectMate(4, test::kMateInOne, 1))
        .SetStipulation(kNoStipulation, kHalfMovesWithoutStipulation);
    Add(test::DirectMate(5, test::kMateInOne, 1, {"h1h8"}));
    const TRegressionSummary summary = Run();
    EXPECT_EQ(Log(),
              "Test #1 skipped: Problem 1 is a selfmate. Selfmates cannot be solved yet; a direct "
              "mate would be no solution of it.\n"
              "Test #2 M0 faulty: Illegal number of kings.\n"
              "Test #3 M0 faulty: Black king cannot be checked in the mate task starting "
              "postition.\n"
              "Test #4 skipped: the problem has no stipulation\n"
              "[SnglSolution, 1thrd(s)] Test #5 M0 ok (T).\n");
    EXPECT_EQ(summary.Count(ETestVerdict::kSkipped), 2);
    EXPECT_EQ(summary.Count(ETestVerdict::kFaulty), 2);
    EXPECT_EQ(summary.Count(ETestVerdict::kAsExpected), 1);
}

TEST_F(RegressionTestTest, Clauses_SkipOrGiveUpAllSolutions) {
    Add(test::DirectMate(1, test::kMateInOne, 1, {"h1h8"})).requires_ = {"R"};
    Add(test::DirectMate(2, test::kMateInOne, 1, {"h1h8"})).flags |= kProblemRequiresSyzygy;
    TChessProblem& all = Add(test::DirectMate(3, test::kMateInOne, 1, {"h1h8"}));
    all.flags |= kProblemAllSolutions;
    all.allSolutionsRequires = {"R"};
    Add(test::DirectMate(4, test::kMateInOne, 1, {"h1h8"})).flags |=
        kProblemAllSolutions | kProblemAllSolutionsRequiresSyzygy;
    Run();
    EXPECT_EQ(Log(),
              "Requires clause not satisfied\n"
              "Test #1 skipped: Requires clause not satisfied\n"
              "RequiresSyzygy not satisfied\n"
              "Test #2 skipped: RequiresSyzygy not satisfied\n"
              "AllSolutionsRequires clause not satisfied\n"
              "[SnglSolution, 1thrd(s)] Test #3 M0 ok (T).\n"
              "AllSolutionsRequiresSyzygy not satisfied\n"
              "[SnglSolution, 1thrd(s)] Test #4 M0 ok (T).\n");
    EXPECT_TRUE(all.Has(kProblemAllSolutions));
}

TEST_F(RegressionTestTest, TimeLimit_LeavesTheTestUndecidedAndGoesOn) {
    Add(test::DirectMate(1, test::kEndless, test::kEndlessMoves, {"a5a4"}));
    Add(test::DirectMate(2, test::kMateInOne, 1, {"h1h8"}));
    m_request.timeLimitSeconds = 1;
    const TRegressionSummary summary = Run();
    EXPECT_EQ(Log(),
              "Solving time limit hit: 1 seconds\n"
              "Test #1 M0 undecided: the solving time limit was hit\n"
              "[SnglSolution, 1thrd(s)] Test #2 M0 ok (T).\n");
    EXPECT_EQ(summary.Count(ETestVerdict::kUndecided), 1);
    EXPECT_EQ(m_settings.solvingTimeLimitSeconds, kNoTimeLimit);
    EXPECT_FALSE(m_settings.regressionRunning);
}

TEST_F(RegressionTestTest, QuickForm_SetsItsLimitForTheRunOnly) {
    Add(test::DirectMate(1, test::kMateInOne, 1, {"h1h8"}));
    u32 during = 0;
    bool wasRunning = false;
    m_observer.onProblem = [&](TChessProblem&) {
        during = m_settings.solvingTimeLimitSeconds;
        wasRunning = m_settings.regressionRunning;
    };
    m_settings.solvingTimeLimitSeconds = 500;
    m_request.isQuick = true;
    Run();
    EXPECT_EQ(during, 64U);
    EXPECT_TRUE(wasRunning);
    EXPECT_EQ(m_settings.solvingTimeLimitSeconds, 500U);
    EXPECT_FALSE(m_settings.regressionRunning);
}

TEST_F(RegressionTestTest, OrderOnly_IsComparedWithoutASearch) {
    TChessProblem& problem = Add(test::DirectMate(1, test::kEndless, test::kEndlessMoves));
    problem.flags |= kProblemHasExpectedSort | kProblemExpectedSortOnly;
    Run();
    EXPECT_EQ(Log(), "[SnglSolution, 1thrd(s)] Test #1 M0 ok (T) - ExpectedSortWhiteMovesOnly.\n");
    problem.expectedSortWhiteMoves = {test::MoveOf("h1h2")};
    Run();
    EXPECT_EQ(Log().substr(0, 44), "[SnglSolution, 1thrd(s)] Test #1 M0 failed: ");
    EXPECT_EQ(m_observer.results.back().remark + "\n", Log().substr(44));
    EXPECT_EQ(m_observer.results.back().verdict, ETestVerdict::kDifferent);
}

TEST_F(RegressionTestTest, MainVariant_IsWalkedWhereTheProblemAsksForIt) {
    TChessProblem& right = Add(test::DirectMate(1, test::kMateInTwo, 2, {"c6c7"}));
    right.flags |= kProblemGuiCheck;
    right.guiCheckRepeat = 2;
    test::AddMainVariant(right, {"c6c7", "a8a7", "h1a1"});
    TChessProblem& wrong = Add(test::DirectMate(2, test::kMateInTwo, 2, {"c6c7"}));
    wrong.flags |= kProblemGuiCheck;
    wrong.guiCheckRepeat = 2;
    test::AddMainVariant(wrong, {"c6c7", "a8a7", "h1h7"});
    m_request.withMirror = true;
    const TRegressionSummary summary = Run();
    EXPECT_EQ(Log(),
              "[SnglSolution, 1thrd(s)] Test #1 M0 ok (T).\n"
              "Test #1 M0 main variant ok: the moves were found\n"
              "[SnglSolution, 1thrd(s)] Test #1 M1 ok (T).\n"
              "Test #1 M1 main variant ok: the moves were found\n"
              "[SnglSolution, 1thrd(s)] Test #2 M0 ok (T).\n"
              "Failed: Error in auxMate:\n\nexpected Rh1-h7\nfound Rh1-a1\n"
              "Test #2 M0 main variant failed: auxMate: expected Rh1-h7, found Rh1-a1\n"
              "[SnglSolution, 1thrd(s)] Test #2 M1 ok (T).\n"
              "Failed: Error in auxMate:\n\nexpected Ra1-a7\nfound Ra1-h1\n"
              "Test #2 M1 main variant failed: auxMate: expected Ra1-a7, found Ra1-h1\n");
    EXPECT_EQ(summary.Count(ETestVerdict::kAsExpected), 2);
    EXPECT_EQ(summary.Count(ETestVerdict::kDifferent), 2);
}

TEST_F(RegressionTestTest, FileSide_StaysAsItWas) {
    TChessProblem& problem = Add(test::DirectMate(1, test::kMateInTwo, 2, {"c6b6"}));
    problem.flags |= kProblemGuiCheck;
    problem.description = "A rook";
    test::AddMainVariant(problem, {"c6b6", "a8b8", "h1h8"});
    ASSERT_TRUE(problem.PlayMove(test::MoveOf("h1h2")));
    const TChessboard* const node = problem.currentNode;
    const std::string before = WriteProblems(m_collection);
    m_request.withMirror = true;
    Run();
    EXPECT_EQ(WriteProblems(m_collection), before);
    EXPECT_EQ(problem.currentNode, node);
    EXPECT_EQ(RunStateOf(problem).solved, nullptr);
}

TEST_F(RegressionTestTest, SecondRun_KeepsTheFirstLogAsBackup) {
    Add(test::DirectMate(1, test::kMateInOne, 1, {"h1h8"}));
    test::WriteFile(LogFile(), "old\n");
    Run();
    EXPECT_EQ(test::ReadFile(LogFile().string() + ".BAK"), "old\n");
    EXPECT_EQ(Log(), "[SnglSolution, 1thrd(s)] Test #1 M0 ok (T).\n");
}

// A collection with a line of each kind.
class RegressionRunsTest : public RegressionTestTest {
protected:
    RegressionRunsTest() {
        for (i32 number = 1; number <= 12; ++number) {
            switch (number % 4) {
            case 0:
                Add(test::DirectMate(number, test::kMateInTwo, 2, {"c6b6", "c6c7"})).flags |=
                    kProblemAllSolutions;
                break;
            case 1:
                Add(test::DirectMate(number, test::kMateInOne, 1, {"h1h8"}));
                break;
            case 2:
                Add(test::DirectMate(number, test::kMateInTwo, 2, {"h1h2"}));
                break;
            default:
                Add(test::DirectMate(number, test::kMateInTwo, 1)).requires_ = {"Q"};
            }
        }
        m_request.withMirror = true;
    }
};

TEST_F(RegressionRunsTest, TwoJobs_GiveTheSameBlocksAsOne) {
    const TRegressionSummary one = Run();
    const std::string log = Log();
    m_request.jobs = 2;
    const TRegressionSummary two = Run();
    EXPECT_EQ(SortedLines(Log()), SortedLines(log));
    for (int i = 0; i < kTestVerdictCount; ++i)
        EXPECT_EQ(two.counts[i], one.counts[i]);
    // A block of several lines is never broken.
    const std::string block = "M0 failed:\n\tfound:\n\t\tKc6-c7\n\tshould be:\n\t\tRh1-h2\n";
    for (const char* number : {"#2 ", "#6 ", "#10 "})
        EXPECT_NE(Log().find(number + block), std::string::npos) << Log();
}

TEST_F(RegressionRunsTest, ResumedRun_GivesTheSameResultsFromWhereverTheLogEnds) {
    const TRegressionSummary whole = Run();
    const std::string log = test::ReadFile(LogFile());
    m_request.isResumed = true;
    for (std::size_t length = 0; length <= log.size(); length += 37) {
        test::WriteFile(LogFile(), log.substr(0, length));
        m_observer = CObserver();
        const TRegressionSummary resumed = Run();
        for (int i = 0; i < kTestVerdictCount; ++i)
            ASSERT_EQ(resumed.counts[i], whole.counts[i]) << length << test::ReadFile(LogFile());
        ASSERT_EQ(static_cast<int>(m_observer.results.size()), whole.Total());
        const std::string after = test::ReadFile(LogFile());
        ASSERT_EQ(after.substr(0, length), log.substr(0, length));
        m_observer = CObserver();
        const TRegressionSummary again = Run();
        ASSERT_EQ(again.fromLog, whole.Total()) << length << after;
        ASSERT_EQ(test::ReadFile(LogFile()), after);
        ASSERT_TRUE(m_observer.begun.empty());
    }
}

TEST_F(RegressionRunsTest, ResumedRun_SolvesAnewWhereAllSolutionsAreWantedNow) {
    Run();
    m_request.isResumed = true;
    m_request.wantAll = true;
    // Those that were run for the first solution, and not the skipped ones nor those run for all.
    EXPECT_EQ(Run().fromLog, 3 + 6);
}

TEST_F(RegressionTestTest, ResumedRun_RefusesALogOfAnotherFile) {
    Add(test::DirectMate(1, test::kMateInOne, 1, {"h1h8"}));
    const std::string log = "[SnglSolution, 1thrd(s)] Test #7 M0 ok (5 msec).\n";
    test::WriteFile(LogFile(), log);
    m_request.isResumed = true;
    try {
        Run();
        FAIL() << "it was taken";
    } catch (const ChessException& fault) {
        EXPECT_EQ(fault.Id(), EMessage::kRegressionLogOfOtherFile);
    }
    EXPECT_EQ(test::ReadFile(LogFile()), log);
    EXPECT_FALSE(m_settings.regressionRunning);
}

TEST_F(RegressionTestTest, ResumedRun_DoesThePassThatWasNotDueBefore) {
    Add(test::DirectMate(1, test::kMateInOne, 1, {"h1h8"})).flags |= kProblemMirrorOnly;
    EXPECT_EQ(Run().Count(ETestVerdict::kSkipped), 1);
    m_request.isResumed = true;
    EXPECT_EQ(Run().fromLog, 1);
    m_request.withMirror = true;
    EXPECT_EQ(Run().Count(ETestVerdict::kAsExpected), 1);
}

TEST_F(RegressionTestTest, ResumedRun_WalksTheMainVariantAgainThatWasNotWalkedToItsEnd) {
    TChessProblem& problem = Add(test::DirectMate(1, test::kMateInTwo, 2, {"c6b6"}));
    problem.flags |= kProblemGuiCheckBestDefence;
    test::AddMainVariant(problem, {"c6b6", "a8b8", "h1h8"});
    test::WriteFile(LogFile(), "[SnglSolution, 1thrd(s)] Test #1 M0 ok (5 msec).\n");
    m_request.isResumed = true;
    EXPECT_EQ(Run().fromLog, 0);
    EXPECT_EQ(Run().fromLog, 1);
}

TEST_F(RegressionTestTest, Stop_EndsTheRunAndTellsNothingOfWhatWasNotFinished) {
    Add(test::DirectMate(1, test::kMateInOne, 1, {"h1h8"}));
    Add(test::DirectMate(2, test::kEndless, test::kEndlessMoves, {"a5a4"}));
    Add(test::DirectMate(3, test::kMateInOne, 1, {"h1h8"}));
    for (const int jobs : {1, 2}) {
        m_request.jobs = jobs;
        m_observer = CObserver();
        CRegressionTest test(Wiring());
        m_observer.onProblem = [&](TChessProblem& problem) {
            if (problem.number == 2)
                test.Stop();
        };
        const TRegressionSummary summary = test.Run(m_request);
        EXPECT_TRUE(summary.isInterrupted);
        EXPECT_EQ(Log().find("#2"), std::string::npos) << Log();
        EXPECT_EQ(summary.Count(ETestVerdict::kUndecided), 0);
    }
}

TEST_F(RegressionTestTest, FaultOfTheLog_EndsTheRunAndGivesTheSettingsBack) {
    Add(test::DirectMate(1, test::kMateInOne, 1, {"h1h8"}));
    m_request.logFile = m_folder.Path() / "missing" / "a.log";
    EXPECT_THROW(Run(), ChessException);
    EXPECT_FALSE(m_settings.regressionRunning);
}

TEST_F(RegressionTestTest, MenuCommand_AsksAndRunsByTheAnswer) {
    const fs::path before = fs::current_path();
    fs::current_path(m_folder.Path());
    Add(test::DirectMate(1, test::kMateInOne, 1, {"h1h8"}));
    const CSolveControl control(m_collection, Wiring().services, m_settings);
    const struct {
        EReply answer;
        bool isStarted;
        const char* log;
    } kRows[] = {
        {EReply::kCancel, false, ""},
        {EReply::kNo, true, "[SnglSolution, 1thrd(s)] Test #1 M0 ok (T).\n"},
        {EReply::kYes,
         true,
         "[SnglSolution, 1thrd(s)] Test #1 M0 ok (T).\n"
         "[SnglSolution, 1thrd(s)] Test #1 M1 ok (T).\n"},
    };
    m_collection.Find(1)->threads = 1;
    CRegressionTest test(Wiring());
    for (const auto& row : kRows) {
        m_questions.answer = row.answer;
        EXPECT_EQ(test.StartRegressionTest(true, control), row.isStarted);
        test.Wait();
        if (row.isStarted) {
            EXPECT_EQ(Log(), row.log);
        }
        EXPECT_FALSE(m_settings.regressionRunning);
        EXPECT_EQ(m_settings.solvingTimeLimitSeconds, kNoTimeLimit);
    }
    EXPECT_EQ(m_questions.asked, (std::vector<EMessage>(3, EMessage::kRegressionQuestion)));
    fs::current_path(before);
}

TEST_F(RegressionTestTest, MenuCommand_WhileSolving_IsRefused) {
    TChessProblem& problem = Add(test::DirectMate(1, test::kEndless, test::kEndlessMoves));
    CSolveControl control(m_collection, Wiring().services, m_settings);
    TStartRequest start;
    start.threads = 1;
    ASSERT_TRUE(control.StartSolve(problem, false, start));
    CRegressionTest test(Wiring());
    EXPECT_FALSE(test.StartRegressionTest(false, control));
    EXPECT_EQ(m_questions.told, std::vector<std::string>{"Solving is pending."});
    EXPECT_TRUE(m_questions.asked.empty());
    control.StopSolve(problem);
}

TEST_F(RegressionTestTest, Language_CannotBeChangedDuringARun) {
    EXPECT_TRUE(MayChangeLanguage(m_settings, m_questions));
    m_settings.regressionRunning = true;
    EXPECT_FALSE(MayChangeLanguage(m_settings, m_questions));
    EXPECT_EQ(m_questions.told,
              std::vector<std::string>{"Language cannot be changed during regression test."});
}

}  // namespace
}  // namespace quillmere
