// What black's reply does to the word of the subtree: three plans end with it, and the digest follows
// the blocked figures. The pieces of a plan are known to the files named in heuristics/reply_rules.h.
//
// A bit that goes here leaves nothing out: the node is searched like any other from there on.
#include "heuristics/heur_params.h"
#include "heuristics/reply_rules.h"
#include "heuristics/rules.h"

#include <cstring>

namespace quillmere {
namespace {

constexpr u32 kPlans = SH_KEYWHITEFIGURE | SH_SEASNAKE | SH_SINGLEQUEENMATE;

// Bits that the reply takes off the node.
u32 EndedPlans(const CBlackReply& reply, u32 heur) {
    u32 ended = 0;
    if ((heur & SH_KEYWHITEFIGURE) != 0 && EndsKeyPin(reply))
        ended |= SH_KEYWHITEFIGURE;
    if ((heur & SH_SEASNAKE) != 0 && EndsSeaSnake(reply))
        ended |= SH_SEASNAKE;
    if ((heur & SH_SINGLEQUEENMATE) != 0 && EndsSingleQueen(reply))
        ended |= SH_SINGLEQUEENMATE;
    return ended;
}

bool HasTrackedMoved(const TChessboard& child) {
    return std::memcmp(child.m_trackedFigures,
                       child.m_parent->m_trackedFigures,
                       sizeof child.m_trackedFigures) != 0;
}

}  // namespace

void rules::UpdateAfterBlackMove(TChessboard& child) {
    u32 ended = 0;
    if ((child.Heur & kPlans) != 0)
        ended = EndedPlans(CBlackReply(child), child.Heur);
    // Whoever looks for the frame of the single queen below sees that it is gone.
    if ((ended & SH_SINGLEQUEENMATE) != 0)
        child.m_searchFlags |= kSearchEdgeReleased;
    if (ended != 0 || HasTrackedMoved(child))
        SetHeur(child, child.Heur & ~ended);
}

}  // namespace quillmere
