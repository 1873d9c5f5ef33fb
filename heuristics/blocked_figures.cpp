// SH_DONTLETFIGUREUNBLOCK, the black half: blocked figures of black stay blocked.
//
// In a composition black figures are often shut in behind their own men, and the plan lasts as long
// as they are. A reply that moves a figure of the list is given up, unless white mates at once. The
// node follows its list through the make-moves, so that a reply concerns the rule exactly when the
// list changed with it; that also holds for a rook that castled.
//
// With `LessExceptions` the reply that is let through is marked as an event: white's screens give up
// everything behind a freed figure otherwise.
//
// What is lost are mates that let the figure out and go on. The cost is a comparison of eight bytes,
// and one mate test when a listed figure moved.
#include "heuristics/reply_rules.h"

#include <cstring>

namespace quillmere {

bool rules::HasBlockedFigureMoved(CBlackReply& reply) {
    const bool isMoved = std::memcmp(reply.Child().m_trackedFigures,
                                     reply.BlackNode().m_trackedFigures,
                                     sizeof reply.Child().m_trackedFigures) != 0;
    if (!isMoved)
        return false;
    if (!reply.IsMatedAtOnce())
        return true;
    if (reply.Settings().LessExceptions)
        reply.MarkEvent();
    return false;
}

}  // namespace quillmere
