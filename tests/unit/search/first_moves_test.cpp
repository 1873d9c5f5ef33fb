#include "core/thread_context.h"
#include "search/first_moves.h"
#include "search/solve.h"
#include "tests/support/boards.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::MoveOf;

class CRecorder : public ISolveObserver {
public:
    void OnFirstMove(TMove move, int number, int count) override {
        m_told += test::TextOfMove(move) + " " + std::to_string(number) + "/" +
                  std::to_string(count) + "; ";
    }
    void OnKey(TMove move) override { m_told += "key " + test::TextOfMove(move) + "; "; }

    std::string m_told;
};

TMoveList ListOf(const std::vector<std::string>& texts) {
    TMoveList list;
    for (const std::string& text : texts)
        list[list.count++] = MoveOf(text);
    return list;
}

// First moves a1a2, a1b1 and a1b2 with a thread or two on them.
class FirstMoves : public ::testing::Test {
protected:
    void Start(const CFirstMoves::TWish& wish, int threads = 1) {
        m_moves.emplace(ListOf({"a1a2", "a1b1", "a1b2"}), wish, m_recorder);
        for (int i = 0; i < threads; ++i) {
            m_threads.push_back(std::make_unique<TThreadContext>(5, static_cast<i16>(i)));
            EXPECT_EQ(m_moves->AddWorker(*m_threads.back()), i);
        }
    }
    void Enter(int worker, u32 heur, u8 pass, const std::string& name) {
        TChessboard root;
        InitBoard(root);
        TSearchContext context;
        root.m_searchContext = &context;
        root.m_threadContext = m_threads[static_cast<std::size_t>(worker)].get();
        root.Heur = heur;
        root.m_pass = pass;
        m_moves->EnterPass(worker, root, name);
    }
    bool Claim(int worker, const std::string& move) { return m_moves->Claim(worker, MoveOf(move)); }
    bool Report(int worker, const std::string& move, TVerdict verdict, bool isComplete) {
        return m_moves->Report(worker, MoveOf(move), verdict, isComplete);
    }
    bool IsStopSet(int worker) const {
        return m_threads[static_cast<std::size_t>(worker)]->stopLevel.load() == kThreadStops;
    }

    CRecorder m_recorder;
    std::vector<std::unique_ptr<TThreadContext>> m_threads;
    std::optional<CFirstMoves> m_moves;
};

TEST_F(FirstMoves, MateEndsTheWorkWhereOneKeyIsWanted) {
    Start({true, 1});
    Enter(0, 0, kPassComplete, "2");
    EXPECT_TRUE(Claim(0, "a1a2"));
    EXPECT_TRUE(Report(0, "a1a2", kNoMate, true));
    EXPECT_FALSE(m_moves->IsDone());
    EXPECT_TRUE(Claim(0, "a1b1"));
    EXPECT_TRUE(Report(0, "a1b1", kMate, true));
    EXPECT_TRUE(m_moves->IsDone());
    EXPECT_FALSE(Claim(0, "a1b2"));
    EXPECT_FALSE(IsStopSet(0)) << "the thread that found it goes on with other work";
    EXPECT_EQ(m_recorder.m_told, "a1a2 1/3; a1b1 2/3; key a1b1; ");
}

TEST_F(FirstMoves, NoMateOfAPassWithHeuristicsDecidesNothing) {
    Start({true, 0});
    Enter(0, 4, kPassHeuristics, "1a");
    for (const std::string move : {"a1a2", "a1b1", "a1b2"}) {
        EXPECT_TRUE(Claim(0, move));
        EXPECT_TRUE(Report(0, move, kNoMate, false));
    }
    EXPECT_FALSE(m_moves->IsDone());
    EXPECT_TRUE(m_moves->LeavePass(0, 5, 6, 7));
    EXPECT_EQ(m_moves->Passes().front().verdict, ESolveVerdict::kDoubt);
    for (const auto& decision : m_moves->Decisions()) {
        EXPECT_FALSE(decision.isDecided);
        EXPECT_TRUE(decision.isDoubtful);
    }
    Enter(0, 0, kPassComplete, "2");
    for (const std::string move : {"a1a2", "a1b1", "a1b2"}) {
        EXPECT_TRUE(Claim(0, move)) << "it is taken up again";
        EXPECT_TRUE(Report(0, move, kNoMate, true));
    }
    EXPECT_TRUE(m_moves->IsDone());
    EXPECT_EQ(m_moves->Passes().back().verdict, ESolveVerdict::kProvedNoMate);
}

TEST_F(FirstMoves, DoubtOfTheLastPassStaysOpen) {
    Start({true, 0});
    Enter(0, 0, kPassComplete, "2");
    for (const std::string move : {"a1a2", "a1b1"}) {
        EXPECT_TRUE(Claim(0, move));
        EXPECT_TRUE(Report(0, move, kNoMate, true));
    }
    EXPECT_TRUE(Claim(0, "a1b2"));
    EXPECT_TRUE(Report(0, "a1b2", kDoubtful, true));
    EXPECT_FALSE(m_moves->IsDone());
    EXPECT_EQ(m_moves->Passes().back().verdict, ESolveVerdict::kDoubt);
    EXPECT_TRUE(m_moves->Decisions()[2].isDoubtful);
}

TEST_F(FirstMoves, NoMateIsSaidOnlyOfThePassThatDecidedTheLastMove) {
    Start({true, 0});
    Enter(0, 0, kPassComplete, "p1");
    m_moves->Decide(0, MoveOf("a1a2"), kNoMate);
    EXPECT_EQ(m_moves->DecidedMoves().size(), 1U);
    m_moves->LeavePass(0, 1, 2, 3);
    m_moves->RemoveWorker(0);
    m_moves->CloseLeadPass();
    m_threads.push_back(std::make_unique<TThreadContext>(5, i16{1}));
    ASSERT_EQ(m_moves->AddWorker(*m_threads.back()), 1);
    Enter(1, 0, kPassComplete, "2");
    EXPECT_FALSE(Claim(1, "a1a2"));
    for (const std::string move : {"a1b1", "a1b2"}) {
        EXPECT_TRUE(Claim(1, move));
        EXPECT_TRUE(Report(1, move, kNoMate, true));
    }
    ASSERT_EQ(m_moves->Passes().size(), 2U);
    EXPECT_EQ(m_moves->Passes().front().verdict, ESolveVerdict::kDoubt);
    EXPECT_EQ(m_moves->Passes().back().verdict, ESolveVerdict::kProvedNoMate);
}

TEST_F(FirstMoves, SeveralKeysAreWantedBeforeTheEnd) {
    Start({true, 2});
    Enter(0, 0, kPassComplete, "2");
    EXPECT_TRUE(Claim(0, "a1a2"));
    EXPECT_TRUE(Report(0, "a1a2", kMate, true));
    EXPECT_FALSE(m_moves->IsDone());
    EXPECT_TRUE(Claim(0, "a1b1"));
    EXPECT_TRUE(Report(0, "a1b1", kMate, true));
    EXPECT_TRUE(m_moves->IsDone());
    EXPECT_EQ(m_moves->SolutionCount(), 2);
}

TEST_F(FirstMoves, DefenceThatHoldsIsASolutionOfBlack) {
    Start({false, 1});
    Enter(0, 0, kPassComplete, "2");
    EXPECT_TRUE(Claim(0, "a1a2"));
    EXPECT_TRUE(Report(0, "a1a2", kMate, true));
    EXPECT_FALSE(m_moves->IsDone());
    EXPECT_TRUE(Claim(0, "a1b1"));
    EXPECT_TRUE(Report(0, "a1b1", kNoMate, true));
    EXPECT_TRUE(m_moves->IsDone());
    EXPECT_EQ(m_moves->Passes().back().verdict, ESolveVerdict::kProvedNoMate);
}

TEST_F(FirstMoves, TwoThreadsNeverSearchAMoveInTheSamePass) {
    Start({true, 0}, 2);
    Enter(0, 4, kPassHeuristics, "1a");
    Enter(1, 4, kPassHeuristics, "1a");
    EXPECT_TRUE(Claim(0, "a1a2"));
    EXPECT_FALSE(Claim(1, "a1a2"));
    EXPECT_TRUE(Claim(1, "a1b1"));
    EXPECT_FALSE(m_moves->LeavePass(1, 1, 2, 3)) << "the other is still in it";
    Enter(1, 0, kPassComplete, "2");
    EXPECT_TRUE(Claim(1, "a1a2")) << "in a later pass it may be searched beside the earlier one";
    EXPECT_TRUE(m_moves->LeavePass(0, 10, 20, 30));
    const std::vector<TPassRecord> passes = m_moves->Passes();
    ASSERT_EQ(passes.size(), 2u);
    EXPECT_EQ(passes[0].nodes, 11u);
    EXPECT_EQ(passes[0].madeMoves, 22u);
    EXPECT_EQ(passes[0].milliseconds, 30u);
}

TEST_F(FirstMoves, RelaxationBehindAPassIsSettledOnceForAllThreads) {
    Start({true, 2}, 2);
    Enter(0, 4, kPassHeuristics, "1a");
    Enter(1, 4, kPassHeuristics, "1a");
    EXPECT_TRUE(m_moves->WantsRelaxation(0, false)) << "no solution is known";
    EXPECT_TRUE(Claim(1, "a1a2"));
    EXPECT_TRUE(Report(1, "a1a2", kMate, false));
    EXPECT_TRUE(m_moves->WantsRelaxation(1, false)) << "the other thread is in that pass already";
    Enter(0, 2, kPassHeuristics, "1b");
    Enter(1, 2, kPassHeuristics, "1b");
    EXPECT_FALSE(m_moves->WantsRelaxation(1, false)) << "one of two wanted solutions is known";
    EXPECT_FALSE(m_moves->WantsRelaxation(0, false));
}

TEST_F(FirstMoves, AllSolutionsWanted_TheFirstEndsTheRelaxationOnRequestOnly) {
    Start({true, 0});
    Enter(0, 4, kPassHeuristics, "1a");
    EXPECT_TRUE(Claim(0, "a1a2"));
    EXPECT_TRUE(Report(0, "a1a2", kMate, false));
    EXPECT_TRUE(m_moves->WantsRelaxation(0, false));
    Enter(0, 2, kPassHeuristics, "1b");
    EXPECT_FALSE(m_moves->WantsRelaxation(0, true));
}

TEST_F(FirstMoves, DecisionCallsOffTheSearchOfTheSameMove) {
    Start({true, 0}, 2);
    Enter(0, 4, kPassHeuristics, "1a");
    EXPECT_TRUE(Claim(0, "a1a2"));
    Enter(1, 4, kPassHeuristics, "1a");
    Enter(1, 0, kPassComplete, "2");
    EXPECT_TRUE(Claim(1, "a1a2"));
    EXPECT_TRUE(Report(1, "a1a2", kNoMate, true));
    EXPECT_TRUE(IsStopSet(0));
    EXPECT_FALSE(IsStopSet(1));
    EXPECT_FALSE(Report(0, "a1a2", kMate, false)) << "void: the search was called off";
    EXPECT_FALSE(IsStopSet(0)) << "and the thread goes on";
    EXPECT_EQ(m_moves->SolutionCount(), 0);
    EXPECT_TRUE(Claim(0, "a1b1"));
}

TEST_F(FirstMoves, EndOfTheWorkStopsTheOtherThreads) {
    Start({true, 1}, 2);
    Enter(0, 0, kPassComplete, "2");
    Enter(1, 0, kPassComplete, "2");
    EXPECT_TRUE(Claim(0, "a1a2"));
    EXPECT_TRUE(Claim(1, "a1b1"));
    EXPECT_TRUE(Report(1, "a1b1", kMate, true));
    EXPECT_TRUE(IsStopSet(0));
    EXPECT_FALSE(Report(0, "a1a2", kNoMate, true));
    EXPECT_TRUE(IsStopSet(0)) << "nothing is left to do for it";
}

TEST_F(FirstMoves, StopFromOutsideMakesAReportVoid) {
    Start({true, 0});
    Enter(0, 0, kPassComplete, "2");
    EXPECT_TRUE(Claim(0, "a1a2"));
    m_threads[0]->stopLevel.store(kThreadStops);
    EXPECT_FALSE(Report(0, "a1a2", kMate, true));
    EXPECT_EQ(m_moves->SolutionCount(), 0);
    EXPECT_TRUE(IsStopSet(0));
}

TEST_F(FirstMoves, KeyIsToldWithItsPass) {
    Start({true, 0});
    Enter(0, 4, kPassHeuristics, "1a");
    EXPECT_TRUE(Claim(0, "a1a2"));
    EXPECT_TRUE(Report(0, "a1a2", kDoubtful, false));
    m_moves->LeavePass(0, 0, 0, 0);
    Enter(0, 4, kPassHeuristics, "1b");
    EXPECT_TRUE(Claim(0, "a1a2"));
    EXPECT_TRUE(Report(0, "a1a2", kMate, false));
    const auto decision = m_moves->Decisions().front();
    EXPECT_TRUE(decision.isDecided && decision.isMate);
    EXPECT_EQ(m_moves->Passes()[static_cast<std::size_t>(decision.passIndex)].name, "1b");
    EXPECT_EQ(m_moves->Passes()[0].verdict, ESolveVerdict::kDoubt);
    EXPECT_EQ(m_moves->Passes()[1].verdict, ESolveVerdict::kProvedMate);
}

TEST(FirstMovesWithoutMoves, IsDoneFromTheStart) {
    CRecorder recorder;
    const CFirstMoves moves(TMoveList(), {true, 1}, recorder);
    EXPECT_TRUE(moves.IsDone());
    EXPECT_TRUE(moves.Passes().empty());
}

}  // namespace
}  // namespace quillmere
