// The screens of white's moves, in the order in which they are asked. Each stands in a file of its
// own. A move that mates is never left out: it costs one test, and only after a screen has fired.
#include "core/move_generation.h"
#include "heuristics/freed_figures.h"
#include "heuristics/main_diagonal.h"
#include "heuristics/rules.h"
#include "heuristics/surrounded_king.h"
#include "heuristics/sweeping_white_rook.h"

namespace quillmere {
namespace {

constexpr u32 kFreedFigures =
    SH_DONTLETPROMOTEDQUEENMOVE | SH_DONTLETPROMOTEDFIGUREMOVE | SH_DONTLETFIGUREUNBLOCK;

bool IsScreened(TChessboard& child) {
    // The first screen may take its bit off the node, and only that.
    const u32 heur = child.Heur;
    return ((heur & SH_SWEEPINGWHITEROOK) != 0 && HasRookStoppedSweeping(child)) ||
           ((heur & SH_ASSERTBLACKKINGSURROUNDED) != 0 && IsKingLetOut(child)) ||
           ((heur & SH_DONTLEAVEMAINDIAGONAL) != 0 && HasBishopLeftMainDiagonal(child)) ||
           ((heur & kFreedFigures) != 0 && IsFreedFigureUnanswered(child)) ||
           ((heur & SH_DONTLETFIGUREUNBLOCK) != 0 && HasBlockedFigureLeft(child));
}

}  // namespace

bool rules::IsMoveLeftOut(TChessboard& child) {
    return IsScreened(child) && (child.m_blackInCheck < 0 || BlackHasEvasion(child));
}

}  // namespace quillmere
