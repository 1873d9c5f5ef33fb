// SH_SEASNAKE, the black half: black's pendulum.
//
// The plan of the sea snake is that one black man swings between two squares, having no others, while
// the white king walks its triangle. Once the moves after which the plan begins are played, a reply
// that leads the man from one of the two squares to any but the other one leaves the plan.
//
// A plan that the program found itself is then over: the bit goes off the node, which is searched
// with the plain list, and nothing is left out. So it is when any other figure or the king moves, for
// the plan knows of the swing and of pawn moves only. A plan that the user gave is taken as it stands,
// and the reply that leaves the pendulum is given up.
//
// What is lost, with the user's plan alone, are mates against other defences. The cost is two
// comparisons.
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/reply_rules.h"

namespace quillmere {
namespace {

bool HasPlanBegun(const TChessboard& child) {
    return child.Ply() > static_cast<int>(child.m_searchContext->SeaSnakeOnlyAfter.size());
}

bool IsOffPlan(const CBlackReply& reply) {
    const THeuristicSettings& settings = reply.Settings();
    const TMove move = reply.Move();
    const int first = settings.SeaSnakePendulum1;
    const int second = settings.SeaSnakePendulum2;
    if (move.IsNull() || (move.from != first && move.from != second))
        return false;
    return move.to != (move.from == first ? second : first) && HasPlanBegun(reply.Child());
}

// A move of another man than the pendulum and the pawns.
bool IsOutsidePlan(const CBlackReply& reply) {
    const THeuristicSettings& settings = reply.Settings();
    const TMove move = reply.Move();
    return !move.IsNull() && reply.Mover() != kBlackPawn &&
           move.from != settings.SeaSnakePendulum1 && move.from != settings.SeaSnakePendulum2 &&
           HasPlanBegun(reply.Child());
}

}  // namespace

bool EndsSeaSnake(const CBlackReply& reply) {
    return !reply.Settings().SeaSnakeByUser && (IsOffPlan(reply) || IsOutsidePlan(reply));
}

bool rules::HasLeftPendulum(CBlackReply& reply) {
    return reply.Settings().SeaSnakeByUser && IsOffPlan(reply);
}

}  // namespace quillmere
