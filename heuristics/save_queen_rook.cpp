// SH_SAVEQUEEN/ROOK: white keeps its last queen or rook.
//
// Where one heavy figure does all the mating, a line in which black takes it is lost for white, minor
// figures and pawns notwithstanding. Such a capture is given up, unless white mates at once.
//
// What is lost are sacrifices of the last heavy figure before a quiet mate, and those before a
// promotion. The cost is a look at the captured man, and one mate test behind the fatal capture.
#include "heuristics/reply_rules.h"

namespace quillmere {

bool rules::IsLastQueenOrRookLost(CBlackReply& reply) {
    const u8 captured = reply.Captured();
    if (captured != kWhiteQueen && captured != kWhiteRook)
        return false;
    const u8* c = reply.Child().m_counts;
    return c[kWhiteQueens] + c[kWhiteRooks] == 0 && !reply.IsMatedAtOnce();
}

}  // namespace quillmere
