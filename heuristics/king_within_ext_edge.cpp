// SH_KEEPKINGWITHINEXTEDGE: the black king stays within the two outer rings.
//
// The weaker form of SH_KEEPKINGONTHEEDGE: the king may come one square off the edge. A reply that
// finds it on the third ring or farther inside is given up. With `ExtEdgeStrict` also a move of the
// king that does not end on the edge: it may step back to it, and nothing else. The squares that
// `EdgeSquaresInclCorner` adds belong to the edge here too.
//
// Before a reply is given up the dynamic relaxation is asked (heuristics/dynamic_relaxation.cpp).
//
// What is lost are mates in the middle. The cost is a look at two bits of the node.
#include "heuristics/reply_rules.h"

namespace quillmere {

bool rules::HasKingLeftExtEdge(CBlackReply& reply) {
    const TChessboard& child = reply.Child();
    const THeuristicSettings& settings = reply.Settings();
    const bool isOutside = child.BlackKingEdgeDistance() > 1;
    const bool isStrayStep = settings.ExtEdgeStrict && reply.IsKingMove() &&
                             !IsOnEdge(settings, child.BlackKingSquare());
    return (isOutside || isStrayStep) && !IsEdgeRuleRelaxed(reply, EEdgeRule::kExtEdge);
}

}  // namespace quillmere
