// Sessions on threads of their own, behind fake services.
#include "session/options.h"
#include "session/solve_control.h"
#include "tests/support/sessions.h"
#include "tests/support/temporary_folder.h"

#include <chrono>
#include <gtest/gtest.h>
#include <optional>
#include <thread>

namespace quillmere {
namespace {

constexpr const char* kTwoMover = "8/Q7/8/8/8/8/8/2k1K2R w K - 0 1";  // 1.Qf2 and 2.0-0
constexpr const char* kManyKeys = "6k1/8/6K1/8/8/8/8/R7 w - - 0 1";
// Nobody lives to see the end of this one.
constexpr const char* kEndless = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";
constexpr u16 kEndlessHalfMoves = 15;

class SolveControlThreadTest : public testing::Test {
protected:
    void SetUp() override {
        m_options = g_options;
        m_request.threads = 2;
        m_request.memoryBytes = u64{16} << 20;
        m_settings.programFolder = m_folder.Path();
        m_control.emplace(m_collection, m_services.Services(), m_settings);
    }
    void TearDown() override {
        m_control.reset();
        EXPECT_EQ(m_services.OpenTicks(), 0);
        g_options = m_options;
    }

    TChessProblem& Add(const std::string& fen, u16 halfMoves) {
        return test::AddProblem(m_collection, m_collection.NextNumber(), fen, halfMoves);
    }
    TChessProblem& AddEndless() { return Add(kEndless, kEndlessHalfMoves); }
    bool Start(TChessProblem& problem, bool all = false) {
        return m_control->StartSolve(problem, all, m_request);
    }
    void Solve(TChessProblem& problem, bool all = false) {
        ASSERT_TRUE(Start(problem, all));
        m_control->WaitUntilIdle(problem);
    }
    // Nodes have been counted, so that the searching threads are at work.
    static void WaitForNodes(const TChessProblem& problem, u64 above = 0) {
        while (problem.nodeCount <= above)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    std::string Log() const {
        const std::filesystem::path file = m_folder.Path() / "chessGUI.log";
        return std::filesystem::exists(file) ? test::ReadFile(file) : "";
    }
    static const TRunState& State(const TChessProblem& problem) { return *FindRunState(problem); }

    using TTold = std::vector<std::pair<EMessage, std::string>>;

    test::CTemporaryFolder m_folder;
    TProblemCollection m_collection;
    test::CFakeServices m_services;
    TSessionSettings m_settings;
    TStartRequest m_request;
    std::optional<CSolveControl> m_control;
    TOptions m_options;
};

TEST_F(SolveControlThreadTest, MainSolve_ShowsTheAnswerAndPlaysTheKey) {
    TChessProblem& problem = Add(kTwoMover, 3);
    m_control->Display(&problem);
    Solve(problem);
    EXPECT_TRUE(State(problem).idle);
    EXPECT_FALSE(m_control->IsRunning(problem));
    EXPECT_EQ(State(problem).solveMode, kSolveFirst);
    EXPECT_EQ(test::TextsOf(*problem.position, State(problem).results),
              std::vector<std::string>{"Qa7-f2"});
    EXPECT_EQ(problem.PlayedMoves().size(), 1U);
    const std::vector<std::string> statuses = m_services.Statuses();
    EXPECT_EQ(statuses.front(), "Initial position type check...");
    EXPECT_TRUE(m_control->StatusText().starts_with("1.Qa7-f2 threat: 2.0-0# ("))
        << m_control->StatusText();
    EXPECT_TRUE(m_services.Told().empty());
    EXPECT_NE(Log().find(": Engine has completed: 1.Qa7-f2 threat: 2.0-0# ("), std::string::npos);
}

TEST_F(SolveControlThreadTest, SeveralSolutions_AreToldInABox) {
    TChessProblem& problem = Add(kManyKeys, 3);
    problem.flags = kProblemStopOnDual;
    m_control->Display(&problem);
    Solve(problem, true);
    EXPECT_EQ(State(problem).solveMode, kSolveAll);
    EXPECT_EQ(m_services.Told(),
              (TTold{{EMessage::kTitleMateSearchResult,
                      "Search for solutions has been stopped after detection of dual."}}));
}

TEST_F(SolveControlThreadTest, NoSolution_IsToldInABox) {
    TChessProblem& problem = Add(kTwoMover, 1);
    m_control->Display(&problem);
    Solve(problem);
    EXPECT_EQ(m_services.Told(),
              (TTold{{EMessage::kTitleMateSearchResult, "Not found any solutions for #1"}}));
    EXPECT_TRUE(problem.PlayedMoves().empty());
}

TEST_F(SolveControlThreadTest, RunningProblem_RefusesASecondStart) {
    TChessProblem& problem = AddEndless();
    ASSERT_TRUE(Start(problem));
    EXPECT_FALSE(Start(problem));
    EXPECT_EQ(m_services.Told(),
              (TTold{{EMessage::kTitleSessionInformation,
                      "Search for solution of the current problem is pending"}}));
    EXPECT_EQ(m_control->RunningCount(), 1);
    m_control->StopSolve(problem);
    EXPECT_EQ(m_control->RunningCount(), 0);
}

TEST_F(SolveControlThreadTest, Stop_LeavesAnIdleProblemThatCanStartAgain) {
    TChessProblem& problem = AddEndless();
    m_control->Display(&problem);
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(Start(problem));
        WaitForNodes(problem);
        m_control->StopSolve(problem);
        EXPECT_TRUE(State(problem).idle);
        EXPECT_EQ(State(problem).outcome.end, EEngineEnd::kStopped);
        EXPECT_TRUE(State(problem).results.empty());
        EXPECT_FALSE(State(problem).outcome.isTimeLimitHit);
    }
    EXPECT_TRUE(m_services.Told().empty());
    EXPECT_EQ(m_control->StatusText(), "Analysis stopped by user");
    EXPECT_NE(Log().find(": Engine stopped: Analysis stopped by user, version: "),
              std::string::npos);
    m_control->StopSolve(problem);  // nothing runs
}

TEST_F(SolveControlThreadTest, Pause_HoldsTheSearchUntilItIsResumed) {
    TChessProblem& problem = AddEndless();
    ASSERT_TRUE(Start(problem));
    WaitForNodes(problem);
    m_control->PauseSolve(problem);
    // Threads on their way to the next look may still count.
    u64 nodes = 0;
    do {
        nodes = problem.nodeCount;
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
    } while (problem.nodeCount != nodes);
    EXPECT_TRUE(m_control->IsRunning(problem));
    m_control->ResumeSolve(problem);
    WaitForNodes(problem, nodes);
    m_control->StopSolve(problem);
    EXPECT_FALSE(m_control->IsRunning(problem));
}

TEST_F(SolveControlThreadTest, StopDuringAPause_LetsTheThreadsLeave) {
    TChessProblem& problem = AddEndless();
    ASSERT_TRUE(Start(problem));
    WaitForNodes(problem);
    m_control->PauseSolve(problem);
    m_control->StopSolve(problem);
    EXPECT_FALSE(m_control->IsRunning(problem));
    EXPECT_EQ(State(problem).outcome.end, EEngineEnd::kStopped);
    // A late pause must not take the place of a stop.
    m_control->PauseSolve(problem);
    m_control->ResumeSolve(problem);
    EXPECT_EQ(problem.stopKind, kStopAll);
}

TEST_F(SolveControlThreadTest, TwoProblems_AreSolvedAtOnce) {
    TChessProblem& first = AddEndless();
    TChessProblem& second = AddEndless();
    TChessProblem& third = Add(kTwoMover, 3);
    ASSERT_TRUE(Start(first));
    ASSERT_TRUE(Start(second));
    WaitForNodes(first);
    WaitForNodes(second);
    EXPECT_EQ(m_control->RunningCount(), 2);
    Solve(third);
    EXPECT_EQ(State(third).results.size(), 1U);
    m_control->StopSolve(first);
    EXPECT_FALSE(m_control->IsRunning(first));
    EXPECT_TRUE(m_control->IsRunning(second));
    m_control->StopSolve(second);
}

TEST_F(SolveControlThreadTest, EndWhileAnotherProblemIsShown_KeepsResultsAndMovesNothing) {
    TChessProblem& solved = Add(kManyKeys, 3);
    TChessProblem& shown = Add(kTwoMover, 3);
    m_control->Display(&shown);
    Solve(solved, true);
    EXPECT_EQ(State(solved).results.size(), 2U);
    EXPECT_TRUE(solved.PlayedMoves().empty());
    EXPECT_TRUE(shown.PlayedMoves().empty());
    EXPECT_TRUE(m_services.Told().empty());
    EXPECT_EQ(m_control->StatusText(),
              "Thread solving problem 1 has completed successfully.\n2 solution(s) found of the "
              "problem 1");
}

TEST_F(SolveControlThreadTest, Destructor_StopsWhatRuns) {
    TChessProblem& problem = AddEndless();
    ASSERT_TRUE(Start(problem));
    m_control.reset();
    EXPECT_TRUE(State(problem).idle);
}

TEST_F(SolveControlThreadTest, SelfmateAndHelpmate_AreRefusedWithANote) {
    TChessProblem& problem = Add(kTwoMover, 5);
    problem.SetStipulation(kSelfmate, 5);
    EXPECT_FALSE(Start(problem));
    EXPECT_EQ(m_services.Told(),
              (TTold{{EMessage::kTitleSessionInformation,
                      "Problem 1 is a selfmate. Selfmates cannot be solved yet; a direct mate "
                      "would be no solution of it."}}));
    problem.SetStipulation(kHelpmate, 5);
    EXPECT_FALSE(Start(problem));
    EXPECT_EQ(m_services.Told().size(), 2U);
    EXPECT_EQ(FindRunState(problem), nullptr);
}

TEST_F(SolveControlThreadTest, ManySolves_AreLimitedByTheTableOfSlots) {
    m_request.threads = 1;
    for (int i = 0; i < kMaxSolvesAtOnce; ++i)
        ASSERT_TRUE(Start(AddEndless()));
    TChessProblem& onTop = Add(kTwoMover, 3);
    EXPECT_FALSE(Start(onTop));
    EXPECT_EQ(State(onTop).outcome.end, EEngineEnd::kTooMany);
    EXPECT_EQ(
        m_services.Told(),
        (TTold{{EMessage::kTitleWarning, "Too many problems being solved at the same time."}}));
}

TEST_F(SolveControlThreadTest, EndOfTheLine_WithBlackToMove_DoesNothing) {
    TChessProblem& problem = Add(kTwoMover, 1);
    ASSERT_TRUE(problem.PlayMove(test::MoveOf(problem, "Qa7-f2")));
    ASSERT_EQ(problem.currentNode->m_nMoves, 0);
    EXPECT_FALSE(Start(problem));
    EXPECT_TRUE(m_services.Told().empty());
    EXPECT_TRUE(m_services.Statuses().empty());
}

TEST_F(SolveControlThreadTest, BadPosition_IsToldAsAnError) {
    constexpr const char* kText =
        "Black king cannot be checked in the mate task starting postition.";
    TChessProblem& problem = Add(kTwoMover, 3);
    problem.position->m_board[SquareAt(0, 0)] = kWhite | kRook;
    m_control->Display(&problem);
    Solve(problem);
    EXPECT_EQ(State(problem).outcome.end, EEngineEnd::kBadPosition);
    EXPECT_EQ(State(problem).outcome.faultText, kText);
    EXPECT_EQ(m_services.Told(), (TTold{{EMessage::kTitleError, kText}}));
    m_control->Display(nullptr);
    Solve(problem);
    EXPECT_EQ(
        m_services.Told().back(),
        std::make_pair(EMessage::kTitleError,
                       "Thread solving problem 1 completed with error:\n\n" + std::string(kText)));
    EXPECT_EQ(m_control->StatusText(), "Thread solving problem 1 completed with error.");
}

TEST_F(SolveControlThreadTest, TimeLimit_StopsAsIfByTheUser) {
    TChessProblem& problem = AddEndless();
    m_control->Settings().solvingTimeLimitSeconds = 1;
    Solve(problem);
    EXPECT_TRUE(State(problem).outcome.isTimeLimitHit);
    EXPECT_EQ(State(problem).outcome.end, EEngineEnd::kStopped);
    EXPECT_EQ(State(problem).outcome.result.verdict, ESolveVerdict::kLimit);
    EXPECT_NE(
        Log().find(": Engine stopped: Analysis stopped: the time limit was reached, version: "),
        std::string::npos);
    m_control->Settings().solvingTimeLimitSeconds = kNoTimeLimit;
    m_request.seconds = 0.05;
    Solve(problem);
    EXPECT_TRUE(State(problem).outcome.isTimeLimitHit);
    TChessProblem& fast = Add(kTwoMover, 3);
    m_request.seconds = 1000;
    Solve(fast);
    EXPECT_FALSE(State(fast).outcome.isTimeLimitHit);
}

TEST_F(SolveControlThreadTest, Batch_ShowsNoBoxesAndPlaysNoKey) {
    m_control->Settings().regressionRunning = true;
    TChessProblem& problem = Add(kManyKeys, 3);
    m_control->Display(&problem);
    Solve(problem, true);
    EXPECT_EQ(State(problem).results.size(), 2U);
    EXPECT_TRUE(m_services.Told().empty());
    EXPECT_TRUE(problem.PlayedMoves().empty());
}

TEST_F(SolveControlThreadTest, InsideTheLine_TheSideToMoveIsAnalysed) {
    TChessProblem& problem = Add(kTwoMover, 3);
    m_control->Display(&problem);
    ASSERT_TRUE(problem.PlayMove(test::MoveOf(problem, "Qa7-f2")));
    Solve(problem);
    EXPECT_EQ(State(problem).defenceAnalysis.text, "Kc1-b1");
    EXPECT_EQ(m_services.Told(),
              (TTold{{EMessage::kTitleResultOfAnalysis,
                      "The only reply (not a defence against mate) : Kc1-b1"}}));
    EXPECT_EQ(State(problem).solveMode, kSolveNone);
    ASSERT_TRUE(problem.PlayMove(test::MoveOf(problem, "Kc1-b1")));
    Solve(problem);
    EXPECT_EQ(m_services.Told().back(),
              std::make_pair(EMessage::kTitleResultOfAnalysis,
                             std::string("The following moves have been found:\n0-0")));
    m_control->Display(nullptr);
    problem.GoToStart();
    ASSERT_TRUE(problem.PlayMove(test::MoveOf(problem, "Qa7-f2")));
    Solve(problem);
    EXPECT_EQ(m_control->StatusText(),
              "Thread looking for black's defence in problem 1 has completed successfully.");
}

TEST_F(SolveControlThreadTest, AnalysisInsideTheLine_CanBeStopped) {
    TChessProblem& problem = AddEndless();
    m_control->Display(&problem);
    ASSERT_TRUE(problem.PlayMove(test::MoveOf(problem, "e2-e4")));
    ASSERT_TRUE(Start(problem));
    WaitForNodes(problem);
    m_control->StopSolve(problem);
    EXPECT_TRUE(State(problem).defenceAnalysis.isStopped);
    EXPECT_TRUE(m_services.Told().empty());
    EXPECT_EQ(m_control->StatusText(), "Analysis stopped by user");
}

TEST_F(SolveControlThreadTest, WholeLine_IsSolvedToItsEnd) {
    TChessProblem& problem = Add("4r1b1/1p4B1/pN2pR2/RB2k3/1P2N2p/2p3b1/n2P1p1r/5K1n w - - 0 1", 5);
    m_control->Display(&problem);
    m_request.wholeMainLine = true;
    Solve(problem);
    EXPECT_EQ(problem.PlayedMoves().size(), 5U);
    EXPECT_EQ(problem.currentNode->m_nMoves, 0);
    EXPECT_GE(problem.currentNode->m_blackInCheck, 0);
}

TEST_F(SolveControlThreadTest, BareRoot_IsSolvedInsideThePlayedMovesToo) {
    TChessProblem& problem = Add(kTwoMover, 3);
    problem.SetStipulation(kNoStipulation, 3);
    ASSERT_TRUE(problem.PlayMove(test::MoveOf(problem, "Qa7-f2")));
    Solve(problem);
    EXPECT_EQ(State(problem).results.size(), 1U);
}

TEST_F(SolveControlThreadTest, QuittingMessageLoop_EndsTheWaitForAStop) {
    TChessProblem& problem = AddEndless();
    ASSERT_TRUE(Start(problem));
    m_services.m_isQuitting = true;
    m_control->StopSolve(problem);
    m_control->WaitUntilIdle(problem);
    EXPECT_EQ(m_control->RunningCount(), 0);
}

TEST_F(SolveControlThreadTest, SecondMainSolve_TellsThatTheRegisterIsCleared) {
    g_options.ClearRegisterOnStartSolving = true;
    TChessProblem& problem = Add(kManyKeys, 11);
    m_request.mayUseSolvedRecord = false;
    Solve(problem);
    const std::string text = "Removing temporary data from memory...\n(the option to clear this "
                             "data on start solving is on)";
    const auto count = [&] {
        const std::vector<std::string> all = m_services.Statuses();
        return std::count(all.begin(), all.end(), text);
    };
    EXPECT_EQ(count(), 0) << "there was none to clear";
    Solve(problem);
    EXPECT_EQ(count(), 1);
}

}  // namespace
}  // namespace quillmere
