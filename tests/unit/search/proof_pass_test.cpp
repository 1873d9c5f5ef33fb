#include "core/fen.h"
#include "core/notation.h"
#include "heuristics/selection_limits.h"
#include "heuristics/trial_search.h"
#include "registers/aggregated_register.h"
#include "search/forcing_moves.h"
#include "search/proof_pass.h"
#include "search/solve.h"
#include "tests/support/registers.h"
#include "tests/support/search_board.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillmere {
namespace {

// White mates within 7 moves, but not by checks alone.
constexpr const char* kEasy = "7k/8/8/6K1/8/8/p7/R7 w - - 0 1";
constexpr u16 kHalfMoves = kProofRoot + 2;
// Rc3 mates in 6.
constexpr const char* kMateInSix = "Nr6/8/8/8/7P/1R2B1K1/8/7k w - - 0 1";

TSolveResult SolveFen(const std::string& fen, const TSolveRequest& request) {
    TChessboard board;
    InitBoard(board);
    if (!SetFromFENCode(board, fen.c_str(), nullptr, nullptr))
        throw std::runtime_error("no FEN code: " + fen);
    TAggregatedTemporaryChessboardRegister solved(test::QuietSettings(u64{16} << 20));
    TSearchContext context;
    context.tempRegister = &solved;
    return Solve(board, request, context);
}

TSolveRequest Automatic(int halfMoves) {
    TSolveRequest request;
    request.halfMoves = static_cast<u16>(halfMoves);
    request.selectsHeuristics = true;
    request.proofMoves = ProofMovesOf(halfMoves);
    return request;
}

std::vector<std::string> NamesOf(const std::vector<TPassRecord>& passes) {
    std::vector<std::string> names;
    for (const TPassRecord& pass : passes)
        names.push_back(pass.name);
    return names;
}

TEST(ProofPass, ShortTasksHaveNone) {
    EXPECT_EQ(ProofMovesOf(kProofRoot - 1), 0U);
    EXPECT_GE(ProofMovesOf(kProofRoot), kFirstProofMoves);
    const TSolveResult result = SolveFen("8/8/8/8/8/Q7/4p3/5k1K w - -", Automatic(9));
    EXPECT_EQ(result.verdict, ESolveVerdict::kProvedMate);
    for (const TPassRecord& pass : result.passes)
        EXPECT_FALSE(IsProofPass(pass.name)) << pass.name;
}

TEST(ProofPass, WhatTheFirstDecidesNeedsNoChoice) {
    const TSolveResult result = SolveFen(kEasy, Automatic(kHalfMoves));
    EXPECT_EQ(result.verdict, ESolveVerdict::kProvedMate);
    EXPECT_EQ(NamesOf(result.passes), std::vector<std::string>{kFirstProofPassName});
    EXPECT_LE(result.passes.front().madeMoves, kFirstProofMoves * 2);
    EXPECT_TRUE(result.selection.wasMade);
    EXPECT_EQ(result.selection.whyNothing, EMessage::kReasonDecided);
    EXPECT_TRUE(result.selection.trials.empty());
    EXPECT_FALSE(result.mainLine.empty());
}

TEST(ProofPass, WithoutMadeMovesForItThereIsNone) {
    TSolveRequest request = Automatic(kHalfMoves);
    request.proofMoves = 0;
    const TSolveResult result = SolveFen(kEasy, request);
    EXPECT_EQ(result.verdict, ESolveVerdict::kProvedMate);
    for (const TPassRecord& pass : result.passes)
        EXPECT_FALSE(IsProofPass(pass.name)) << pass.name;
    EXPECT_NE(result.selection.whyNothing, EMessage::kReasonDecided);
}

TEST(ProofPass, WhatItLeavesOpenTheNextOneTakesUp) {
    // Of so few made moves the first pass gets all, and the passes have to prove the mate.
    TSolveRequest request = Automatic(kHalfMoves);
    request.proofMoves = 20;
    const TSolveResult result = SolveFen(kEasy, request);
    EXPECT_EQ(result.verdict, ESolveVerdict::kProvedMate);
    ASSERT_GE(result.passes.size(), 2U);
    EXPECT_EQ(result.passes.front().name, kFirstProofPassName);
    EXPECT_EQ(result.passes.front().verdict, ESolveVerdict::kDoubt);
    EXPECT_FALSE(IsProofPass(result.passes.back().name));
}

// A root for trials.
class CTrialRoot {
public:
    CTrialRoot(const std::string& fen, u16 halfMoves) : m_board(fen, halfMoves) {
        m_board.Context().tempRegister = &m_solved;
        m_search = MakeProofSearch(m_board.Root());
    }
    TTrialRequest Request(u32 heur, u64 limit) {
        TTrialRequest request;
        request.heur = heur;
        request.halfMoves = m_board.Root().m_nMoves;
        request.workLimit = limit;
        request.proof = m_search.get();
        return request;
    }
    TChessboard& Root() { return m_board.Root(); }
    TThreadContext& Thread() { return m_board.Thread(); }

private:
    TAggregatedTemporaryChessboardRegister m_solved{test::QuietSettings(u64{16} << 20)};
    test::CSearchBoard m_board;
    std::unique_ptr<CProofNumberSearch> m_search;
};

TEST(ProofTrial, GoesOnWhereTheOneBeforeItStopped) {
    CTrialRoot root(kMateInSix, kProofRoot);
    constexpr u64 kLimit = 5000;
    constexpr int kMost = 1000;
    TTrialResult result;
    int trials = 0;
    do {
        result = RunTrial(root.Root(), root.Request(SH_3MOVESTOMATE, kLimit));
        ++trials;
    } while (result.verdict == ETrialVerdict::kLimit && trials < kMost);
    ASSERT_EQ(result.verdict, ETrialVerdict::kMate);
    EXPECT_GT(trials, 1) << "the limit must not reach for the whole proof";
    EXPECT_EQ(root.Thread().stopLevel.load(), kThreadRuns);
    // What one trial proved is settled for the next, under any word.
    const TTrialResult again = RunTrial(root.Root(), root.Request(0, kLimit));
    EXPECT_EQ(again.verdict, ETrialVerdict::kMate);
    EXPECT_TRUE(MovesEqual(again.mate, result.mate));
    EXPECT_LT(again.madeMoves, 500U);
    // The others are asked about without it.
    TTrialRequest others = root.Request(0, kLimit);
    others.decided = {result.mate};
    const TTrialResult other = RunTrial(root.Root(), others);
    EXPECT_FALSE(other.verdict == ETrialVerdict::kMate && MovesEqual(other.mate, result.mate));
}

TEST(ProofTrial, TriesOnlyForcingMovesUnderTheWord) {
    // A rook and a queen drive the king up the board; in the other a quiet move is the only one.
    struct TRow {
        const char* fen;
        u16 halfMoves;
        ETrialVerdict verdict;
    };
    constexpr TRow kRows[] = {
        {"8/8/8/8/8/3k4/Q7/1R5K w - - 0 1", 13, ETrialVerdict::kMate},
        {"7k/8/8/6K1/8/8/p7/R7 w - - 0 1", 13, ETrialVerdict::kDoubtful},
    };
    for (const TRow& row : kRows) {
        CTrialRoot root(row.fen, row.halfMoves);
        root.Thread().heuristics.FfmMode = kForcedChecks;
        root.Thread().heuristics.FfmStartMode = kForcedChecks;
        const TTrialResult result =
            RunTrial(root.Root(), root.Request(SH_FINDFORCEDMATE, 5'000'000));
        EXPECT_EQ(static_cast<int>(result.verdict), static_cast<int>(row.verdict)) << row.fen;
    }
}

}  // namespace
}  // namespace quillmere
