// What is told about moves inside the played line, and by whoever starts and stops, is true.
#include "core/platform/thread.h"
#include "session/defence_analysis.h"
#include "session/key_threat.h"
#include "session/run_state.h"
#include "session/white_analysis.h"
#include "tests/support/sessions.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace quillmere {
namespace {

constexpr std::size_t kStack = std::size_t{1} << 20;

TAnalysisRequest All() {
    TAnalysisRequest request;
    request.wantAll = true;
    request.memoryBytes = u64{4} << 20;
    return request;
}

void Play(TChessProblem& problem, const std::vector<std::string>& moves) {
    for (const std::string& move : moves)
        ASSERT_TRUE(problem.PlayMove(test::MoveOf(problem, move))) << move;
}

// 3.Qe7 Kb8 4.Qd8# is a mate in two, though 3.Qe7 comes back to the position after 1.Qg5.
TEST(LineTruth, MateByWayOfAPlayedPosition_IsNotDenied) {
    TChessProblem problem;
    test::SetProblem(problem, "2k5/4Q3/8/5K2/5Q2/8/8/8 w - - 0 1", 7);
    Play(problem, {"Qf4-g5", "Kc8-b8", "Qe7-e2", "Kb8-c8"});
    TWhiteAnalysis analysis;
    RunOnThreadWithStack(kStack, [&] { analysis = AnalyseWhite(problem, All()); });
    EXPECT_FALSE(analysis.moves.empty() && analysis.isProved);
}

// The same for black: after 2...Kc8 3.Qe7 mates, so that it is no refutation.
TEST(LineTruth, DefenceByWayOfAPlayedPosition_IsNoRefutation) {
    TChessProblem problem;
    test::SetProblem(problem, "2k5/4Q3/8/5K2/5Q2/8/8/8 w - - 0 1", 7);
    Play(problem, {"Qf4-g5", "Kc8-b8", "Qe7-e2"});
    TDefenceAnalysis analysis;
    RunOnThreadWithStack(kStack, [&] { analysis = AnalyseDefence(problem, All()); });
    EXPECT_NE(analysis.kind, EDefence::kRepeats);
    std::vector<std::string> holding = analysis.equivalentTexts;
    holding.push_back(analysis.kind == EDefence::kRefutes ? analysis.text : "");
    EXPECT_EQ(std::count(holding.begin(), holding.end(), "Kb8-c8"), 0);
    EXPECT_EQ(problem.repetitionBound, 65535) << "it comes back";
}

// Both replies are mated within three moves, so that none prevents a fast mate.
TEST(LineTruth, ReplyThatIsMatedFastToo_IsNotTheOnlyOneThatPreventsIt) {
    TChessProblem problem;
    test::SetProblem(problem, "3k4/B5Q1/1K6/8/8/8/8/8 w - - 0 1", 7);
    Play(problem, {"Kb6-c6"});
    TDefenceAnalysis analysis;
    RunOnThreadWithStack(kStack, [&] { analysis = AnalyseDefence(problem, All()); });
    ASSERT_EQ(analysis.kind, EDefence::kLoses);
    EXPECT_FALSE(analysis.isOnlySlowReply && analysis.mateHalfMoves <= kFastMateHalfMoves);
}

// The rook has moved, so white has no right to castle.
TEST(LineTruth, ThreatAfterTheRooksMove_IsNoCastling) {
    TChessProblem problem;
    test::SetProblem(problem, "8/8/8/8/8/8/5Q2/2k1K1R1 w - - 0 1", 3);
    std::string threat;
    RunOnThreadWithStack(
        kStack, [&] { threat = ThreatText(problem, test::MoveOf(problem, "Rg1-h1"), 3, 100'000); });
    EXPECT_EQ(threat, "");
}

// Start has taken the line over; what the user does to it afterwards is his own affair.
TEST(LineTruthThread, MovesTakenBackAfterTheStart_DoNotChangeWhatIsAnalysed) {
    TProblemCollection collection;
    test::CFakeServices services;
    TChessProblem& problem = test::AddProblem(
        collection, 1, "4r1b1/1p4B1/pN2pR2/RB2k3/1P2N2p/2p3b1/n2P1p1r/5K1n w - - 0 1", 5);
    CSolveControl control(collection, services.Services(), {});
    for (int i = 0; i < 300; ++i) {
        problem.GoToStart();
        Play(problem, {"Kf1-e2", "Bg8-h7"});
        TStartRequest start;
        start.memoryBytes = u64{1} << 20;
        ASSERT_TRUE(control.StartSolve(problem, false, start));
        problem.GoToStart();
        control.WaitUntilIdle(problem);
        ASSERT_EQ(RunStateOf(problem).whiteAnalysis.texts, std::vector<std::string>{"Rf6-f3"})
            << "in round " << i;
    }
}

}  // namespace
}  // namespace quillmere
