// What white's move does to the word of the subtree. A capture of a blocked figure was struck from
// the node's list by the make-move; the digest follows it here.
//
// One-colour play is no business of a node: a mate found with black's bishop off the board is a hint
// that must be proved with the bishop on it, so the mode is entered at the root only, where that is
// done.
#include "core/geometry.h"
#include "core/thread_context.h"
#include "heuristics/automatic_relaxation.h"
#include "heuristics/heur_params.h"
#include "heuristics/last_white_move.h"
#include "heuristics/promotion_marks.h"
#include "heuristics/rules.h"

#include <cstring>

namespace quillmere {
namespace {

// The key square was watched by the rook that is gone now.
u32 WithoutKeySquare(const TChessboard& child, u32 heur, u8 captured) {
    const int keySquare = child.m_threadContext->heuristics.KeySquare;
    const bool isOver = (heur & SH_KEYSQUARE) != 0 && captured == kBlackRook &&
                        keySquare < kSquareCount &&
                        KingDistance(child.m_lastMove.to, keySquare) == 1;
    return isOver ? heur & ~u32{SH_KEYSQUARE} : heur;
}

u32 WordAfterMove(const TChessboard& child) {
    u32 heur = child.Heur;
    const u8 captured = CapturedByWhite(child);
    if (captured != 0) {
        heur = WithoutKeySquare(child, heur, captured);
        heur = RelaxAfterKnightCapture(heur, captured);
        heur = RelaxAfterDecision(child, heur, captured);
    }
    return RelaxAfterPromotion(child, heur);
}

bool WasTrackedFigureTaken(const TChessboard& child) {
    return std::memcmp(child.m_trackedFigures,
                       child.m_parent->m_trackedFigures,
                       sizeof child.m_trackedFigures) != 0;
}

}  // namespace

void rules::UpdateAfterWhiteMove(TChessboard& child) {
    MarkPromotions(child);
    const u32 heur = WordAfterMove(child);
    if (heur != child.Heur || WasTrackedFigureTaken(child))
        SetHeur(child, heur);
}

}  // namespace quillmere
