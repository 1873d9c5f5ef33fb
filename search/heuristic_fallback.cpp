#include "search/heuristic_fallback.h"

#include "search/mate_search.h"
#include "search/pause.h"

#include <algorithm>

namespace quillmere {
namespace {

// Half-moves of a node below which it is searched sooner than tried.
constexpr int kLeastHalfMoves = 7;
// Made moves of one trial.
constexpr u64 kFallbackWork = 5000;
constexpr int kFilesOfBoard = 8;

// White's king stands before the black pawn nearest to promotion, the black king on the edge.
bool IsOfStrictType(const TChessboard& node) {
    if (node.BlackKingEdgeDistance() != 0 || node.m_counts[kBlackPawns] == 0)
        return false;
    const u8* const first = std::find(node.m_board, node.m_board + kSquareCount, kBlackPawn);
    const auto square = static_cast<int>(first - node.m_board);
    // Of several on one rank it may stop any.
    for (int pawn = square; pawn < kSquareCount && RankOf(pawn) == RankOf(square); ++pawn) {
        if (node.m_board[pawn] == kBlackPawn && node.WhiteKingSquare() == pawn - kFilesOfBoard)
            return true;
    }
    return false;
}

// Keeps what the search under the strict word changes in its thread.
class CStrictForm {
public:
    explicit CStrictForm(TThreadContext& thread)
        : m_thread(thread),
          m_settings(thread.heuristics),
          m_workLimit(thread.workLimit),
          m_isSafe(thread.isSafe),
          m_isLogHidden(thread.isLogHidden) {
        thread.heuristics.StrictKingMove = true;
        thread.heuristics.KingMoveExceptions = false;
        thread.workLimit = std::min(thread.workLimit, thread.madeMoves + kFallbackWork);
        thread.isSafe = true;
        thread.isLogHidden = true;
        thread.quickSearch.isRunning = true;
    }
    ~CStrictForm() {
        m_thread.heuristics = m_settings;
        m_thread.workLimit = m_workLimit;
        m_thread.isSafe = m_isSafe;
        m_thread.isLogHidden = m_isLogHidden;
        m_thread.quickSearch = TQuickSearch{};
        // If the limit was that of a search around this one, that one finds it again.
        LiftWorkLimitStop(m_thread);
    }
    CStrictForm(const CStrictForm&) = delete;
    CStrictForm& operator=(const CStrictForm&) = delete;

private:
    TThreadContext& m_thread;
    const THeuristicSettings m_settings;
    const u64 m_workLimit;
    const bool m_isSafe;
    const bool m_isLogHidden;
};

}  // namespace

bool IsFallbackDue(const TChessboard& node) {
    const bool isStrict =
        (node.Heur & SH_KEEPKINGONTHEEDGE) != 0 && node.m_threadContext->heuristics.StrictKingMove;
    const TChessboard* const before = node.m_parent != nullptr ? node.m_parent->m_parent : nullptr;
    return node.m_nMoves >= kLeastHalfMoves && !isStrict && node.OneColourMode() == kOneColourOff &&
           before != nullptr && IsOfStrictType(node) && !IsOfStrictType(*before);
}

bool MatesByFallback(const TChessboard& node) {
    TThreadContext& thread = *node.m_threadContext;
    const CStrictForm form(thread);
    TChessboard copy = node;
    copy.Heur = SH_KEEPKINGONTHEEDGE | (node.Heur & SH_KEYWHITEFIGURE);
    if (thread.computeHeurParams != nullptr)
        thread.computeHeurParams(copy);
    return FindMate(copy, true) == kMate && !IsStopped(node);
}

}  // namespace quillmere
