// SH_KEEPKINGONTHEEDGE: the black king stays on the edge, or does not move at all.
//
// Most long mates are given on the edge, and a king that gets out of it has escaped. A king's move
// that ends off the edge is given up; with `EdgeSquaresInclCorner` b2, g2, b7 and g7 belong to the
// edge. With `StrictKingMove` the king may not move at all: every move of it is given up, unless
// white mates at once or the line carries the mark that the rule has let the king go. With
// `KingMoveExceptions` such a king may still step out of a check, as long as it comes no farther from
// the edge: it was driven, it did not run.
//
// Before a reply is given up the dynamic relaxation is asked (heuristics/dynamic_relaxation.cpp). It
// may put the test off; then the king may leave, and once the test falls due, every reply that finds
// it still off the edge is given up.
//
// What is lost are mates in the middle of the board and king hunts. Moves of other men cost one look
// at the moved man and one flag.
#include "core/thread_context.h"
#include "heuristics/reply_rules.h"

namespace quillmere {
namespace {

bool IsNextToCorner(int square) {
    return kEdgeDistance[FileOf(square)] == 1 && kEdgeDistance[RankOf(square)] == 1;
}

bool IsDrivenMove(const CBlackReply& reply) {
    return reply.BlackNode().m_blackInCheck >= 0 &&
           EdgeDistance(reply.Move().to) <= EdgeDistance(reply.Move().from);
}

bool FiresStrict(CBlackReply& reply) {
    if (!reply.IsKingMove() || (reply.Child().m_searchFlags & kSearchEdgeReleased) != 0)
        return false;
    if (reply.Settings().KingMoveExceptions && IsDrivenMove(reply))
        return false;
    return !IsEdgeRuleRelaxed(reply, EEdgeRule::kEdge) && !reply.IsMatedAtOnce();
}

bool FiresPlain(CBlackReply& reply) {
    const TChessboard& child = reply.Child();
    if (!reply.IsKingMove() && !IsEdgeTestDeferred(child))
        return false;
    return !IsOnEdge(reply.Settings(), child.BlackKingSquare()) &&
           !IsEdgeRuleRelaxed(reply, EEdgeRule::kEdge);
}

}  // namespace

bool IsOnEdge(const THeuristicSettings& settings, int square) {
    return EdgeDistance(square) == 0 || (settings.EdgeSquaresInclCorner && IsNextToCorner(square));
}

bool rules::HasKingLeftEdge(CBlackReply& reply) {
    return reply.Settings().StrictKingMove ? FiresStrict(reply) : FiresPlain(reply);
}

}  // namespace quillmere
