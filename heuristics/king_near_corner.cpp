// SH_KEEPKINGNEARCORNER: the black king stays near a corner.
//
// Where the mate is given in a corner and the king could run from it, the lines in which it runs are
// given up. `NearCornerDistance` above 0 bounds the sum of the king's distances from the nearer file
// and rank of the edge, below 0 the greater of the two, so that c2 counts 3 in squares and 2 in
// moves; 0 says nothing. A reply after which the king stands farther off is given up, unless white
// mates at once.
//
// What is lost are mates on the way to another corner. The cost is two look-ups, and one mate test
// for a king outside.
#include "heuristics/reply_rules.h"

#include <algorithm>

namespace quillmere {

bool rules::HasKingLeftCorner(CBlackReply& reply) {
    const int bound = reply.Settings().NearCornerDistance;
    const int file = kEdgeDistance[reply.Child().m_blackKingFile];
    const int rank = kEdgeDistance[reply.Child().m_blackKingRank];
    const bool isOutside =
        (bound > 0 && file + rank > bound) || (bound < 0 && std::max(file, rank) > -bound);
    return isOutside && !reply.IsMatedAtOnce();
}

}  // namespace quillmere
