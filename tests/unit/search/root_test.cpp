#include "core/legality.h"
#include "heuristics/heur_params.h"
#include "search/root.h"
#include "search/solve.h"
#include "tests/support/boards.h"
#include "tests/support/search_board.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::CSearchBoard;

constexpr char kLoyd[] = "8/6R1/7p/5K1k/8/6p1/5bPP/4N3";  // #3, key Rg7-g3

// A root with a word, its first moves, and how the passes went.
class CRequest {
public:
    CRequest(const std::string& fen, u16 halfMoves, u32 heur) : m_board(fen, halfMoves) {
        m_board.Thread().computeHeurParams = ComputeHeurParams;
        m_list.count = GetLegalMoves(m_board.Root(), m_list.moves);
        SetHeur(m_board.Root(), heur);
    }

    TRootResult Run(int wanted = 0, int threads = 1) {
        m_moves.emplace(
            m_list, CFirstMoves::TWish{m_board.Root().IsWhiteToMove(), wanted}, m_observer);
        return FindMateThreaded(m_board.Root(), *m_moves, m_request, threads, m_work);
    }

    std::string PassNames() const {
        std::string names;
        for (const TPassRecord& pass : m_moves->Passes())
            names += (names.empty() ? "" : " ") + pass.name;
        return names;
    }
    std::string Keys() const {
        std::string keys;
        for (const auto& decision : m_moves->Decisions()) {
            if (decision.isDecided && decision.isMate)
                keys += (keys.empty() ? "" : " ") + test::TextOfMove(decision.move);
        }
        return keys;
    }

    CSearchBoard m_board;
    TMoveList m_list;
    ISolveObserver m_observer;
    TRootRequest m_request;
    TRootWork m_work;
    std::optional<CFirstMoves> m_moves;
};

TEST(FindMateRoot, WithoutHeuristics_ThereIsOnePass) {
    CRequest request(kLoyd, 5, 0);
    EXPECT_FALSE(request.Run().isStopped);
    EXPECT_EQ(request.PassNames(), "2");
    EXPECT_EQ(request.Keys(), "g7g3");
    EXPECT_EQ(request.m_moves->Passes()[0].heuristics, "");
    EXPECT_GT(request.m_moves->Passes()[0].nodes, 0u);
}

TEST(FindMateRoot, WithHeuristics_PassOneComesFirstAndPassTwoLast) {
    CRequest request(kLoyd, 3, SH_AREKINGSNEAR);  // there is no mate in 2
    request.Run();
    EXPECT_EQ(request.PassNames(), "1a 2");
    EXPECT_EQ(request.m_moves->Passes()[0].verdict, ESolveVerdict::kDoubt);
    EXPECT_EQ(request.m_moves->Passes()[1].verdict, ESolveVerdict::kProvedNoMate);
    EXPECT_NE(request.m_moves->Passes()[0].heuristics.find("SH_AREKINGSNEAR"), std::string::npos);
}

TEST(FindMateRoot, MateInPassOne_NeedsNoFurtherPass) {
    CRequest request(kLoyd, 5, SH_AREKINGSNEAR);
    request.Run(1);
    EXPECT_EQ(request.PassNames(), "1a");
    EXPECT_EQ(request.Keys(), "g7g3");
}

TEST(FindMateRoot, AllKeys_GoOnToTheLastPass) {
    CRequest request(kLoyd, 5, SH_AREKINGSNEAR);
    request.Run(0);
    EXPECT_EQ(request.PassNames(), "1a 2");
    EXPECT_EQ(request.Keys(), "g7g3");
}

TEST(FindMateRoot, Relaxations_GetALetterEach) {
    CRequest request(kLoyd, 3, SH_SWEEPINGWHITEROOK | SH_DONTLEAVEMAINDIAGONAL | SH_AREKINGSNEAR);
    request.Run();
    EXPECT_EQ(request.PassNames(), "1a 1b 1c 2");
    const std::vector<TPassRecord> passes = request.m_moves->Passes();
    EXPECT_EQ(passes[1].Heur, SH_DONTLEAVEMAINDIAGONAL | SH_AREKINGSNEAR);
    EXPECT_EQ(passes[2].Heur, static_cast<u32>(SH_AREKINGSNEAR));
    EXPECT_EQ(passes[3].Heur, 0u);
}

TEST(FindMateRoot, RelaxationSwitchedOff_LeavesOnePassWithHeuristics) {
    CRequest request(kLoyd, 3, SH_SWEEPINGWHITEROOK | SH_AREKINGSNEAR);
    request.m_board.Thread().heuristics.LetRelaxHeuristics = false;
    request.Run();
    EXPECT_EQ(request.PassNames(), "1a 2");
}

TEST(FindMateRoot, SolutionKnown_RelaxationMayEndWithIt) {
    constexpr u32 kWord = SH_AREKINGSNEAR | SH_DONTLETBLACKQUEENCHECKTWICE;
    CRequest request(kLoyd, 5, kWord);
    request.m_request.stopsRelaxingOnFirstSolution = true;
    request.Run(0);
    EXPECT_EQ(request.PassNames(), "1a 2") << "all keys are wanted, and one is known";
    CRequest other(kLoyd, 5, kWord);
    other.Run(0);
    EXPECT_EQ(other.PassNames(), "1a 1b 2");
}

TEST(FindMateRoot, FinalPassSwitchedOff_NeverSaysNoMate) {
    CRequest request(kLoyd, 3, SH_AREKINGSNEAR);
    request.m_board.Thread().heuristics.RunPassWithoutHeuristics = false;
    request.Run();
    EXPECT_EQ(request.PassNames(), "1a");
    EXPECT_FALSE(request.m_moves->IsDone());
    for (const auto& decision : request.m_moves->Decisions())
        EXPECT_FALSE(decision.isDecided);
}

TEST(FindMateRoot, ScanComesFirstWhereItIsAskedFor) {
    CRequest request(kLoyd, 5, SH_AREKINGSNEAR);
    request.m_request.startsAtPassOne = false;
    request.Run();
    EXPECT_EQ(request.PassNames(), "0 1a 2");
    EXPECT_EQ(request.m_moves->Passes()[0].verdict, ESolveVerdict::kDoubt);
    CRequest plain(kLoyd, 3, 0);
    plain.m_request.startsAtPassOne = false;
    plain.Run();
    EXPECT_EQ(plain.PassNames(), "2") << "without heuristics the last pass follows at once";
}

TEST(FindMateRoot, PassIsSeenByTheNodes) {
    CRequest request(kLoyd, 3, SH_AREKINGSNEAR);
    request.Run();
    EXPECT_EQ(request.m_board.Root().m_pass, kPassComplete);
    EXPECT_EQ(request.m_board.Root().Heur, 0u);
    EXPECT_EQ(request.m_board.Root().HeurParams, 0u);
}

TEST(FindMateRoot, RequiredHeuristicsMissing_NothingIsSearched) {
    CRequest request(kLoyd, 5, SH_AREKINGSNEAR);
    request.m_board.Context().requiredHeuristics = SH_SEASNAKE;
    EXPECT_TRUE(request.Run().isMaskFailed);
    EXPECT_EQ(request.PassNames(), "");
    CRequest other(kLoyd, 5, SH_AREKINGSNEAR);
    other.m_board.Context().requiredHeuristics = SH_AREKINGSNEAR;
    EXPECT_FALSE(other.Run().isMaskFailed);
    EXPECT_EQ(other.Keys(), "g7g3");
}

TEST(FindMateRoot, StopAtTheStart_SearchesNothing) {
    CRequest request(kLoyd, 5, SH_AREKINGSNEAR);
    SetStop(request.m_board.Context(), kStopAll);
    EXPECT_TRUE(request.Run().isStopped);
    EXPECT_EQ(request.Keys(), "");
}

TEST(FindMateRoot, MateDefenceTask_HoldingDefencesComeFromTheLastPass) {
    // Black holds by Kh7.
    CRequest request("6k1/8/5K2/8/8/8/8/R7", 2, SH_AREKINGSNEAR);
    request.Run(0);
    EXPECT_TRUE(request.m_moves->IsDone());
    EXPECT_EQ(request.PassNames(), "1a 2");
}

TEST(FindMateThreaded, MoreThreadsGiveTheSameKeysAndPasses) {
    for (const int threads : {1, 2, 4, 64}) {
        CRequest request(kLoyd, 5, SH_SWEEPINGWHITEROOK | SH_AREKINGSNEAR);
        const TRootResult result = request.Run(0, threads);
        EXPECT_EQ(request.Keys(), "g7g3") << threads;
        EXPECT_EQ(request.PassNames(), "1a 1b 2") << threads;
        EXPECT_LE(result.threads, std::min(threads, request.m_list.count));
        EXPECT_EQ(request.m_work.madeMoves > 0, threads > 1);
    }
}

TEST(FindMateThreaded, ThreadsDoNotPassTheMoves) {
    CRequest request("7k/5K2/8/8/8/8/7p/R7", 3, 0);
    request.m_list.count = 3;
    EXPECT_LE(request.Run(0, 8).threads, 3);
}

TEST(TakeHeuristics, WordParametersAndMaterialAreTaken) {
    CSearchBoard given("8/8/8/3k4/8/8/8/R3K3", 5);
    given.Thread().heuristics.StrictKingMove = true;
    given.Thread().heuristics.BlockedFigureCount = 2;
    given.Thread().heuristics.BlockedFigureSquares[0] = 35;
    given.Thread().heuristics.BlockedFigureSquares[1] = 36;
    given.Context().KeyLineFile = 3;
    given.Root().Heur = SH_KEEPKINGONTHEEDGE;
    CSearchBoard board("3q4/8/8/3kp3/8/8/PPP5/R3K3", 5);
    board.Thread().computeHeurParams = ComputeHeurParams;
    TakeHeuristics(board.Root(), given.Root());
    EXPECT_EQ(board.Root().Heur, static_cast<u32>(SH_KEEPKINGONTHEEDGE));
    EXPECT_TRUE(board.Thread().heuristics.StrictKingMove);
    EXPECT_EQ(board.Context().KeyLineFile, 3);
    EXPECT_EQ(board.Root().m_trackedFigures[0], 35);
    EXPECT_EQ(board.Root().m_trackedFigures[1], 36);
    EXPECT_EQ(board.Root().m_trackedFigures[2], -1);
    const THeuristicSettings& settings = board.Thread().heuristics;
    EXPECT_EQ(settings.InitialWhiteCounts[1], 1);
    EXPECT_EQ(settings.InitialWhiteCounts[4], 3);
    EXPECT_EQ(settings.InitialBlackCounts[0], 1);
    EXPECT_EQ(settings.InitialBlackCounts[4], 1);
}

}  // namespace
}  // namespace quillmere
