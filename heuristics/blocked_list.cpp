// Which blocked figure to let go first.
//
// A figure that has many squares to go to is the one whose standing still is the boldest
// assumption: a solution most likely fails on its moves, and giving it up leaves the list
// strongest. So the figure with the largest mobility goes, one for each relaxation. Mobility is the
// number of moves that the figure could make in the root position if black were to move, without
// regard to checks.
#include "heuristics/blocked_list.h"

#include "core/move_generation.h"
#include "core/thread_context.h"

#include <algorithm>
#include <cassert>
#include <iterator>

namespace quillmere {
namespace {

// Takes the entry out of an array; `none` fills the end.
template <typename TEntry, typename TNone>
void TakeOut(TEntry (&entries)[kMaxBlockedFigures], int entry, TNone none) {
    std::move(entries + entry + 1, std::end(entries), entries + entry);
    entries[kMaxBlockedFigures - 1] = static_cast<TEntry>(none);
}

int MobilityOf(const TChessboard& node, int square) {
    if (square >= kSquareCount || !IsBlack(node.m_board[square]))
        return 0;
    TMoveList moves;
    return GetBlackMoves(node, square, moves.moves);
}

bool IsListed(const THeuristicSettings& settings, u8 square) {
    const u8* end = settings.BlockedFigureSquares + settings.BlockedFigureCount;
    return std::find(settings.BlockedFigureSquares, end, square) != end;
}

}  // namespace

void TrackBlockedFigures(TChessboard& root) {
    const THeuristicSettings& settings = root.m_threadContext->heuristics;
    for (int entry = 0; entry < kMaxBlockedFigures; ++entry) {
        const u8 square = settings.BlockedFigureSquares[entry];
        const bool isUsed = entry < settings.BlockedFigureCount && square < kSquareCount;
        root.m_trackedFigures[entry] = isUsed ? static_cast<i8>(square) : i8{-1};
    }
}

void StrikeBlockedEntry(TChessboard& node, int entry) {
    THeuristicSettings& settings = node.m_threadContext->heuristics;
    assert(entry >= 0 && entry < settings.BlockedFigureCount);
    settings.BlockedFigureCountBefore = settings.BlockedFigureCount;
    --settings.BlockedFigureCount;
    TakeOut(settings.BlockedFigureSquares, entry, kNoSquare);
    TakeOut(settings.BlockedFigureInitialSquares, entry, kNoSquare);
    TakeOut(node.m_trackedFigures, entry, -1);
}

bool StrikeFreestBlockedFigure(TChessboard& node) {
    const THeuristicSettings& settings = node.m_threadContext->heuristics;
    int freest = -1;
    int most = -1;
    for (int entry = 0; entry < settings.BlockedFigureCount; ++entry) {
        const int mobility = MobilityOf(node, settings.BlockedFigureSquares[entry]);
        if (mobility > most) {
            most = mobility;
            freest = entry;
        }
    }
    if (freest < 0)
        return false;
    StrikeBlockedEntry(node, freest);
    return true;
}

void StrikePendingFigures(TChessboard& node) {
    THeuristicSettings& settings = node.m_threadContext->heuristics;
    for (int i = 0; i < settings.PendingBlockRemovalCount; ++i) {
        for (int entry = settings.BlockedFigureCount - 1; entry >= 0; --entry) {
            if (settings.BlockedFigureSquares[entry] == settings.PendingBlockRemovals[i])
                StrikeBlockedEntry(node, entry);
        }
    }
    settings.PendingBlockRemovalCount = 0;
}

void FollowStruckEntries(TChessboard& node, const THeuristicSettings& before) {
    const THeuristicSettings& now = node.m_threadContext->heuristics;
    for (int entry = before.BlockedFigureCount - 1; entry >= 0; --entry) {
        if (!IsListed(now, before.BlockedFigureSquares[entry]))
            TakeOut(node.m_trackedFigures, entry, -1);
    }
}

}  // namespace quillmere
