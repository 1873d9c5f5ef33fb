// SH_DONTLETPROMOTEDQUEENMOVE and SH_DONTLETPROMOTEDFIGUREMOVE: what black has promoted stays where
// it is.
//
// In most compositions black's promotion comes too late: white answers it, and a new queen that gets
// to move again means that the attack had failed before. So a move of a queen that was promoted in
// the line (of any promoted figure, under the second heuristic) is given up. The promotion itself is
// no such move.
//
// Let through are
//   - a figure next to its own king, where it may still be a target or a block, while white has two
//     or more rooks, bishops and knights to use that;
//   - without `LessExceptions`: every such move in a problem that a sweeping rook solves, where the
//     rook deals with the new queen, and a last figure of black that had more at the root;
//   - with `PromotionSafety`: a figure that white attacks on its new square.
// With `LessExceptions` a move that was let through is marked as an event, and white is held to
// answering it.
//
// What is lost are mates that outplay the new figure. The cost is a test of two flags for lines
// without a black promotion, and a walk up the line for the figure that moved.
#include "core/attacks.h"
#include "core/geometry.h"
#include "core/make_move.h"
#include "core/material.h"
#include "heuristics/reply_rules.h"

#include <numeric>

namespace quillmere {
namespace {

constexpr int kPawnsOfInitial = 4;  // place of the pawns in InitialBlackCounts

bool IsMoveOfPromoted(const CBlackReply& reply) {
    return (reply.Child().m_searchFlags & kSearchPromotionsMask) != 0 && IsFigure(reply.Mover()) &&
           WasPromotedInLine(reply.BlackNode(), reply.Move().from);
}

bool IsHelpedByKing(const TChessboard& child, int square) {
    const u8* c = child.m_counts;
    return KingDistance(square, child.BlackKingSquare()) < 2 &&
           c[kWhiteRooks] + c[kWhiteBishops] + c[kWhiteKnights] > 1;
}

bool IsLastOfMany(const TChessboard& child, const THeuristicSettings& settings) {
    const u8* initial = settings.InitialBlackCounts;
    return CountBlackFigures(child) <= 1 &&
           std::accumulate(initial, initial + kPawnsOfInitial, 0) > 1;
}

bool IsLetThrough(const CBlackReply& reply) {
    const TChessboard& child = reply.Child();
    const THeuristicSettings& settings = reply.Settings();
    const int square = reply.Move().to;
    if (settings.PromotionSafety && IsAttackedByWhite(child, square))
        return true;
    if (IsHelpedByKing(child, square))
        return true;
    return !settings.LessExceptions &&
           ((settings.ActiveHeur & SH_SWEEPINGWHITEROOK) != 0 || IsLastOfMany(child, settings));
}

}  // namespace

bool rules::HasPromotedFigureMoved(CBlackReply& reply) {
    if (!IsMoveOfPromoted(reply))
        return false;
    if (!IsLetThrough(reply))
        return true;
    if (reply.Settings().LessExceptions)
        reply.MarkEvent();
    return false;
}

bool rules::HasPromotedQueenMoved(CBlackReply& reply) {
    return reply.Mover() == kBlackQueen && HasPromotedFigureMoved(reply);
}

}  // namespace quillmere
