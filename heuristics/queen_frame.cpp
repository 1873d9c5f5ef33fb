// SH_SINGLEQUEENMATE, the black half: the frame around the queen and the king.
//
// The heuristic is for positions in which all men but the white queen and the black king stand still:
// they are the frame. The frame is left when black moves one of its men, or when the king takes one.
// Then the heuristic is over in this subtree, and its nodes are searched like any others; nothing is
// left out. The cost is a look at the move.
#include "heuristics/reply_rules.h"

namespace quillmere {

bool EndsSingleQueen(const CBlackReply& reply) {
    return !reply.Move().IsNull() && (!reply.IsKingMove() || reply.Captured() != 0);
}

}  // namespace quillmere
