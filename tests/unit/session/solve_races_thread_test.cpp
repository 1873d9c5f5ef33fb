// Calls that meet: a stop, a wait and a start of the same problem from two threads.
#include "session/run_state.h"
#include "tests/support/sessions.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace quillmere {
namespace {

// A lost stop or a deadlock shows as a test that never ends; each showed within a hundred rounds.
constexpr int kRounds = 300;

class SolveRacesThreadTest : public testing::Test {
protected:
    SolveRacesThreadTest() {
        m_request.memoryBytes = u64{1} << 20;
        m_request.wantMainLine = false;
        m_request.threads = 1;
    }
    // Starts and waits while the other thread does its work again and again.
    template <typename TWork>
    void StartAgainBeside(TChessProblem& problem, const TWork& work) {
        std::atomic<bool> isDone{false};
        std::thread other([&] {
            while (!isDone)
                work();
        });
        for (int i = 0; i < kRounds; ++i) {
            EXPECT_TRUE(m_control.StartSolve(problem, false, m_request)) << "in round " << i;
            m_control.WaitUntilIdle(problem);
        }
        isDone = true;
        other.join();
        EXPECT_FALSE(m_control.IsRunning(problem));
        EXPECT_EQ(m_control.RunningCount(), 0);
    }

    TProblemCollection m_collection;
    test::CFakeServices m_services;
    TStartRequest m_request;
    CSolveControl m_control{m_collection, m_services.Services(), {}};
};

// Nobody lives to see the end of this search.
TEST_F(SolveRacesThreadTest, StopRightAfterAStart_IsNotLost) {
    TChessProblem& problem =
        test::AddProblem(m_collection, 1, "8/8/2p5/1p1k4/1P6/2PK4/5B2/8 w - - 0 1", 61);
    StartAgainBeside(problem, [&] { m_control.StopSolve(problem); });
    EXPECT_EQ(RunStateOf(problem).outcome.end, EEngineEnd::kStopped);
}

TEST_F(SolveRacesThreadTest, TwoWaiters_LeaveTheNextSessionAlone) {
    TChessProblem& problem = test::AddProblem(m_collection, 1, "7k/8/5K2/8/8/8/8/Q7 w - - 0 1", 5);
    StartAgainBeside(problem, [&] { m_control.WaitUntilIdle(problem); });
    EXPECT_EQ(RunStateOf(problem).outcome.end, EEngineEnd::kDone);
}

}  // namespace
}  // namespace quillmere
