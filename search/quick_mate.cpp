#include "search/quick_mate.h"

#include "core/attacks.h"
#include "core/geometry.h"
#include "core/search_context.h"
#include "search/mate_search.h"
#include "search/moves_log.h"
#include "search/pause.h"

#include <algorithm>

namespace quillmere {
namespace {

constexpr u8 kChecksOnlyMode = 2;

u8 ForcedMateMode(const TChessboard& node) {
    return (node.Heur & SH_FINDFORCEDMATE) != 0 ? node.m_threadContext->heuristics.FfmMode : 0;
}

// The word in the quick search.
u32 QuickWord(const TChessboard& node) {
    u32 heur = node.Heur & ~u32{SH_FINDFORCEDMATE};
    if (node.m_threadContext->heuristics.FfmStartMode != 0)
        heur &= ~u32{SH_ASSERTBLACKKINGSURROUNDED};
    return heur;
}

// The node on a copy of `halfMoves`.
TVerdict SearchQuickly(const TChessboard& node, int halfMoves) {
    TThreadContext& thread = *node.m_threadContext;
    TChessboard copy = node;
    copy.m_nMoves = static_cast<u16>(halfMoves);
    copy.Heur = QuickWord(node);
    if (copy.Heur != node.Heur && thread.computeHeurParams != nullptr)
        thread.computeHeurParams(copy);
    const bool isLogHidden = thread.isLogHidden;
    thread.isLogHidden = true;
    thread.quickSearch.isRunning = true;
    thread.quickSearch.isChecksOnly = ForcedMateMode(node) == kChecksOnlyMode;
    thread.quickSearch.additional = static_cast<u16>(node.m_nMoves - halfMoves);
    thread.quickSearch.hasUsedAdditional = false;
    const TVerdict verdict = FindMate(copy, true);
    const bool hasUsedAdditional = thread.quickSearch.hasUsedAdditional;
    thread.quickSearch = TQuickSearch{};
    thread.isLogHidden = isLogHidden;
    if (verdict == kMate && hasUsedAdditional && thread.movesLog != nullptr && !IsStopped(node))
        LogText(node, "QuickerMate with AdditionalMoves found (with glob.reg./Nalimov lookup)");
    return verdict;
}

template <int kHalfMoves>
TVerdict QuickMateOf(const TChessboard& node) {
    return node.m_nMoves > kHalfMoves ? SearchQuickly(node, kHalfMoves) : kNothingKnown;
}

using TRoutine = TVerdict (*)(const TChessboard& node);
constexpr TRoutine kRoutines[] = {
    QuickMateOf<1>,
    QuickMateOf<3>,
    QuickMateOf<5>,
    QuickMateOf<7>,
    QuickMateOf<9>,
    QuickMateOf<11>,
    QuickMateOf<13>,
    QuickMateOf<15>,
    QuickMateOf<17>,
};
static_assert(2 * sizeof kRoutines / sizeof kRoutines[0] == kMaxQuickMateDepth);

// Half-moves of the root up to which a task is short, and the deepest quick search in it.
constexpr int kShortRoot = 15;
constexpr int kDeepestInShort = 11;
// Tried under the rule of the edge by every node that has so many half-moves more: there it saves 5 % of
// the made moves. Without a word and under other rules it costs as much as it saves, and so do greater
// depths (docs/measurements.md).
constexpr int kSmallDepth = 3;
constexpr int kSmallDistance = 4;
// The depths that are tried by position.
constexpr int kUsualDepth = 9;
constexpr int kGreatDepth = 11;
// From this mode on only nodes of the great depth would be searched quickly, as which they stand anyway.
constexpr int kGreatMode = 7;
// Half-moves above which the great depth is tried when the usual one failed.
constexpr int kGreatAfterUsual = 15;

// Mates within the depth, if the node has more half-moves.
TVerdict TryDepth(const TChessboard& node, int halfMoves) {
    if (halfMoves < 1 || node.m_nMoves <= halfMoves)
        return kNothingKnown;
    const TVerdict verdict = SearchQuickly(node, halfMoves);
    return verdict == kMate && !IsStopped(node) ? kMate : kNothingKnown;
}

int GivenDepth(const TChessboard& node, int given) {
    const int rootMoves = node.m_nRootMoves;
    return rootMoves <= kShortRoot ? std::min({given, rootMoves - 2, kDeepestInShort}) : given;
}

// White is checked by the queen from a square at the edge: lines of many checks follow.
bool IsCheckedFromOutside(const TChessboard& node) {
    const int checker = node.m_whiteInCheck;
    return checker >= 0 && checker < kSquareCount && node.m_board[checker] == kBlackQueen &&
           EdgeDistance(checker) == 0;
}

// Black's last move took a queen.
bool HasQueenFallen(const TChessboard& node) {
    return node.m_parent != nullptr && !node.m_lastMove.IsNull() &&
           node.m_parent->m_board[node.m_lastMove.to] == kWhiteQueen;
}

// In long tasks, where black's checks or the loss of the queen decide sooner than the length allows.
TVerdict TryByPosition(const TChessboard& node) {
    if (node.m_nRootMoves <= kShortRoot || ForcedMateMode(node) >= kGreatMode)
        return kNothingKnown;
    if (!IsCheckedFromOutside(node) && !HasQueenFallen(node))
        return kNothingKnown;
    const TVerdict usual = TryDepth(node, kUsualDepth);
    if (usual == kMate || node.m_nMoves <= kGreatAfterUsual || IsStopped(node))
        return usual;
    return TryDepth(node, kGreatDepth);
}

}  // namespace

TVerdict QuickMate(TChessboard& node, int depth) {
    if (depth < 1 || depth > kMaxQuickMateDepth || node.m_threadContext->quickSearch.isRunning)
        return kNothingKnown;
    return kRoutines[(depth - 1) / 2](node);
}

TVerdict TryQuickMates(TChessboard& node) {
    const int given = node.m_searchContext->m_shLookForQuickerMateDepth;
    if (given >= 0)
        return TryDepth(node, GivenDepth(node, given));
    const bool isSmallDue = node.m_nMoves >= kSmallDepth + kSmallDistance &&
                            (node.Heur & SH_KEEPKINGONTHEEDGE) != 0 && QuickWord(node) == node.Heur;
    const TVerdict verdict = isSmallDue ? TryDepth(node, kSmallDepth) : kNothingKnown;
    return verdict == kMate || IsStopped(node) ? verdict : TryByPosition(node);
}

}  // namespace quillmere
