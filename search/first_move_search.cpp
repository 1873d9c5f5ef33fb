#include "search/first_move_search.h"

#include "core/make_move.h"
#include "core/thread_context.h"
#include "heuristics/rules.h"
#include "search/forcing_moves.h"
#include "search/mate_search.h"
#include "search/move_ordering.h"
#include "search/moves_log.h"
#include "search/pause.h"
#include "search/sort_indication.h"

#include <cassert>

namespace quillmere {
namespace {

// Half-moves of the root from which on its list is sorted.
constexpr int kSortedRoot = 5;

TVerdict Logged(const TChessboard& child, TVerdict verdict) {
    if (!IsStopped(child))
        LogResult(child, verdict);
    return verdict;
}

TVerdict SearchWhiteMove(TChessboard& child, TMove move) {
    switch (MakeWhiteMove(child, move)) {
    case kMoveMade:
        break;
    case kMoveLeftOut:
        return kDoubtful;
    default:
        return kNoMate;  // the list is legal, so white has no mating material left
    }
    UpdateAfterWhiteMove(child);
    LogMove(child, move, false);
    return Logged(child, IsMoveLeftOut(child) ? kDoubtful : CheckDefences(child));
}

TVerdict SearchBlackMove(TChessboard& child, TMove move) {
    switch (MakeBlackMove(child, move, false)) {
    case kMoveMade:
        break;
    case kMateImpossible:
        return kNoMate;
    default:
        return kDoubtful;
    }
    UpdateAfterBlackMove(child);
    LogMove(child, move, true);
    return Logged(child, IsReplyLeftOut(child) ? kDoubtful : FindMate(child, true));
}

// The list of first moves is the same in all passes, so that a pass for forced mates passes over
// what it would not try.
bool IsForcing(TChessboard& root, TMove move) {
    constexpr int kForcedRoot = 4;  // half-moves; shorter tasks are over at once
    return root.m_nMoves < kForcedRoot || !IsForcedListOn(root) ||
           KeepForcingMoves(root, 1, &move) != 0;
}

}  // namespace

u8 SortFirstMoves(TChessboard& root, TMoveList& list, const TSortIndications* indications) {
    if (!root.IsWhiteToMove() || root.m_nMoves < kSortedRoot)
        return 0;
    // The list is legal, so nothing is dropped; a mate in one is only another key.
    int mateFound = 0;
    u8 quietCount = 0;
    u8 retry = 0;
    SortWhiteMoves(root, list.count, list.moves, &mateFound, &quietCount, false, &retry);
    for (TMove& move : list)
        move.enPassant = 0;  // the key of the sort
    if (indications != nullptr)
        ApplySortIndications(root, list, *indications);
    return quietCount;
}

TVerdict SearchFirstMove(TChessboard& root, TMove move) {
    if (root.IsWhiteToMove() && (IsKingMoveLeftOut(root, move) || !IsForcing(root, move)))
        return kDoubtful;
    TChessboard& child = root.m_threadContext->ChildSlot(root.m_nMoves);
    child = root;
    child.m_parent = &root;
    CutToForcedMate(child);
    const TVerdict verdict =
        root.IsWhiteToMove() ? SearchWhiteMove(child, move) : SearchBlackMove(child, move);
    assert(verdict != kRepetition);
    return verdict;
}

}  // namespace quillmere
