#include "core/chess_exception.h"
#include "core/platform/thread.h"
#include "session/options.h"
#include "session/run_engine.h"
#include "session/run_state.h"
#include "tests/support/sessions.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <utility>

namespace quillmere {
namespace {

constexpr const char* kTwoMover = "8/Q7/8/8/8/8/8/2k1K2R w K - 0 1";  // 1.Qf2
constexpr const char* kManyKeys = "6k1/8/6K1/8/8/8/8/R7 w - - 0 1";

class RunEngineTest : public testing::Test {
protected:
    void SetUp() override {
        m_options = g_options;
        m_request.memoryBytes = u64{16} << 20;
        m_request.threads = 1;
    }
    void TearDown() override { g_options = m_options; }

    TChessProblem& Problem(const std::string& fen, u16 halfMoves) {
        return test::AddProblem(m_collection, m_collection.NextNumber(), fen, halfMoves);
    }
    TEngineOutcome Run(TChessProblem& problem) {
        TEngineOutcome outcome;
        RunOnThreadWithStack(SolveStackBytes(HalfMovesToSolve(problem)), [&] {
            outcome = RunEngine(problem, m_request, m_services.Services());
        });
        return outcome;
    }
    std::string FaultOf(TChessProblem& problem) {
        try {
            Run(problem);
        } catch (const ChessException& fault) {
            return fault.what();
        }
        return "";
    }
    std::vector<std::string> KeysOf(TChessProblem& problem) {
        return test::TextsOf(*problem.position, Run(problem).result.keys);
    }

    using TTexts = std::vector<std::string>;

    TProblemCollection m_collection;
    test::CFakeServices m_services;
    TEngineRequest m_request;
    TOptions m_options;
};

TEST_F(RunEngineTest, Mate_IsFoundInTheSquaresOfTheBoard) {
    TChessProblem& problem = Problem(kTwoMover, 3);
    const TEngineOutcome outcome = Run(problem);
    EXPECT_EQ(outcome.end, EEngineEnd::kDone);
    EXPECT_EQ(outcome.result.verdict, ESolveVerdict::kProvedMate);
    EXPECT_EQ(test::TextsOf(*problem.position, outcome.result.keys), TTexts{"Qa7-f2"});
    EXPECT_EQ(outcome.result.mainLine.size(), 3U);
    EXPECT_FALSE(outcome.isFromRecord);
}

TEST_F(RunEngineTest, AfterARun_NothingHangsOnTheProblem) {
    TChessProblem& problem = Problem(kManyKeys, 11);
    Run(problem);
    EXPECT_EQ(problem.tempRegister, nullptr);
    EXPECT_EQ(problem.relaxationLog, nullptr);
    EXPECT_NE(FindRunState(problem)->solved, nullptr);
    TChessProblem& shorter = Problem(kTwoMover, 3);
    Run(shorter);
    EXPECT_EQ(FindRunState(shorter)->solved, nullptr) << "too short for a register";
}

TEST_F(RunEngineTest, StopOptions_EndASearchForAllSolutions) {
    m_request.allSolutions = true;
    TChessProblem& all = Problem(kManyKeys, 7);
    const std::size_t count = Run(all).result.keys.size();
    ASSERT_GT(count, 4U);
    constexpr std::pair<u32, std::size_t> kRows[] = {
        {kProblemStopOnDual, 2}, {kProblemStopOn3Sol, 3}, {kProblemStopOn4Sol, 4}};
    for (const auto& [flags, expected] : kRows) {
        TChessProblem& problem = Problem(kManyKeys, 7);
        problem.flags = flags;
        EXPECT_EQ(Run(problem).result.keys.size(), expected);
    }
}

TEST_F(RunEngineTest, IllegalStart_IsAFaultWithItsText) {
    TChessProblem& checked = Problem(kTwoMover, 3);
    checked.position->m_board[SquareAt(0, 0)] = kWhite | kRook;  // a1 checks c1
    EXPECT_EQ(FaultOf(checked),
              "Black king cannot be checked in the mate task starting postition.");
    TChessProblem& kingless = Problem(kTwoMover, 3);
    kingless.position->m_board[SquareAt(4, 0)] = 0;
    EXPECT_EQ(FaultOf(kingless), "Illegal number of kings.");
}

TEST_F(RunEngineTest, Overrides_AreTheWordOfTheSolve) {
    TChessProblem& problem = Problem("7k/7P/6BK/8/7N/8/6R1/6r1 w - - 0 1", 5);
    problem.heuristicOverrides[SH_KEEPKINGONTHEEDGE] = {"STRICT"};
    const TEngineOutcome own = Run(problem);
    ASSERT_FALSE(own.result.plannedPasses.empty());
    EXPECT_TRUE(own.result.plannedPasses.front().heuristics.starts_with("SH_DONTLETKINGMOVE"));
    m_request.heuristics = "off";
    EXPECT_EQ(Run(problem).result.plannedPasses.front().heuristics, "");
    m_request.heuristics = "SH_KEYLINE(A)";
    EXPECT_TRUE(Run(problem).result.plannedPasses.front().heuristics.starts_with("SH_KEYLINE(A)"));
}

TEST_F(RunEngineTest, OverrideOff_LeavesNoWord) {
    TChessProblem& problem = Problem(kTwoMover, 3);
    problem.heuristicOverrides[SH_KEEPKINGONTHEEDGE] = {std::string(kOverrideOff)};
    EXPECT_EQ(KeysOf(problem), TTexts{"Qa7-f2"});
}

TEST_F(RunEngineTest, BadOverride_IsToldWithProblemAndHeuristic) {
    TChessProblem& problem = Problem(kTwoMover, 3);
    problem.heuristicOverrides[SH_KEEPKINGONTHEEDGE] = {"NONSENSE"};
    const std::string fault = FaultOf(problem);
    EXPECT_TRUE(fault.starts_with("The setting SH_KEEPKINGONTHEEDGE of problem 1 cannot be used: "))
        << fault;
    EXPECT_NE(fault.find("NONSENSE"), std::string::npos) << fault;
}

TEST_F(RunEngineTest, ExpectedOrder_IsCompared) {
    TChessProblem& problem = Problem(kTwoMover, 3);
    const std::vector<TMove> order = Run(problem).result.firstMoves;
    ASSERT_GT(order.size(), 2U);
    problem.flags = kProblemHasExpectedSort;
    problem.expectedSortWhiteMoves = {order[0], order[1]};
    EXPECT_EQ(Run(problem).expectedSortFailure, "");
    problem.expectedSortWhiteMoves = {order[1], order[0]};
    EXPECT_TRUE(
        Run(problem).expectedSortFailure.starts_with("ExpectedSortWhiteMoves failed: move "));
    EXPECT_TRUE(MovesEqual(problem.expectedSortWhiteMoves[0], order[1])) << "marks are taken off";
}

TEST_F(RunEngineTest, Indications_BringAMoveToTheFront) {
    TChessProblem& problem = Problem("7k/7P/6BK/8/7N/8/6R1/6r1 w - - 0 1", 5);
    const TMove last = Run(problem).result.firstMoves.back();
    TProblemVariant variant = ParseVariant("{Main variant} 1." + MoveToPlainText(last));
    problem.variants.emplace(variant.name, variant);
    EXPECT_FALSE(MovesEqual(Run(problem).result.firstMoves.front(), last));
    problem.flags = kProblemUseMainVariant;
    EXPECT_TRUE(MovesEqual(Run(problem).result.firstMoves.front(), last));
    problem.flags = 0;
    g_options.UseMainVariantAsSortIndications = 1;
    EXPECT_TRUE(MovesEqual(Run(problem).result.firstMoves.front(), last));
}

// Records

TEST_F(RunEngineTest, LongStipulation_IsRecordedAndAnsweredFromTheRecord) {
    const test::CTemporaryFolder folder;
    m_request.programFolder = folder.Path();
    const TEngineOutcome searched = Run(Problem(kManyKeys, 13));
    EXPECT_FALSE(searched.isFromRecord);
    TChessProblem& again = Problem(kManyKeys, 15);
    const TEngineOutcome known = Run(again);
    EXPECT_TRUE(known.isFromRecord);
    EXPECT_EQ(known.result.nodes, 0U);
    ASSERT_EQ(known.result.keys.size(), 1U);
    EXPECT_TRUE(MovesEqual(known.result.keys[0], searched.result.keys[0]));
    EXPECT_GT(known.recordWhen.date, 20000000);
    m_request.mayUseSolvedRecord = false;
    EXPECT_FALSE(Run(again).isFromRecord);
}

TEST_F(RunEngineTest, ShortStipulation_IsNotRecorded) {
    const test::CTemporaryFolder folder;
    m_request.programFolder = folder.Path();
    Run(Problem(kManyKeys, 11));
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / kSolvedProblemsFolder));
}

TEST_F(RunEngineTest, MirroredBoard_LeavesNoRecord) {
    const test::CTemporaryFolder folder;
    m_request.programFolder = folder.Path();
    TChessProblem& problem = Problem(kManyKeys, 13);
    RunStateOf(problem).isMirrorRun = true;
    Run(problem);
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / kSolvedProblemsFolder));
}

TEST_F(RunEngineTest, SolutionsCutByAStopOption_AreNotRecordedAsAll) {
    const test::CTemporaryFolder folder;
    m_request.programFolder = folder.Path();
    m_request.allSolutions = true;
    TChessProblem& problem = Problem(kManyKeys, 13);
    problem.flags = kProblemStopOnDual;
    EXPECT_EQ(Run(problem).result.keys.size(), 2U);
    problem.solvedRecord.EnsureLoaded(folder.Path());
    EXPECT_FALSE(problem.solvedRecord.HasAllSolutions(-1));
}

TEST_F(RunEngineTest, NoMate_IsOnlyRecordedWhenTheLastPassProvedIt) {
    const test::CTemporaryFolder folder;
    m_request.programFolder = folder.Path();
    TChessProblem& problem = Problem("7k/8/8/8/8/8/8/KN4R1 w - - 0 1", 13);
    problem.heuristicOverrides[SH_KEEPKINGONTHEEDGE] = {"STRICT"};
    m_request.noFinalPass = true;
    const TEngineOutcome doubtful = Run(problem);
    EXPECT_EQ(doubtful.end, EEngineEnd::kDone);
    EXPECT_EQ(doubtful.result.verdict, ESolveVerdict::kDoubt);
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / kSolvedProblemsFolder));
    // A knight alone never mates.
    m_request.noFinalPass = false;
    TChessProblem& hopeless = Problem("7k/8/8/8/8/8/8/KN6 w - - 0 1", 13);
    EXPECT_EQ(Run(hopeless).result.verdict, ESolveVerdict::kProvedNoMate);
    EXPECT_TRUE(hopeless.solvedRecord.HasFirstSolution(13));
    EXPECT_FALSE(hopeless.solvedRecord.isFirstFound);
}

// Threads

// A long task with many quiet moves wishes for more threads than one.
constexpr const char* kWishing = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

TEST_F(RunEngineTest, WishForThreads_IsAskedAndTheAnswerTaken) {
    struct TRow {
        EReply reply;
        bool isMore;
    };
    constexpr TRow kRows[] = {{EReply::kYes, true}, {EReply::kNo, false}};
    for (const TRow& row : kRows) {
        test::CFakeServices services;
        services.m_reply = row.reply;
        g_options.threadCount = 1;
        TChessProblem problem;
        test::SetProblem(problem, kWishing, 15);
        m_request.threads = 0;
        m_request.nodeLimit = 2'000;
        RunOnThreadWithStack(SolveStackBytes(15),
                             [&] { RunEngine(problem, m_request, services.Services()); });
        ASSERT_EQ(services.Asked().size(), 1U);
        const auto [question, text] = services.Asked().front();
        EXPECT_EQ(question, EMessage::kForceThreads);
        EXPECT_TRUE(text.starts_with("Engine wants to force a different number of threads ("))
            << text;
        EXPECT_TRUE(text.ends_with("). Do you accept it?")) << text;
        EXPECT_EQ(FindRunState(problem)->runThreads > 1, row.isMore);
    }
}

TEST_F(RunEngineTest, WishForThreads_IsGrantedInABatchAndNotMadeWhereThreadsAreForced) {
    g_options.threadCount = 1;
    m_request.nodeLimit = 2'000;
    m_request.threads = 0;
    m_request.isRegression = true;
    TChessProblem& batch = Problem(kWishing, 15);
    Run(batch);
    EXPECT_GT(FindRunState(batch)->runThreads, 1);
    TChessProblem& forced = Problem(kWishing, 15);
    forced.threads = 1;
    Run(forced);
    EXPECT_EQ(FindRunState(forced)->runThreads, 1);
    EXPECT_TRUE(m_services.Asked().empty());
}

TEST_F(RunEngineTest, StopThatStandsAtTheStart_Holds) {
    TChessProblem& problem = Problem(kTwoMover, 3);
    SetStop(problem, kStopAll);
    const TEngineOutcome outcome = Run(problem);
    EXPECT_EQ(outcome.end, EEngineEnd::kStopped);
    EXPECT_TRUE(outcome.result.keys.empty());
}

TEST_F(RunEngineTest, SafeMode_FollowsOptionAndFlag) {
    TChessProblem problem;
    g_options.QuickMode = true;
    EXPECT_FALSE(IsSafeModeForced(problem));
    problem.flags = kProblemSafeMode;
    EXPECT_TRUE(IsSafeModeForced(problem));
    problem.flags = 0;
    g_options.QuickMode = false;
    EXPECT_TRUE(IsSafeModeForced(problem));
    TChessProblem& run = Problem(kTwoMover, 3);
    Run(run);
    EXPECT_TRUE(run.isExact);
}

}  // namespace
}  // namespace quillmere
