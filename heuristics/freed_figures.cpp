// Freed black figures, the white half.
//
// Three heuristics assume that some black figures do nothing: the queen that was just promoted, any
// promoted figure, the figures that black's own men block. The position test after black's replies
// lets exceptions through and may mark such a move as an event (kMoveMarkEvent). With
// `LessExceptions` white is then held to what the exception was meant for:
//   - after an event that freed a figure only white moves that answer it are searched: those that
//     take it, attack it, pin it to its king, or check;
//   - where a figure of the blocked list stands off its square without such an event, every move of
//     the white node is left out: the plan is broken, and the line is given up as a whole.
// A captured figure is no freed one. Without `LessExceptions` nothing is left out here. What is lost
// are mates in which white simply goes on. Lists are compared and one attack test is made, both only
// after an event or with a list.
//
// A node follows the blocked list in m_trackedFigures, place by place; the squares to compare with
// stand in `BlockedFigureSquares`.
#include "heuristics/freed_figures.h"

#include "core/attacks.h"
#include "core/make_move.h"
#include "core/thread_context.h"
#include "heuristics/last_white_move.h"

#include <algorithm>

namespace quillmere {
namespace {

// Of a white node: the black move before was marked.
bool IsAfterEvent(const TChessboard& node) {
    return node.m_parent != nullptr && (node.m_lastMove.flags & kMoveMarkEvent) != 0;
}

bool IsTracked(const TChessboard& node, int square) {
    const auto& tracked = node.m_trackedFigures;
    return std::find(std::begin(tracked), std::end(tracked), square) != std::end(tracked);
}

// Of a white node: the figure that black moved last is one that was to stay still. The promotion
// itself frees nothing yet.
bool IsLastFigureFreed(const TChessboard& node) {
    const int square = node.m_lastMove.to;
    const u8 figure = node.m_board[square];
    if ((node.Heur & SH_DONTLETFIGUREUNBLOCK) != 0 && IsTracked(node, square))
        return true;
    u32 promoted = SH_DONTLETPROMOTEDFIGUREMOVE;
    if (figure == kBlackQueen)
        promoted |= SH_DONTLETPROMOTEDQUEENMOVE;
    return (node.Heur & promoted) != 0 && (node.m_searchFlags & kSearchPromotionsMask) != 0 &&
           IsFigureCode(figure) && node.m_lastMove.Promotion() == 0 &&
           WasPromotedInLine(node, square);
}

bool IsAnsweredAt(const TChessboard& child, int square) {
    return child.m_lastMove.to == square || child.m_blackInCheck >= 0 ||
           IsAttackedByWhite(child, square) || IsPinnedToBlackKing(child, square);
}

}  // namespace

bool IsFreedFigureUnanswered(const TChessboard& child) {
    const TChessboard& node = *child.m_parent;
    return child.m_threadContext->heuristics.LessExceptions && IsAfterEvent(node) &&
           IsLastFigureFreed(node) && !IsAnsweredAt(child, node.m_lastMove.to);
}

bool HasBlockedFigureLeft(const TChessboard& child) {
    const THeuristicSettings& settings = child.m_threadContext->heuristics;
    const TChessboard& node = *child.m_parent;
    if (!settings.LessExceptions)
        return false;
    const int count = std::min<int>(settings.BlockedFigureCount, kMaxBlockedFigures);
    for (int i = 0; i < count; ++i) {
        const int square = node.m_trackedFigures[i];
        if (square < 0 || square == settings.BlockedFigureSquares[i])
            continue;
        if (!IsAfterEvent(node) || node.m_lastMove.to != square)
            return true;
    }
    return false;
}

}  // namespace quillmere
