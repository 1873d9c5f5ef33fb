// The small rules and texts of a session.
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/heuristics_parser.h"
#include "session/engine_log.h"
#include "session/levels_in_use.h"
#include "session/options.h"
#include "session/progress_text.h"
#include "session/questions.h"
#include "session/run_engine.h"
#include "tests/support/sessions.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <regex>

namespace quillmere {
namespace {

// Progress

TEST(ProgressText, Line_TellsDepthSideAndPercent) {
    EXPECT_EQ(SearchProgressText(5, 12.5, "", 0, ELanguage::kEnglish), "Searching for #5: 12.50%");
    EXPECT_EQ(SearchProgressText(5, 0, kBlackSearchSuffix, 0, ELanguage::kEnglish),
              "Searching for #5 (b): 0.00%");
    EXPECT_EQ(SearchProgressText(12, 99.999, "", 7, ELanguage::kEnglish),
              "Searching for #12 (of at least #7) : 100.00%");
    EXPECT_EQ(SearchProgressText(5, 12.5, "", 0, ELanguage::kPolish), "Poszukiwanie #5: 12.50%");
    EXPECT_EQ(SearchProgressText(5, 12.5, "", 0, ELanguage::kUkrainian), "Пошук #5: 12.50%");
}

TEST(ProgressText, DataSize_ChangesItsUnitAtOneGigabyte) {
    constexpr u64 kMegabyte = u64{1} << 20;
    EXPECT_EQ(DataSizeText(0), "0MB");
    EXPECT_EQ(DataSizeText(kMegabyte - 1), "0MB");
    EXPECT_EQ(DataSizeText(1023 * kMegabyte), "1023MB");
    EXPECT_EQ(DataSizeText(1024 * kMegabyte), "1.0GB");
    EXPECT_EQ(DataSizeText(1536 * kMegabyte), "1.5GB");
}

TEST(ProgressText, FoundMoves_AreListedOnceThereAreAny) {
    EXPECT_EQ(FoundSoFarText({}, false, ELanguage::kEnglish), "");
    EXPECT_EQ(FoundSoFarText({"Qa1-a8", "0-0"}, false, ELanguage::kEnglish),
              "Solutions found so far: Qa1-a8, 0-0");
    EXPECT_EQ(FoundSoFarText({"Ka8-b7"}, true, ELanguage::kEnglish),
              "Refutations found so far: Ka8-b7");
}

TEST(ProgressText, Settings_NameTheWordAndWhatIsInForce) {
    TChessProblem problem;
    test::SetProblem(problem, "8/Q7/8/8/8/8/8/2k1K2R w K - 0 1", 9);
    TSearchContext context;
    TThreadContext thread(2);
    TChessboard node = *problem.position;
    node.m_searchContext = &context;
    node.m_threadContext = &thread;
    thread.rootNode = &node;
    TStatusFigures figures;
    figures.threads = 4;
    figures.temporaryBytes = u64{34} << 20;
    EXPECT_EQ(SettingsInForceText(node, figures, ELanguage::kEnglish), "Thrds=4 GR=0MB TR=34MB");
    figures.isSafeMode = true;
    node.m_pass = kPassHeuristics;
    ParseHeuristics(node, "SH_KEYLINE(A)");
    const std::string text = SettingsInForceText(node, figures, ELanguage::kEnglish);
    EXPECT_TRUE(text.starts_with("SH_KEYLINE(A)")) << text;
    EXPECT_TRUE(text.ends_with(" Safe mode ON Thrds=4 GR=0MB TR=34MB")) << text;
}

// The log

TEST(EngineLog, Line_HasTimeProcessAndText) {
    std::tm time{};
    time.tm_year = 124;
    time.tm_mon = 2;
    time.tm_mday = 9;
    time.tm_hour = 17;
    time.tm_min = 5;
    EXPECT_EQ(EngineLogLine(time, 4711, "some text"), "2024-03-09 17:05:00, 4711: some text\n");
    EXPECT_EQ(EngineLogLine(time, 1, "a\nb"), "2024-03-09 17:05:00, 1: a b\n");
}

TEST(EngineLog, End_TellsWhetherTheUserStoppedIt) {
    EXPECT_EQ(EngineEndText("1.Qa1-a8", false, "0.1.0"),
              "Engine has completed: 1.Qa1-a8, version: 0.1.0");
    EXPECT_EQ(EngineEndText("1.Qa1-a8", true, "0.1.0"), "Engine stopped: 1.Qa1-a8, version: 0.1.0");
}

TEST(EngineLog, Lines_AreAppendedInAFolderThatIsMadeForThem) {
    const test::CTemporaryFolder folder;
    const std::filesystem::path home = folder.Path() / "home";
    LogEngineEnd(home, "first", false);
    LogEngineEnd(home, "second", true);
    const std::string text = test::ReadFile(home / "chessGUI.log");
    static const std::regex lines(
        R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d, \d+: Engine has completed: first, version: [0-9.]+\n)"
        R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d, \d+: Engine stopped: second, version: [0-9.]+\n)");
    EXPECT_TRUE(std::regex_match(text, lines)) << text;
}

TEST(EngineLog, NoFolder_MeansNoLog) {
    LogEngineEnd({}, "text", false);
    EXPECT_FALSE(std::filesystem::exists("chessGUI.log"));
}

// Questions

TEST(BatchAnswers, ThreadsAreGranted_AndSolvesGoOn) {
    EXPECT_EQ(BatchAnswer(EMessage::kForceThreads), EReply::kYes);
    EXPECT_EQ(BatchAnswer(EMessage::kNavigationQuestion), EReply::kNo);
    EXPECT_EQ(BatchAnswer(EMessage::kQuitQuestion), EReply::kYes);
    EXPECT_EQ(BatchAnswer(EMessage::kIllegalMove), EReply::kNo);
    CBatchQuestions questions;
    EXPECT_EQ(questions.Ask(EMessage::kForceThreads, "text"), EReply::kYes);
}

// Rules of a run

TEST(SchedulerLevels, Bound_LeavesHalfMovesBelow) {
    struct TRow {
        int halfMoves;
        u16 flags;
        int wanted;
        int expected;
    };
    constexpr TRow kRows[] = {
        {15, 0, 9, 0},
        {16, 0, 9, 0},
        {17, 0, 9, 1},
        {21, 0, 9, 3},
        {41, 0, 9, 9},
        {41, 0, 4, 4},
        {3, 0, 9, 0},
        {17, kPositionTied, 9, 0},
        {19, kPositionTied, 9, 1},
        {21, kPositionTied, 9, 2},
        {21, kPositionBareKing, 9, 3},
    };
    for (const TRow& row : kRows)
        EXPECT_EQ(SchedulerLevelsFor(row.halfMoves, row.flags, row.wanted), row.expected)
            << row.halfMoves << " " << row.flags << " " << row.wanted;
}

TEST(RunRules, HalfMoves_AreOdd) {
    constexpr std::pair<u16, u16> kRows[] = {{0, 1}, {1, 1}, {2, 1}, {3, 3}, {4, 3}, {255, 255}};
    for (const auto& [given, expected] : kRows) {
        TChessProblem problem;
        problem.SetStipulation(kNoStipulation, given);
        EXPECT_EQ(HalfMovesToSolve(problem), expected) << given;
    }
}

TEST(RunRules, StopOptions_CountInASearchForAllSolutions) {
    struct TRow {
        u32 flags;
        int expected;
    };
    constexpr TRow kRows[] = {
        {0, 0},
        {kProblemStopOnDual, 2},
        {kProblemStopOn3Sol, 3},
        {kProblemStopOn4Sol, 4},
        {kProblemStopOn3Sol | kProblemStopOn4Sol, 3},
        {kProblemStopOnDual | kProblemStopOn4Sol, 2},
    };
    for (const TRow& row : kRows) {
        TChessProblem problem;
        problem.flags = row.flags;
        EXPECT_EQ(StopAfterKeys(problem, true), row.expected) << row.flags;
        EXPECT_EQ(StopAfterKeys(problem, false), 0) << row.flags;
    }
}

TEST(RunRules, ThreadCount_ComesFromCallThenProblemThenOptions) {
    const int before = g_options.threadCount;
    g_options.threadCount = 7;
    TChessProblem problem;
    EXPECT_EQ(ThreadsOfRun(problem, 0), 7);
    problem.threads = 3;
    EXPECT_EQ(ThreadsOfRun(problem, 0), 3);
    EXPECT_EQ(ThreadsOfRun(problem, 2), 2);
    problem.threads = 200;
    EXPECT_EQ(ThreadsOfRun(problem, 0), 64);
    g_options.threadCount = before;
}

}  // namespace
}  // namespace quillmere
