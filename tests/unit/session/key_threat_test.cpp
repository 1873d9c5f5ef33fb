#include "core/platform/thread.h"
#include "core/search_context.h"
#include "session/key_threat.h"
#include "tests/support/sessions.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace quillmere {
namespace {

std::string
ThreatOf(TChessProblem& problem, const std::string& key, int halfMoves, u64 nodeLimit = 100'000) {
    std::string threat;
    RunOnThreadWithStack(std::size_t{1} << 20, [&] {
        threat = ThreatText(problem, test::MoveOf(problem, key), halfMoves, nodeLimit);
    });
    return threat;
}

TEST(KeyThreat, QuietKey_ThreatensWhatMatesIfBlackPasses) {
    TChessProblem problem;
    test::SetProblem(problem, "8/Q7/8/8/8/8/8/2k1K2R w K - 0 1", 3);
    EXPECT_EQ(ThreatOf(problem, "Qa7-f2", 3), "2.0-0#");
    EXPECT_EQ(ThreatOf(problem, "Qa7-a1", 3), "") << "a check threatens nothing";
    EXPECT_EQ(ThreatOf(problem, "Qa7-f2", 1), "") << "nothing is left";
}

TEST(KeyThreat, MoveWithoutAThreat_HasNone) {
    TChessProblem problem;
    test::SetProblem(problem, "6k1/8/6K1/8/8/8/8/R7 w - - 0 1", 3);
    EXPECT_EQ(ThreatOf(problem, "Kg6-h6", 3), "") << "black steps to f7";
    EXPECT_EQ(ThreatOf(problem, "Ra1-a7", 3), "2.Ra7-a8#");
}

TEST(KeyThreat, PauseOfTheProblem_HoldsTheThreadOfTheThreat) {
    TChessProblem problem;
    test::SetProblem(problem, "6k1/8/6K1/8/8/8/8/R7 w - - 0 1", 9);
    SetStop(problem, kStopPause);
    std::atomic<bool> isOver{false};
    std::string threat;
    std::thread search([&] {
        threat = ThreatOf(problem, "Kg6-h6", 9);
        isOver = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_FALSE(isOver);
    SetStop(problem, kStopNone);
    search.join();
    EXPECT_FALSE(threat.empty());
}

TEST(KeyThreat, Stop_LeavesItUndecided) {
    TChessProblem problem;
    test::SetProblem(problem, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", 15);
    SetStop(problem, kStopAll);
    EXPECT_EQ(ThreatOf(problem, "e2-e4", 15, ~u64{0}), "");
    SetStop(problem, kStopNone);
    EXPECT_EQ(ThreatOf(problem, "e2-e4", 15, 1), "") << "beyond the limit of nodes";
}

}  // namespace
}  // namespace quillmere
